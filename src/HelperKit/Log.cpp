#include "HelperKit/Log.h"

#include "HelperKit/Locked.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <unordered_map>

namespace quarn {

namespace {

bool isPowerOfTen(uint64_t count) {
    while (count >= 10 && count % 10 == 0) count /= 10;
    return count == 1;
}

} // namespace

void log(std::string_view message) {
    static Locked<std::unordered_map<std::string, uint64_t>> seen;
    const uint64_t count = seen.withValue([&](auto& counts) { return ++counts[std::string(message)]; });
    if (!isPowerOfTen(count)) return;
    const std::string times = count == 1 ? "" : " (" + std::to_string(count) + " times so far)";
    std::fprintf(stderr, "Quarn: %.*s%s\n", static_cast<int>(message.size()), message.data(), times.c_str());
}

} // namespace quarn
