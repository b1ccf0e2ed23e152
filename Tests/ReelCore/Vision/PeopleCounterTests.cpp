#include "ReelCore/Vision/PeopleCounter.h"

#include "FakeDetector.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/OwnMounts.h"
#include "Support/Tool.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using testing::MatchesRegex;
using TestSupport::EnvironmentVariable;
using TestSupport::FakeTool;

using Histogram = PeopleCounter::Histogram;
using Estimate = PeopleCounter::Estimate;

TEST(PeopleCount, MostPeopleInEnoughFrames_AreTheCount) {
    EXPECT_EQ(PeopleCounter::count({{0, 30}, {1, 9}, {2, 1}}, 2), 1);
    EXPECT_EQ(PeopleCounter::count({{0, 30}, {1, 9}, {2, 2}}, 2), 2);
    EXPECT_EQ(PeopleCounter::count({{1, 20}, {3, 2}, {7, 1}}, 2), 3);
    EXPECT_EQ(PeopleCounter::count({{1, 20}, {3, 2}, {7, 1}}, 1), 7);
    EXPECT_EQ(PeopleCounter::count({{1, 20}, {3, 2}}, 0), 3);
}

TEST(PeopleCount, TooFewFramesOfEach_LeaveTheMost) {
    EXPECT_EQ(PeopleCounter::count({{0, 39}, {3, 1}}, 2), 3);
    EXPECT_EQ(PeopleCounter::count({{1, 1}, {2, 1}, {5, 1}}, 2), 5);
}

TEST(PeopleCount, Nobody_IsNoCount) {
    EXPECT_EQ(PeopleCounter::count({{0, 40}}, 2), std::nullopt);
    EXPECT_EQ(PeopleCounter::count({}, 2), std::nullopt);
    EXPECT_EQ(PeopleCounter::count({{-1, 5}}, 2), std::nullopt);
}

/// A clip of 10 seconds, as made-up tools have it, in a temporary folder of its own.
class PeopleCounterOnFrames : public testing::Test {
protected:
    void SetUp() override {
        TestSupport::outputOf("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=red:s=32x32",
                                         "-frames:v", "1", frame_.native()});
    }

    std::optional<Estimate> estimate(const VisionAnalyzer& vision, std::int64_t samples) const {
        const auto never = [] { return false; };
        return PeopleCounter{{}, vision}.estimate("/clip.mov", samples, 2, never);
    }

    void expectNothingLeft() const { EXPECT_EQ(ownFilesIn(temporary_.path()), 0); }

    const TestSupport::TemporaryFolder folder_;
    const TestSupport::TemporaryFolder temporary_;
    const URL frame_ = folder_.path() / "frame.jpg";
    const EnvironmentVariable variable_{"TMPDIR", temporary_.path().native()};
    const FakeTool ffprobe_{"FFPROBE_PATH", "echo 10.0"};
};

TEST_F(PeopleCounterOnFrames, Frames_AreTheMiddlesOfEqualSlices) {
    const FakeTool ffmpeg("FFMPEG_PATH", ffmpegThatGives(frame_));

    EXPECT_EQ(estimate(analyzerThatCounts({1, 2, 0, 2}), 4),
              (Estimate{2, {{0, 1}, {1, 1}, {2, 2}}}));

    ASSERT_EQ(ffmpeg.calls().size(), 4U);
    const std::array<std::string, 4> times{"1.25", "3.75", "6.25", "8.75"};
    for (std::size_t i = 0; i < times.size(); ++i) {
        const auto call = ffmpeg.calls()[i];
        EXPECT_EQ(call.at(4), times[i]);
        EXPECT_EQ(call.at(6), "/clip.mov");
        const std::string hex = "[0-9A-F]";
        EXPECT_THAT(URL(call.back()).parent_path().filename().native(),
                    MatchesRegex("keldobay-count-" + hex + "{8}-" + hex + "{4}-" + hex + "{4}-" +
                                 hex + "{4}-" + hex + "{12}"));
    }
    expectNothingLeft();
}

TEST_F(PeopleCounterOnFrames, NoSamples_AreOne) {
    const FakeTool ffmpeg("FFMPEG_PATH", ffmpegThatGives(frame_));

    EXPECT_EQ(estimate(analyzerThatCounts({1}), 0), (Estimate{1, {{1, 1}}}));
    EXPECT_EQ(estimate(analyzerThatCounts({1}), -7), (Estimate{1, {{1, 1}}}));
    EXPECT_EQ(ffmpeg.calls().at(0).at(4), "5.0");
    EXPECT_EQ(ffmpeg.calls().size(), 2U);
}

TEST_F(PeopleCounterOnFrames, FramesThatCannotBeHad_ArePassedOver) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "case $5 in 1.25) exit 1;; 3.75) ;; 6.25) for last; do :; done; "
                          "echo x >\"$last\";; *) " +
                              ffmpegThatGives(frame_) + ";; esac");

    EXPECT_EQ(estimate(analyzerThatCounts({3}), 4), (Estimate{3, {{3, 1}}}));
    expectNothingLeft();
}

TEST_F(PeopleCounterOnFrames, NoFrameAtAll_IsNoEstimate) {
    const FakeTool ffmpeg("FFMPEG_PATH", "exit 1");

    EXPECT_EQ(estimate(analyzerThatCounts({3}), 4), std::nullopt);
    EXPECT_EQ(ffmpeg.calls().size(), 4U);
    expectNothingLeft();
}

TEST_F(PeopleCounterOnFrames, NobodyInAnyFrame_IsNoEstimate) {
    const FakeTool ffmpeg("FFMPEG_PATH", ffmpegThatGives(frame_));

    EXPECT_EQ(estimate(analyzerThatCounts({0}), 4), std::nullopt);
    EXPECT_EQ(estimate(analyzerThatFails(), 4), std::nullopt);
    expectNothingLeft();
}

TEST_F(PeopleCounterOnFrames, CancelAtOnce_IsNoEstimateAndGrabsNothing) {
    const FakeTool ffmpeg("FFMPEG_PATH", ffmpegThatGives(frame_));

    EXPECT_EQ(
        (PeopleCounter{{}, analyzerThatCounts({1})}.estimate("/clip", 4, 2, [] { return true; })),
        std::nullopt);
    EXPECT_TRUE(ffmpeg.calls().empty());
    expectNothingLeft();
}

TEST_F(PeopleCounterOnFrames, CancelOnTheWay_DecidesOnWhatWasSeen) {
    const FakeTool ffmpeg("FFMPEG_PATH", ffmpegThatGives(frame_));
    int asked = 0;

    const auto found = PeopleCounter{{}, analyzerThatCounts({1, 2, 5})}.estimate(
        "/clip", 40, 2, [&] { return ++asked > 2; });

    EXPECT_EQ(found, (Estimate{2, {{1, 1}, {2, 1}}}));
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(ffmpeg.calls().size(), 2U);
    expectNothingLeft();
}

TEST_F(PeopleCounterOnFrames, LengthThatCannotBeRead_IsNoEstimate) {
    const FakeTool ffmpeg("FFMPEG_PATH", ffmpegThatGives(frame_));

    for (const char* script :
         {"exit 1", "echo N/A", "echo 0.0", "echo -3", "echo inf", "echo 1e300"}) {
        const FakeTool ffprobe("FFPROBE_PATH", script);
        EXPECT_EQ(estimate(analyzerThatCounts({1}), 4), std::nullopt) << script;
    }
    expectNothingLeft();
}

TEST_F(PeopleCounterOnFrames, TemporaryFolderThatCannotBeWritten_IsNoEstimate) {
    const FakeTool ffmpeg("FFMPEG_PATH", ffmpegThatGives(frame_));
    const EnvironmentVariable missing("TMPDIR", (folder_.path() / "missing").native());

    EXPECT_EQ(estimate(analyzerThatCounts({1}), 4), std::nullopt);
}

TEST(PeopleCounter, NoTools_IsNoEstimate) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const int status = TestSupport::statusInOwnMounts([] {
        TestSupport::hideMediaTools();
        const auto found = PeopleCounter{{}, analyzerThatCounts({1})}.estimate(
            "/clip", 4, 2, [] { return false; });
        return found ? 2 : 1;
    });

    EXPECT_EQ(status, 1);
}

}  // namespace

}  // namespace ReelCore
