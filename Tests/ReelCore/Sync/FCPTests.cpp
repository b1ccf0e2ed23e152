#include "ReelCore/Sync/FCP.h"

#include "ReelCore/Platform/Arithmetic.h"

#include <csignal>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

struct NamedRate {
    FrameRate rate;
    const char* frameDuration;
};

constexpr NamedRate allRates[]{
    {FrameRate::fps24, "1/24s"},           {FrameRate::fps25, "1/25s"},
    {FrameRate::fps30, "1/30s"},           {FrameRate::fps23_976, "1001/24000s"},
    {FrameRate::fps29_97, "1001/30000s"},  {FrameRate::fps29_97df, "1001/30000s"},
    {FrameRate::fps59_94, "1001/60000s"},  {FrameRate::fps59_94df, "1001/60000s"},
    {FrameRate::other(50, 50.0), "1/50s"}, {FrameRate::other(48, 48000.0 / 1001.0), "1/48s"},
};

TEST(FCP, FrameDuration_OfEachRate_IsAFractionOfWholeNumbers) {
    for (const auto& [rate, expected] : allRates) {
        EXPECT_EQ(FCP::frameDurationString(rate), expected);
    }
}

TEST(FCP, FrameDuration_OfAnotherRateThatMeasuresAsAKnownOne_GoesByItsNominal) {
    EXPECT_EQ(FCP::frameDurationString(FrameRate::other(24, 24000.0 / 1001.0)), "1/24s");
    EXPECT_EQ(FCP::frameDurationString(FrameRate::other(30, 30000.0 / 1001.0)), "1/30s");
}

TEST(FCP, FrameDuration_IsNotReduced) {
    EXPECT_EQ(FCP::frameDurationString(FrameRate::other(1, 1.0)), "1/1s");
}

TEST(FCP, Time_Nothing_IsZeroSecondsAtEachRate) {
    for (const auto& [rate, name] : allRates) {
        EXPECT_EQ(FCP::time(0.0, rate), "0s") << name;
        EXPECT_EQ(FCP::time(-0.0, rate), "0s") << name;
        EXPECT_EQ(FCP::time(0.001, rate), "0s") << name;
    }
}

TEST(FCP, Time_WholeSeconds_StandWithoutAFraction) {
    EXPECT_EQ(FCP::time(12.0, FrameRate::fps24), "12s");
    EXPECT_EQ(FCP::time(10.0, FrameRate::fps25), "10s");
    EXPECT_EQ(FCP::time(86400.0, FrameRate::fps30), "86400s");
    EXPECT_EQ(FCP::time(1001.0, FrameRate::fps23_976), "1001s");
    EXPECT_EQ(FCP::time(1001.0, FrameRate::fps29_97df), "1001s");
    EXPECT_EQ(FCP::time(1001.0, FrameRate::fps59_94), "1001s");
    EXPECT_EQ(FCP::time(3.0, FrameRate::other(50, 50.0)), "3s");
}

TEST(FCP, Time_AnythingElse_IsAFractionThatIsNotReduced) {
    EXPECT_EQ(FCP::time(2.5, FrameRate::fps24), "60/24s");
    EXPECT_EQ(FCP::time(0.2, FrameRate::fps25), "5/25s");
    EXPECT_EQ(FCP::time(0.5005, FrameRate::fps23_976), "12012/24000s");
    EXPECT_EQ(FCP::time(0.5, FrameRate::other(50, 50.0)), "25/50s");
}

TEST(FCP, Time_OfSlowedRates_IsMovedToTheNearestFrame) {
    EXPECT_EQ(FCP::time(1.0, FrameRate::fps23_976), "24024/24000s");
    EXPECT_EQ(FCP::time(1.0, FrameRate::fps29_97), "30030/30000s");
    EXPECT_EQ(FCP::time(1.0, FrameRate::fps29_97df), "30030/30000s");
    EXPECT_EQ(FCP::time(1.0, FrameRate::fps59_94), "60060/60000s");
    EXPECT_EQ(FCP::time(1.0, FrameRate::fps59_94df), "60060/60000s");
}

TEST(FCP, Time_OfAnotherRate_CountsNominalFramesASecond) {
    EXPECT_EQ(FCP::time(100.0, FrameRate::other(48, 48000.0 / 1001.0)), "100s");
    EXPECT_EQ(FCP::time(0.25, FrameRate::other(48, 48000.0 / 1001.0)), "12/48s");
}

TEST(FCP, Time_HalfAFrame_GoesAwayFromZero) {
    const FrameRate twoASecond = FrameRate::other(2, 2.0);

    EXPECT_EQ(FCP::time(0.25, twoASecond), "1/2s");
    EXPECT_EQ(FCP::time(0.75, twoASecond), "1s");
    EXPECT_EQ(FCP::time(1.25, twoASecond), "3/2s");
    EXPECT_EQ(FCP::time(-0.25, twoASecond), "-1/2s");
    EXPECT_EQ(FCP::time(-0.75, twoASecond), "-1s");
    EXPECT_EQ(FCP::time(0.2499, twoASecond), "0s");
}

TEST(FCP, Time_BeforeZero_KeepsItsSign) {
    EXPECT_EQ(FCP::time(-5.0, FrameRate::fps25), "-5s");
    EXPECT_EQ(FCP::time(-2.5, FrameRate::fps24), "-60/24s");
}

TEST(FCP, Time_ThatIsNoNumber_IsRefused) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double none = std::numeric_limits<double>::quiet_NaN();

    EXPECT_THROW(FCP::time(none, FrameRate::fps25), OutOfRange);
    EXPECT_THROW(FCP::time(infinity, FrameRate::fps25), OutOfRange);
    EXPECT_THROW(FCP::time(-infinity, FrameRate::fps25), OutOfRange);
}

TEST(FCP, Time_TooLarge_IsRefused) {
    EXPECT_THROW(FCP::time(1e18, FrameRate::fps25), OutOfRange);
    EXPECT_THROW(FCP::time(1e15, FrameRate::fps23_976), OutOfRange);
}

TEST(FCPDeathTest, Time_AtNoFramesASecond_IsFatal) {
    EXPECT_EXIT(FCP::time(1.0, FrameRate::other(0, 0.0)), testing::KilledBySignal(SIGABRT),
                "division by zero");
}

}  // namespace
