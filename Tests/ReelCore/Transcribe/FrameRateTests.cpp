#include "ReelCore/Transcribe/FrameRate.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

struct Row {
    FrameRate rate;
    std::int64_t nominal;
    double real;
    bool isDrop;
    int dropFramesPerMinute;
    FrameRate dropFrameVariant;
    char separator;
};

const FrameRate fifty = FrameRate::other(50, 50.0);

const std::vector<Row> table{
    {FrameRate::fps24, 24, 24.0, false, 0, FrameRate::fps24, ':'},
    {FrameRate::fps25, 25, 25.0, false, 0, FrameRate::fps25, ':'},
    {FrameRate::fps30, 30, 30.0, false, 0, FrameRate::fps30, ':'},
    {FrameRate::fps23_976, 24, 23.976023976023978, false, 0, FrameRate::fps23_976, ':'},
    {FrameRate::fps29_97, 30, 29.97002997002997, false, 0, FrameRate::fps29_97df, ':'},
    {FrameRate::fps29_97df, 30, 29.97002997002997, true, 2, FrameRate::fps29_97df, ';'},
    {FrameRate::fps59_94, 60, 59.94005994005994, false, 0, FrameRate::fps59_94df, ':'},
    {FrameRate::fps59_94df, 60, 59.94005994005994, true, 4, FrameRate::fps59_94df, ';'},
    {fifty, 50, 50.0, false, 0, fifty, ':'},
};

TEST(FrameRate, EachRate_AnswersAsTheTableSays) {
    for (const Row& row : table) {
        SCOPED_TRACE(testing::Message() << row.nominal << " " << row.real << row.separator);
        EXPECT_EQ(row.rate.nominal(), row.nominal);
        EXPECT_EQ(row.rate.real(), row.real);
        EXPECT_EQ(row.rate.isDrop(), row.isDrop);
        EXPECT_EQ(row.rate.dropFramesPerMinute(), row.dropFramesPerMinute);
        EXPECT_EQ(row.rate.dropFrameVariant(), row.dropFrameVariant);
        EXPECT_EQ(row.rate.separator(), row.separator);
    }
}

TEST(FrameRate, Equality_TellsAllRatesApart) {
    for (const Row& one : table) {
        for (const Row& other : table) EXPECT_EQ(one.rate == other.rate, &one == &other);
    }
    EXPECT_NE(FrameRate::other(24, 24.0), FrameRate::fps24);
}

TEST(FrameRate, TwoOthers_AreEqualIfBothNumbersAre) {
    EXPECT_EQ(FrameRate::other(50, 50.0), fifty);
    EXPECT_NE(FrameRate::other(50, 49.95), fifty);
    EXPECT_NE(FrameRate::other(51, 50.0), fifty);
}

TEST(FrameRateFromFFmpeg, KnownRates_AsFractionsAndDecimals) {
    const std::vector<std::pair<std::string, FrameRate>> cases{
        {"24/1", FrameRate::fps24},       {"24", FrameRate::fps24},
        {"25/1", FrameRate::fps25},       {"25", FrameRate::fps25},
        {"30/1", FrameRate::fps30},       {"24000/1001", FrameRate::fps23_976},
        {"23.976", FrameRate::fps23_976}, {"30000/1001", FrameRate::fps29_97},
        {"29.97", FrameRate::fps29_97},   {"60000/1001", FrameRate::fps59_94},
        {"59.94", FrameRate::fps59_94},   {"1e3/40", FrameRate::fps25},
    };
    for (const auto& [text, rate] : cases) EXPECT_EQ(FrameRate::fromFFmpeg(text), rate) << text;
}

TEST(FrameRateFromFFmpeg, TrueSixty_CountsAs59_94) {
    EXPECT_EQ(FrameRate::fromFFmpeg("60/1"), FrameRate::fps59_94);
    EXPECT_EQ(FrameRate::fromFFmpeg("60"), FrameRate::fps59_94);
}

TEST(FrameRateFromFFmpeg, OtherRates_KeepTheExactRateAndCountTheNearestWhole) {
    EXPECT_EQ(FrameRate::fromFFmpeg("50/1"), FrameRate::other(50, 50.0));
    EXPECT_EQ(FrameRate::fromFFmpeg("48000/1001"), FrameRate::other(48, 47.952047952047955));
    EXPECT_EQ(FrameRate::fromFFmpeg("120000/1001"), FrameRate::other(120, 120000.0 / 1001.0));
    EXPECT_EQ(FrameRate::fromFFmpeg("12.5"), FrameRate::other(13, 12.5)) << "half goes up";
    EXPECT_EQ(FrameRate::fromFFmpeg("-12.5"), FrameRate::other(-13, -12.5)) << "away from zero";
    EXPECT_EQ(FrameRate::fromFFmpeg("0/1"), FrameRate::other(0, 0.0));
}

TEST(FrameRateFromFFmpeg, RateWithinHalfAThousandth_IsTheKnownOne) {
    EXPECT_EQ(FrameRate::fromFFmpeg("25.0004"), FrameRate::fps25);
    EXPECT_EQ(FrameRate::fromFFmpeg("24.9996"), FrameRate::fps25);
    EXPECT_EQ(FrameRate::fromFFmpeg("25.0006"), FrameRate::other(25, 25.0006));
    EXPECT_EQ(FrameRate::fromFFmpeg("23.98"), FrameRate::other(24, 23.98));
}

TEST(FrameRateFromFFmpeg, NoNumber_Is24) {
    for (const std::string text :
         {"", "N/A", "0/0", "5/0", "/", "abc", " 25", "25 ", "25/", "/25", "25//", "1/2/3"}) {
        EXPECT_EQ(FrameRate::fromFFmpeg(text), FrameRate::fps24) << "\"" << text << "\"";
    }
}

TEST(FrameRateFromFFmpeg, PiecesThatAreNoNumbers_DoNotCount) {
    EXPECT_EQ(FrameRate::fromFFmpeg("50/x/2"), FrameRate::fps25);
    EXPECT_EQ(FrameRate::fromFFmpeg("50//2"), FrameRate::fps25);
    EXPECT_EQ(FrameRate::fromFFmpeg("x/50"), FrameRate::fps24) << "one number alone is left";
}

TEST(FrameRateFromFFmpeg, AnyRate_IsNeverADropFrameRate) {
    for (const std::string text : {"30000/1001", "60000/1001", "60", "29.97", "59.94"}) {
        EXPECT_FALSE(FrameRate::fromFFmpeg(text).isDrop()) << text;
    }
}

TEST(FrameRateFromFFmpeg, RateThatNoWholeNumberIsNear_IsTwentyFour) {
    for (const std::string text : {"inf", "nan", "-inf", "1e300", "1e300/1e-300", "inf/inf"}) {
        EXPECT_EQ(FrameRate::fromFFmpeg(text), FrameRate::fps24) << text;
    }
}

}  // namespace
