#include "ReelCore/Vision/TextLayout.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using Texts = std::vector<std::string>;

/// A word of 20 pixels in height, 10 a letter, in the cell.
PlacedText word(const std::string& text, double left, double top, int cell = 0) {
    return {text, left, top, left + 10.0 * static_cast<double>(text.size()), top + 20.0, cell};
}

Texts segmentsOf(std::vector<PlacedText> words) {
    Texts texts;
    for (const auto& one : TextLayout::segments(std::move(words))) texts.push_back(one.text);
    return texts;
}

Texts linesOf(std::vector<PlacedText> segments) {
    Texts texts;
    for (const auto& one : TextLayout::lines(std::move(segments))) texts.push_back(one.text);
    return texts;
}

TEST(TextLayout, WordsSideBySide_AreOnePiece) {
    EXPECT_EQ(segmentsOf({word("HARBOR", 65, 102), word("NIGHT", 0, 100)}),
              (Texts{"NIGHT HARBOR"}));
    EXPECT_EQ(segmentsOf({word("A", 0, 0), word("B", 35, 0)}), (Texts{"A", "B"}))
        << "too far apart";
    EXPECT_EQ(segmentsOf({word("A", 0, 0), word("B", 15, 15)}), (Texts{"A", "B"})) << "two rows";
    EXPECT_EQ(segmentsOf({word("A", 0, 0, 1), word("B", 15, 0, 2)}), (Texts{"A", "B"}))
        << "two cells";
}

TEST(TextLayout, PieceOfWords_IsWhereTheyAreAndAsSureAsTheLeastSure) {
    PlacedText unsure = word("B", 15, 5);
    unsure.confidence = 40.0;

    const auto piece = TextLayout::segments({word("A", 0, 0), unsure}).at(0);

    EXPECT_EQ(piece.left, 0.0);
    EXPECT_EQ(piece.top, 0.0);
    EXPECT_EQ(piece.right, 25.0);
    EXPECT_EQ(piece.bottom, 25.0);
    EXPECT_EQ(piece.confidence, 40.0);
}

TEST(TextLayout, LettersInANumber_AreTheDigitsThatTheyLookLike) {
    for (const auto& [read, meant] : {std::pair("BO12", "B012"),
                                      {"BOi2", "B012"},
                                      {"AOO7", "A007"},
                                      {"A00l", "A001"},
                                      {"1O", "10"},
                                      {"12A", "12A"},
                                      {"O", "O"},
                                      {"IO", "IO"},
                                      {"JOHN2", "JOHN2"},
                                      {"Oct21", "Oct21"},
                                      {"1O-11", "1O-11"}}) {
        for (const std::string label : {"ROLL", "Scene:", "TK", "Cam. Roll #", "CAMERA ROLL"}) {
            EXPECT_EQ(linesOf({word(label + " " + read, 0, 0)}), Texts{label + " " + meant});
        }
        EXPECT_EQ(linesOf({word("ROLL", 0, 0), word(read, 100, 0)}),
                  Texts{std::string("ROLL ") + meant});
    }
}

TEST(TextLayout, LettersInWhatIsNoRollSceneOrTake_Stay) {
    for (const char* text :
         {"21OCT2026", "MI6", "CO2", "DATE 21OCT2026", "PROD MI6", "SHOW: CO2", "ROLL A001 MI6"}) {
        EXPECT_EQ(linesOf({word(text, 0, 0)}), Texts{text});
    }
    EXPECT_EQ(linesOf({word("TITLE", 0, 0), word("MI6", 100, 0)}), Texts{"TITLE MI6"});
}

TEST(TextLayout, BareLabel_IsALabelAndNothingElse) {
    for (const char* text :
         {"SCENE", "Scene:", "TAKE", "D.P.", "CAM. ROLL", "FRAME RATE", "Sc / Tk", "ROLL #"}) {
        EXPECT_TRUE(TextLayout::isBareLabel(text)) << text;
    }
    for (const char* text : {"SCENE 12", "", "SCENES", "NIGHT", ":"}) {
        EXPECT_FALSE(TextLayout::isBareLabel(text)) << text;
    }
}

TEST(TextLayout, Lines_ComeFromTopToBottomAndLeftToRight) {
    EXPECT_EQ(linesOf({word("d", 0, 90), word("c", 60, 52), word("b", 0, 55), word("a", 30, 0)}),
              (Texts{"a", "b", "c", "d"}));
}

TEST(TextLayout, RowsThatAreNotQuiteLevel_HaveOneUpperEdge) {
    const auto lines = TextLayout::lines({word("b", 90, 10), word("a", 0, 14)});

    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].text, "a");
    EXPECT_EQ(lines[0].top, lines[1].top);
}

TEST(TextLayout, ValueBesideItsLabel_IsJoined) {
    EXPECT_EQ(linesOf({word("SCENE", 0, 0), word("12A", 100, 0)}), (Texts{"SCENE 12A"}));
    EXPECT_EQ(linesOf({word("SCENE", 0, 0, 1), word("12A", 100, 0, 2)}), (Texts{"SCENE 12A"}));
}

TEST(TextLayout, ColumnsOfLabelsOverValues_AreJoinedByColumn) {
    EXPECT_EQ(linesOf({word("SCENE", 0, 0), word("TAKE", 100, 0), word("ROLL", 200, 0),
                       word("12A", 0, 40), word("3", 100, 40), word("A004", 200, 40)}),
              (Texts{"SCENE 12A", "TAKE 3", "ROLL A004"}));
}

TEST(TextLayout, ValueInTheLabelsCell_IsJoinedWhereverItStandsBelow) {
    EXPECT_EQ(linesOf({word("SCENE", 0, 0, 1), word("TAKE", 200, 0, 2), word("12A", 120, 40, 1),
                       word("3", 320, 40, 2)}),
              (Texts{"SCENE 12A", "TAKE 3"}));
}

TEST(TextLayout, ValueBehindAnotherLabel_IsThatOnes) {
    EXPECT_EQ(linesOf({word("SCENE", 0, 0), word("TAKE", 100, 0), word("3", 200, 0)}),
              (Texts{"SCENE", "TAKE 3"}));
}

TEST(TextLayout, WhatIsFarBelowOrAbove_IsNoValue) {
    EXPECT_EQ(linesOf({word("7", 0, 0), word("SCENE", 0, 40), word("12A", 0, 200)}),
              (Texts{"7", "SCENE", "12A"}));
}

TEST(TextLayout, LabelWithItsValue_TakesNoOther) {
    EXPECT_EQ(linesOf({word("SCENE: 12A", 0, 0), word("TAKE: 3", 0, 40)}),
              (Texts{"SCENE: 12A", "TAKE: 3"}));
}

TEST(TextLayout, Nothing_IsNothing) {
    EXPECT_TRUE(TextLayout::segments({}).empty());
    EXPECT_TRUE(TextLayout::lines({}).empty());
}

}  // namespace

}  // namespace ReelCore
