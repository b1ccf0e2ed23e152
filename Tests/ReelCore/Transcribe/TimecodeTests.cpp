#include "ReelCore/Transcribe/Timecode.h"

#include "ReelCore/Platform/Arithmetic.h"

#include <csignal>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using Components = Timecode::Components;

constexpr FrameRate fps25 = FrameRate::fps25;
constexpr FrameRate drop29 = FrameRate::fps29_97df;
constexpr FrameRate drop59 = FrameRate::fps59_94df;
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

std::string formatted(std::int64_t frame, FrameRate rate) {
    return Timecode(frame, rate).formatted();
}

std::int64_t frameOf(std::string_view label, FrameRate rate) {
    return Timecode::parse(label, rate).value().frameNumber;
}

// The labels

struct Anchor {
    FrameRate rate;
    Components label;
    std::int64_t frame;
    std::string text;
};

TEST(Timecode, LabelFrameAndText_AgreeAtKnownPlaces) {
    const std::vector<Anchor> anchors{
        {FrameRate::fps24, {1, 0, 0, 0}, 86400, "01:00:00:00"},
        {fps25, {12, 34, 56, 7}, 1132407, "12:34:56:07"},
        {FrameRate::fps30, {23, 59, 59, 29}, 2591999, "23:59:59:29"},
        {FrameRate::fps23_976, {1, 0, 0, 0}, 86400, "01:00:00:00"},
        {FrameRate::fps29_97, {1, 0, 0, 0}, 108000, "01:00:00:00"},
        {FrameRate::fps59_94, {0, 1, 0, 0}, 3600, "00:01:00:00"},
        {FrameRate::other(50, 50.0), {0, 0, 1, 49}, 99, "00:00:01:49"},
        {drop29, {0, 0, 59, 29}, 1799, "00:00:59;29"},
        {drop29, {0, 1, 0, 2}, 1800, "00:01:00;02"},
        {drop29, {0, 1, 59, 29}, 3597, "00:01:59;29"},
        {drop29, {0, 2, 0, 2}, 3598, "00:02:00;02"},
        {drop29, {0, 9, 59, 29}, 17981, "00:09:59;29"},
        {drop29, {0, 10, 0, 0}, 17982, "00:10:00;00"},
        {drop29, {1, 0, 0, 0}, 107892, "01:00:00;00"},
        {drop29, {23, 59, 59, 29}, 2589407, "23:59:59;29"},
        {drop59, {0, 0, 59, 59}, 3599, "00:00:59;59"},
        {drop59, {0, 1, 0, 4}, 3600, "00:01:00;04"},
        {drop59, {0, 10, 0, 0}, 35964, "00:10:00;00"},
        {drop59, {1, 0, 0, 0}, 215784, "01:00:00;00"},
        {drop59, {23, 59, 59, 59}, 5178815, "23:59:59;59"},
    };
    for (const auto& [rate, label, frame, text] : anchors) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Timecode(label.h, label.m, label.s, label.f, rate).frameNumber, frame);
        EXPECT_EQ(Timecode(frame, rate).components(), label);
        EXPECT_EQ(formatted(frame, rate), text);
        EXPECT_EQ(frameOf(text, rate), frame);
    }
}

TEST(Timecode, FieldsOutOfTheirRange_AreAddedIn) {
    EXPECT_EQ(Timecode(0, 75, 0, 0, fps25), Timecode(1, 15, 0, 0, fps25));
    EXPECT_EQ(Timecode(0, 0, 0, 99, fps25).frameNumber, 99);
    EXPECT_EQ(Timecode(1, -1, 0, -5, fps25), Timecode(0, 58, 59, 20, fps25));
    EXPECT_EQ(Timecode(0, 75, 0, 0, drop29), Timecode(1, 15, 0, 0, drop29));
}

TEST(Timecode, DroppedLabel_FallsOnAFrameBeforeTheMinute) {
    EXPECT_EQ(Timecode(0, 1, 0, 0, drop29).frameNumber, 1798);
    EXPECT_EQ(Timecode(0, 1, 0, 1, drop29).frameNumber, 1799);
    EXPECT_EQ(Timecode(0, 1, 0, 3, drop59).frameNumber, 3599);
}

TEST(Timecode, Hours_GoOnPastADay) {
    EXPECT_EQ(frameOf("25:00:00:00", fps25), 25 * 90000);
    EXPECT_EQ(formatted(25 * 90000, fps25), "25:00:00:00");
    EXPECT_EQ(formatted(2589408, drop29), "24:00:00;00");
    EXPECT_EQ(formatted(100 * 90000, fps25), "100:00:00:00");
}

TEST(Timecode, NegativePosition_HasNegativeFields) {
    EXPECT_EQ(Timecode(-1, fps25).components(), (Components{0, 0, 0, -1}));
    EXPECT_EQ(formatted(-1, fps25), "00:00:00:-1");
    EXPECT_EQ(Timecode(-(3600 + 120 + 3) * 25 - 4, fps25).components(),
              (Components{-1, -2, -3, -4}));
    EXPECT_EQ(formatted(-(3600 + 120 + 3) * 25 - 14, fps25), "-1:-2:-3:-14");
    EXPECT_EQ(Timecode(-1, drop29).components(), (Components{0, 0, 0, -1}));
    EXPECT_EQ(Timecode(-17982, drop29).components(), (Components{0, -10, 0, 0}));
}

TEST(Timecode, Frames_IsTheFrameNumber) {
    Timecode timecode(7, fps25);
    timecode.frameNumber = 8;

    EXPECT_EQ(timecode.frames(), 8);
}

TEST(Timecode, Equality_LooksAtNumberAndRate) {
    EXPECT_EQ(Timecode(7, fps25), Timecode(7, fps25));
    EXPECT_NE(Timecode(7, fps25), Timecode(8, fps25));
    EXPECT_NE(Timecode(7, FrameRate::fps29_97), Timecode(7, drop29));
}

// Reading a label

TEST(TimecodeParse, Separators_AreAlike) {
    const auto expected = Timecode(12, 34, 56, 7, fps25);

    for (const std::string text : {"12:34:56:07", "12.34.56.07", "12;34;56;07", "12:34:56.07",
                                   "12::34:56:07", ":12:34:56:07:", "+12:034:56:7"}) {
        EXPECT_EQ(Timecode::parse(text, fps25), expected) << text;
    }
}

TEST(TimecodeParse, NegativeFields_AreTaken) {
    EXPECT_EQ(frameOf("-1:00:00:00", fps25), -90000);
    EXPECT_EQ(frameOf("01:00:00:-1", fps25), 89999);
}

TEST(TimecodeParse, OtherTexts_AreAbsent) {
    for (const std::string text :
         {"", "::::", "12:34:56", "12:34:56:07:08", "12:34:56:xx", "12:34:56: 7", " 12:34:56:07",
          "12:34:56:07 ", "12:34:56:07\n", "12:34:56:0x7", "12:34:56:7f", "12:34:56:+-7",
          "12:34:56:--7", "12:34:56:-", "12,34,56,07", "12-34-56-07",
          "12:34:56:9223372036854775808", "12:34:56:\u0661"}) {
        EXPECT_FALSE(Timecode::parse(text, fps25)) << "\"" << text << "\"";
    }
    EXPECT_FALSE(Timecode::parse(std::string("12:34:56:07\0", 12), fps25));
}

TEST(TimecodeParse, Semicolon_TakesTheDropFrameVariant) {
    EXPECT_EQ(Timecode::parse("01:00:00;00", FrameRate::fps29_97), Timecode(107892, drop29));
    EXPECT_EQ(Timecode::parse("01:00:00;00", FrameRate::fps59_94), Timecode(215784, drop59));
    EXPECT_EQ(Timecode::parse("01;00:00:00", FrameRate::fps29_97), Timecode(107892, drop29));
    EXPECT_EQ(Timecode::parse("01:00:00:00;", FrameRate::fps29_97), Timecode(107892, drop29));
    EXPECT_EQ(Timecode::parse("01:00:00;00", fps25), Timecode(90000, fps25));
}

TEST(TimecodeParse, NoSemicolon_LeavesTheRate) {
    EXPECT_EQ(Timecode::parse("01:00:00:00", drop29), Timecode(107892, drop29));
    EXPECT_EQ(Timecode::parse("01:00:00:00", FrameRate::fps29_97),
              Timecode(108000, FrameRate::fps29_97));
}

// Moving

TEST(TimecodeAdding, SecondsOfTheClock_AreFramesThatReallyPass) {
    EXPECT_EQ(Timecode(10, FrameRate::fps29_97).adding(60.0),
              Timecode(10 + 1798, FrameRate::fps29_97));
    EXPECT_EQ(Timecode(0, drop29).adding(3600.0), Timecode(107892, drop29));
    EXPECT_EQ(Timecode(0, FrameRate::fps23_976).adding(1001.0).frameNumber, 24000);
    EXPECT_EQ(Timecode(0, fps25).adding(-1.0).frameNumber, -25);
    EXPECT_EQ(Timecode(5, fps25).adding(0.0).frameNumber, 5);
}

TEST(TimecodeAdding, HalfAFrame_GoesAwayFromZero) {
    EXPECT_EQ(Timecode(0, FrameRate::fps24).adding(2.5 / 24).frameNumber, 3);
    EXPECT_EQ(Timecode(10, FrameRate::fps24).adding(-2.5 / 24).frameNumber, 7);
    EXPECT_EQ(Timecode(0, fps25).adding(0.019).frameNumber, 0);
}

// What no 64 bits hold

TEST(Timecode, PositionBeyond64Bits_IsRefused) {
    EXPECT_THROW(Timecode(largest, 0, 0, 0, fps25), OutOfRange);
    EXPECT_THROW(Timecode(largest / 60, largest % 60 + 1, 0, 0, fps25), OutOfRange);
    EXPECT_THROW(Timecode(0, largest / 60, largest, 0, fps25), OutOfRange);
    EXPECT_THROW(Timecode(0, 0, largest / 25 + 1, 0, fps25), OutOfRange);
    EXPECT_THROW(Timecode(0, 0, 1, largest, fps25), OutOfRange);
    EXPECT_THROW(Timecode(0, -1, 0, smallest + 1799, drop29), OutOfRange);
    EXPECT_THROW(Timecode(largest, fps25).adding(1.0), OutOfRange);
}

TEST(TimecodeParse, LabelBeyond64Bits_IsNone) {
    for (const std::string text :
         {"9223372036854775807:0:0:0", "0:9223372036854775807:0:0", "0:0:9223372036854775807:0",
          "0:0:1:9223372036854775807", "0:-1:0;-9223372036854774009"}) {
        EXPECT_EQ(Timecode::parse(text, drop29), std::nullopt) << text;
    }
}

TEST(TimecodeDeathTest, LabelAtANominalRateOfZero_IsFatal) {
    const Timecode timecode(10, FrameRate::other(0, 0.0));

    EXPECT_EXIT(timecode.components(), testing::KilledBySignal(SIGABRT), "division by zero");
    EXPECT_EXIT(timecode.formatted(), testing::KilledBySignal(SIGABRT), "division by zero");
}

TEST(TimecodeAdding, WhatIsNoNumberOrTooLarge_IsRefused) {
    const Timecode timecode(0, fps25);

    for (const double seconds :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN(), 1e18, -1e18}) {
        EXPECT_THROW(timecode.adding(seconds), OutOfRange) << seconds;
    }
}

TEST(Timecode, LargestAndSmallestPositions_StillHaveLabels) {
    EXPECT_EQ(formatted(largest, FrameRate::other(1, 1.0)), "2562047788015215:30:07:00");
    EXPECT_EQ(formatted(smallest, FrameRate::other(1, 1.0)), "-2562047788015215:-30:-8:00");
    EXPECT_EQ(formatted(largest, drop29), "85487080013854:22:15;29");
    EXPECT_EQ(formatted(smallest, drop29), "-85487080013854:-22:-15;-26");
    EXPECT_EQ(formatted(largest, FrameRate::fps59_94df), "42743540006927:11:07;59");
    EXPECT_EQ(formatted(smallest, FrameRate::fps59_94df), "-42743540006927:-11:-7;-56");
}

}  // namespace
