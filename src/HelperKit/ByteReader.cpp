#include "HelperKit/ByteReader.h"

#include "HelperKit/Utf8.h"

namespace quarn {

std::optional<DataView> ByteReader::bytes(int64_t count) {
    if (count < 0 || static_cast<uint64_t>(count) > rest_.size()) return std::nullopt;
    const auto taken = rest_.first(static_cast<size_t>(count));
    rest_ = rest_.subspan(taken.size());
    return taken;
}

std::optional<std::string_view> ByteReader::string() {
    ByteReader ahead = *this;
    const auto length = ahead.integer<uint32_t>();
    const auto raw = length ? ahead.bytes(*length) : std::nullopt;
    if (!raw) return std::nullopt;
    const std::string_view text(reinterpret_cast<const char*>(raw->data()), raw->size());
    if (!isUtf8(text)) return std::nullopt;
    *this = ahead;
    return text;
}

} // namespace quarn
