#include "HelperKit/ByteReader.h"

#include <limits>

namespace {

using namespace quarn;

TEST(ByteReader, WhatIsMissingIsAbsentAndMovesNothing) {
    const Data data{0x80, 0xFF, 0x01};
    ByteReader reader(data);
    EXPECT_EQ(reader.integer<uint32_t>(), std::nullopt);
    EXPECT_EQ(reader.string(), std::nullopt);
    EXPECT_EQ(reader.bytes(4), std::nullopt);
    EXPECT_EQ(reader.bytes(-1), std::nullopt);
    EXPECT_EQ(reader.bytes(std::numeric_limits<int64_t>::min()), std::nullopt);
    EXPECT_EQ(reader.integer<int16_t>(), -128);
    EXPECT_EQ(reader.bytes(0)->size(), 0U);
    EXPECT_EQ(reader.integer<int8_t>(), 1);
    EXPECT_EQ(reader.integer<int8_t>(), std::nullopt);
    EXPECT_EQ(reader.remaining(), 0U);
    const Data shortText{3, 0, 0, 0, 'a', 'b'};
    reader = ByteReader(shortText);
    EXPECT_EQ(reader.string(), std::nullopt);
    EXPECT_EQ(reader.remaining(), shortText.size());
}

} // namespace
