#include "ReelCore/Sync/Synchronizer.h"

#include <gtest/gtest.h>

using namespace ReelCore;

TEST(SecondsOfDay, Labels_CountAsSecondsOfTheClockAtEveryRate) {
    for (const FrameRate rate :
         {FrameRate::fps24, FrameRate::fps25, FrameRate::fps30, FrameRate::fps23_976,
          FrameRate::fps29_97, FrameRate::fps29_97df, FrameRate::fps59_94, FrameRate::fps59_94df,
          FrameRate::other(50, 50.0), FrameRate::other(48, 48000.0 / 1001.0)}) {
        SCOPED_TRACE(rate.real());
        EXPECT_EQ(Synchronizer::secondsOfDay(Timecode(1, 0, 0, 0, rate)), 3600.0);
        EXPECT_EQ(Synchronizer::secondsOfDay(Timecode(23, 59, 58, 6, rate)),
                  86398.0 + 6.0 / rate.real());
    }
}

TEST(SecondsOfDay, Frames_AreDividedByTheRealRate) {
    EXPECT_EQ(Synchronizer::secondsOfDay(Timecode(0, 0, 0, 12, FrameRate::fps25)), 0.48);
    EXPECT_DOUBLE_EQ(Synchronizer::secondsOfDay(Timecode(0, 0, 0, 12, FrameRate::fps23_976)),
                     0.5005);
    EXPECT_DOUBLE_EQ(Synchronizer::secondsOfDay(Timecode(0, 0, 0, 15, FrameRate::fps29_97)),
                     0.5005);
}

TEST(SecondsOfDay, DropFrame_FollowsTheLabel) {
    const Timecode label(0, 1, 0, 2, FrameRate::fps29_97df);
    ASSERT_EQ(label.frameNumber, 1800);

    EXPECT_DOUBLE_EQ(Synchronizer::secondsOfDay(label), 60.0 + 2.0 * 1001.0 / 30000.0);
    EXPECT_DOUBLE_EQ(Synchronizer::secondsOfDay(Timecode(0, 1, 0, 4, FrameRate::fps59_94df)),
                     60.0 + 4.0 * 1001.0 / 60000.0);
    EXPECT_EQ(Synchronizer::secondsOfDay(Timecode(10, 10, 0, 0, FrameRate::fps29_97df)), 36600.0);
}

TEST(SecondsOfDay, HoursAbove23_AreNotFoldedBack) {
    EXPECT_EQ(Synchronizer::secondsOfDay(Timecode(25, 0, 0, 0, FrameRate::fps25)), 90000.0);
    EXPECT_EQ(Synchronizer::secondsOfDay(Timecode(100, 0, 0, 0, FrameRate::fps29_97df)), 360000.0);
}

TEST(SecondsOfDay, NegativeFrameNumber_IsBeforeMidnight) {
    EXPECT_EQ(Synchronizer::secondsOfDay(Timecode(-25 * 3600 - 5, FrameRate::fps25)), -3600.2);
}
