#pragma once

#include "HelperKit/Data.h"

#include <concepts>
#include <optional>
#include <string_view>
#include <type_traits>

namespace quarn {

/// Reads what ByteWriter wrote, from bytes that nobody vouches for. What cannot be read is absent and leaves
/// the cursor where it was. Does not own the data; what it returns points into it.
class ByteReader {
public:
    explicit ByteReader(DataView data) : rest_(data) {}

    template <std::integral Integer>
    std::optional<Integer> integer() {
        if (rest_.size() < sizeof(Integer)) return std::nullopt;
        std::make_unsigned_t<Integer> value = 0;
        for (size_t i = 0; i < sizeof(Integer); ++i)
            value |= static_cast<std::make_unsigned_t<Integer>>(
                static_cast<std::make_unsigned_t<Integer>>(rest_[i]) << (8 * i));
        rest_ = rest_.subspan(sizeof(Integer));
        return static_cast<Integer>(value);
    }

    /// Absent as well when `count` is negative.
    std::optional<DataView> bytes(int64_t count);

    /// A length-prefixed text; absent as well when it is not well-formed UTF-8.
    std::optional<std::string_view> string();

    size_t remaining() const { return rest_.size(); }

private:
    DataView rest_;
};

} // namespace quarn
