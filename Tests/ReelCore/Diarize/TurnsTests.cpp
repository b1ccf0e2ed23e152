#include "ReelCore/Diarize/Diarizer.h"
#include "Support/CommaLocale.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using Turns = std::vector<DiarizedTurn>;

constexpr auto parseTurns = Diarizer::parseTurns;

TEST(Turns, Speakers_AreNumberedAsTheyAppear) {
    EXPECT_EQ(parseTurns("0.000 1.500 3\n1.500 2.000 0\n2.500 3.000 3\n"),
              (Turns{{0.0, 1.5, "Speaker 1"}, {1.5, 2.0, "Speaker 2"}, {2.5, 3.0, "Speaker 1"}}));
}

TEST(Turns, PrintedOutOfOrder_AreNumberedByTime) {
    EXPECT_EQ(parseTurns("2.5 3.0 3\n0.0 1.0 7\n1.5 2.0 3\n"),
              (Turns{{0.0, 1.0, "Speaker 1"}, {1.5, 2.0, "Speaker 2"}, {2.5, 3.0, "Speaker 2"}}));
}

TEST(Turns, OfOneBeginning_StayInTheOrderPrinted) {
    EXPECT_EQ(parseTurns("1.0 9.0 5\n0.0 1.0 4\n1.0 2.0 6\n-0.0 3.0 7\n"),
              (Turns{{0.0, 1.0, "Speaker 1"},
                     {-0.0, 3.0, "Speaker 2"},
                     {1.0, 9.0, "Speaker 3"},
                     {1.0, 2.0, "Speaker 4"}}));
}

TEST(Turns, OtherLines_AreLeftOut) {
    EXPECT_EQ(parseTurns("warning: foo\n"
                         "1.0 2.0\n"
                         "1.0 2.0 x\n"
                         "1.0 2.0 3 4\n"
                         "x 2.0 3\n"
                         "1.0 y 3\n"
                         "1,0 2,0 3\n"
                         "1.0 2.0 3.0\n"
                         "1.0 2.0 0x3\n"
                         "1.0 2.0 9223372036854775808\n"
                         "1.0s 2.0 3\n"
                         "1.0\t2.0\t3\n"
                         "1.0 2.0 ٣\n"
                         "١ 2.0 3\n"
                         "1.0 2.0 \xFF\n"
                         "1.0 2.0 +-3\n"
                         "4.0 5.0 3\n"),
              (Turns{{4.0, 5.0, "Speaker 1"}}));
}

TEST(Turns, NumbersInAnyFormThatReadsAsOne_AreTaken) {
    EXPECT_EQ(parseTurns("1e0 +2.5 +7\n0x1p1 3. -7\n.5 1E1 0007\n"),
              (Turns{{0.5, 10.0, "Speaker 1"}, {1.0, 2.5, "Speaker 1"}, {2.0, 3.0, "Speaker 2"}}));
}

TEST(Turns, TimesThatAreNoPlaceInTime_AreLeftOut) {
    EXPECT_EQ(parseTurns("nan 1.0 0\n0.0 nan 0\n-inf 1.0 0\n0.0 inf 0\n1e999 2.0 0\n"
                         "NAN 1 0\nnan(1) 1 0\ninfinity 1 0\n3.0 4.0 1\n"),
              (Turns{{3.0, 4.0, "Speaker 1"}}));
}

TEST(Turns, TimesAreTakenAsTheyStand) {
    EXPECT_EQ(parseTurns("5.0 1.0 0\n-3.0 -2.0 1\n"),
              (Turns{{-3.0, -2.0, "Speaker 1"}, {5.0, 1.0, "Speaker 2"}}));
}

TEST(Turns, LineEndsAndBlanksOfAnyKindAndNumber) {
    const Turns expected{{0.0, 1.0, "Speaker 1"}, {1.0, 2.0, "Speaker 2"}};

    for (const char* text : {"0.0 1.0 0\n1.0 2.0 1", "0.0 1.0 0\r\n1.0 2.0 1\r\n",
                             "\n\n  0.0   1.0 0  \r\r1.0 2.0 1\n\n"}) {
        EXPECT_EQ(parseTurns(text), expected) << text;
    }
}

TEST(Turns, NoLines_AreNoTurns) {
    EXPECT_TRUE(parseTurns("").empty());
    EXPECT_TRUE(parseTurns("\n \n").empty());
}

TEST(Turns, ZeroByte_BelongsToItsLine) {
    EXPECT_EQ(parseTurns(std::string_view("1.0\0 2.0 3\n4.0 5.0 3\n", 21)),
              (Turns{{4.0, 5.0, "Speaker 1"}}));
}

TEST(Turns, CommaOfTheLocale_ChangesNothing) {
    const TestSupport::CommaLocale locale;
    if (!locale.isThere()) GTEST_SKIP() << "this machine can't make a locale with a comma";

    EXPECT_EQ(parseTurns("0.5 1.5 0\n0,7 1,5 1\n"), (Turns{{0.5, 1.5, "Speaker 1"}}));
}

}  // namespace

}  // namespace ReelCore
