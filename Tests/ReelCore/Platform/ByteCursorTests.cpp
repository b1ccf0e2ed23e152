#include "ReelCore/Platform/ByteCursor.h"

#include <limits>

#include <gtest/gtest.h>

namespace {

using ReelCore::ByteCursor;
using namespace std::string_view_literals;

ByteCursor over(std::string_view bytes) {
    return ByteCursor(std::as_bytes(std::span(bytes)));
}

TEST(ByteCursor, Numbers_AreReadInEitherOrderOneAfterTheOther) {
    ByteCursor cursor = over("\x01\x02\x01\x02\xFF\x80\x00\x00\x01\x80\x00\x00\x01"sv);

    EXPECT_EQ(cursor.bigEndian<std::uint16_t>(), 0x0102);
    EXPECT_EQ(cursor.littleEndian<std::uint16_t>(), 0x0201);
    EXPECT_EQ(cursor.bigEndian<std::uint8_t>(), 0xFF);
    EXPECT_EQ(cursor.bigEndian<std::uint32_t>(), 0x80000001U);
    EXPECT_EQ(cursor.littleEndian<std::uint32_t>(), 0x01000080U);
    EXPECT_TRUE(cursor.rest().empty());
}

TEST(ByteCursor, NumbersOf64Bits_KeepAllTheirBits) {
    constexpr auto bytes = "\xFE\xDC\xBA\x98\x76\x54\x32\x10"sv;

    EXPECT_EQ(over(bytes).bigEndian<std::uint64_t>(), 0xFEDCBA9876543210U);
    EXPECT_EQ(over(bytes).littleEndian<std::uint64_t>(), 0x1032547698BADCFEU);
}

TEST(ByteCursor, Text_IsItsBytes) {
    ByteCursor cursor = over("RIFF\0\xFFmore"sv);

    EXPECT_EQ(cursor.text(4), "RIFF");
    EXPECT_EQ(cursor.text(2), "\0\xFF"sv);
    EXPECT_EQ(cursor.text(0), "");
    EXPECT_EQ(cursor.rest().size(), 4U);
}

TEST(ByteCursor, TakeAndSkip_MoveOn) {
    ByteCursor cursor = over("abcdef");

    EXPECT_TRUE(cursor.skip(2));
    const auto taken = cursor.take(3);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->size(), 3U);
    EXPECT_EQ(taken->front(), std::byte{'c'});
    EXPECT_EQ(cursor.text(1), "f");
}

TEST(ByteCursor, MoreThanThereIs_IsAbsentAndTakesNothing) {
    ByteCursor cursor = over("abc");

    EXPECT_FALSE(cursor.take(4));
    EXPECT_FALSE(cursor.skip(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_FALSE(cursor.text(4));
    EXPECT_FALSE(cursor.bigEndian<std::uint32_t>());
    EXPECT_FALSE(cursor.littleEndian<std::uint64_t>());
    EXPECT_EQ(cursor.text(3), "abc");
}

TEST(ByteCursor, AtTheEnd_OnlyNothingCanBeTaken) {
    ByteCursor cursor = over("");

    EXPECT_TRUE(cursor.take(0));
    EXPECT_TRUE(cursor.skip(0));
    EXPECT_FALSE(cursor.skip(1));
    EXPECT_FALSE(cursor.bigEndian<std::uint8_t>());
}

}  // namespace
