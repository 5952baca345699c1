#include "HelperKit/GuardedRun.h"

#include "HelperKit/Log.h"

#include <exception>
#include <string>

namespace quarn {

void logEscapedException(std::string_view label) {
    std::string message(label);
    try {
        throw;
    } catch (const std::exception& error) {
        message.append(": ").append(error.what());
    } catch (...) {
        message.append(": an exception without a description");
    }
    log(message);
}

} // namespace quarn
