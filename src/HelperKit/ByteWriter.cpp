#include "HelperKit/ByteWriter.h"

#include "HelperKit/Log.h"
#include "HelperKit/Utf8.h"

#include <cstdlib>
#include <limits>
#include <string>

namespace quarn {

void ByteWriter::string(std::string_view text) {
    if (text.size() > std::numeric_limits<uint32_t>::max()) {
        log("a text of more than 4294967295 bytes cannot be written");
        std::abort();
    }
    if (!isUtf8(text)) return string(repairedUtf8(text));
    integer(static_cast<uint32_t>(text.size()));
    bytes({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

} // namespace quarn
