#include "ReelCore/Platform/Split.h"

#include <gtest/gtest.h>

namespace {

using ReelCore::piecesOf;
using Pieces = std::vector<std::string_view>;

TEST(PiecesOf, AnyOfTheSeparators_Parts) {
    EXPECT_EQ(piecesOf("01:02;03.04", ":;."), (Pieces{"01", "02", "03", "04"}));
    EXPECT_EQ(piecesOf("30000/1001", "/"), (Pieces{"30000", "1001"}));
}

TEST(PiecesOf, EmptyPieces_AreDropped) {
    EXPECT_EQ(piecesOf("::a::b:", ":"), (Pieces{"a", "b"}));
    EXPECT_EQ(piecesOf("", ":"), Pieces{});
    EXPECT_EQ(piecesOf(":::", ":"), Pieces{});
}

TEST(PiecesOf, NoSeparator_IsOnePiece) {
    EXPECT_EQ(piecesOf("abc", ":"), Pieces{"abc"});
    EXPECT_EQ(piecesOf("abc", ""), Pieces{"abc"});
}

TEST(PiecesOf, ZeroBytesAndBlanks_AreLikeAnyOther) {
    using namespace std::string_view_literals;
    EXPECT_EQ(piecesOf(" a\0b : c "sv, ":"), (Pieces{" a\0b "sv, " c "}));
}

TEST(PiecesOf, Pieces_StandInTheText) {
    const std::string_view text = "a:bc";

    EXPECT_EQ(piecesOf(text, ":").at(1).data(), text.data() + 2);
}

}  // namespace
