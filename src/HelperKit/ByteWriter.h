#pragma once

#include "HelperKit/Data.h"

#include <array>
#include <concepts>
#include <string_view>
#include <type_traits>
#include <utility>

namespace quarn {

/// Appends little-endian integers, texts and bytes to a buffer that grows.
class ByteWriter {
public:
    void reserve(size_t bytes) { data_.reserve(bytes); }

    /// As many bytes as the type is wide, the least significant first.
    template <std::integral Integer>
    void integer(Integer value) {
        std::array<uint8_t, sizeof(Integer)> raw;
        for (size_t i = 0; i < sizeof(Integer); ++i)
            raw[i] = static_cast<uint8_t>(static_cast<std::make_unsigned_t<Integer>>(value) >> (8 * i));
        bytes(raw);
    }

    /// A 32-bit length, then so many bytes of UTF-8. Names and paths are whatever bytes a stranger chose;
    /// what is ill-formed in `text` is written as U+FFFD, since a reader rejects it. A text whose length does
    /// not fit 32 bits ends the program.
    void string(std::string_view text);

    void bytes(DataView raw) { data_.insert(data_.end(), raw.begin(), raw.end()); }

    const Data& data() const { return data_; }
    Data take() { return std::exchange(data_, {}); }

private:
    Data data_;
};

} // namespace quarn
