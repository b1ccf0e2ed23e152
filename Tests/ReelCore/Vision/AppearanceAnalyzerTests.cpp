#include "ReelCore/Vision/AppearanceAnalyzer.h"

#include "FakeDetector.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/OwnMounts.h"
#include "Support/Tool.h"

#include <filesystem>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::EnvironmentVariable;
using TestSupport::FakeTool;

const Timecode oneHour(1, 0, 0, 0, FrameRate::fps25);
const auto never = [] { return false; };

std::vector<TranscriptSegment> lineOf(const std::string& speaker, double start, double end) {
    return {{speaker, start, end, "words"}};
}

class AppearanceAnalyzerOnFrames : public testing::Test {
protected:
    void SetUp() override {
        TestSupport::outputOf("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=blue:s=64x64",
                                         "-frames:v", "1", frame_.native()});
        ffmpeg_.emplace("FFMPEG_PATH", ffmpegThatGives(frame_));
    }

    void expectNothingLeft() const { EXPECT_EQ(ownFilesIn(temporary_.path()), 0); }

    const TestSupport::TemporaryFolder folder_;
    const TestSupport::TemporaryFolder temporary_;
    const URL frame_ = folder_.path() / "frame.png";
    const EnvironmentVariable variable_{"TMPDIR", temporary_.path().native()};
    std::optional<FakeTool> ffmpeg_;
    const AppearanceAnalyzer analyzer_{
        {}, analyzerThatFinds({{{0, 0, 1, 1}, {0, 0, 1, 1}}}, {{{0, 0, 1, 1}}})};
};

TEST_F(AppearanceAnalyzerOnFrames, Hint_SaysWhoIsThereInTheMiddleOfTheLine) {
    const auto hint =
        analyzer_.analyze("/clip.mov", "Anna", lineOf("Anna", 2.0, 3.0), oneHour, never);

    EXPECT_EQ(hint, (AppearanceHint{"Anna", "01:00:02:13", 1, 2, "blue"}));
    ASSERT_EQ(ffmpeg_->calls().size(), 1U);
    const auto call = ffmpeg_->calls()[0];
    EXPECT_EQ(call.at(4), "2.5");
    EXPECT_EQ(call.at(6), "/clip.mov");
    const std::string hex = "[0-9A-F]";
    EXPECT_THAT(URL(call.back()).parent_path().filename().native(),
                testing::MatchesRegex("keldobay-appear-" + hex + "{8}(-" + hex + "{4}){3}-" + hex +
                                      "{12}"));
    expectNothingLeft();
}

TEST_F(AppearanceAnalyzerOnFrames, LongestLineOfTheSpeaker_IsLookedAt) {
    const std::vector<TranscriptSegment> lines{{"Anna", 0, 1, "a"},
                                               {"Ben", 1, 9, "b"},
                                               {"Anna", 10, 12, "c"},
                                               {"Anna", 20, 22, "d"},
                                               {"Anna", 30, 31.5, "e"}};

    EXPECT_EQ(analyzer_.analyze("/clip", "Anna", lines, oneHour, never)->atTimecode, "01:00:11:00");
    EXPECT_EQ(analyzer_.analyze("/clip", "Ben", lines, oneHour, never)->atTimecode, "01:00:05:00");
}

TEST_F(AppearanceAnalyzerOnFrames, SpeakerWithoutALine_HasNoHint) {
    EXPECT_EQ(analyzer_.analyze("/clip", "anna", lineOf("Anna", 2, 3), oneHour, never),
              std::nullopt);
    EXPECT_EQ(analyzer_.analyze("/clip", "Anna", {}, oneHour, never), std::nullopt);
    EXPECT_TRUE(ffmpeg_->calls().empty());
}

TEST_F(AppearanceAnalyzerOnFrames, Cancel_IsAskedOnceAndLeavesNoHint) {
    int asked = 0;

    EXPECT_EQ(analyzer_.analyze("/clip", "Anna", lineOf("Anna", 2, 3), oneHour,
                                [&] { return ++asked == 1; }),
              std::nullopt);
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(ffmpeg_->calls().empty());

    EXPECT_TRUE(analyzer_.analyze("/clip", "Anna", lineOf("Anna", 2, 3), oneHour,
                                  [&] { return ++asked > 2; }));
    EXPECT_EQ(asked, 2);
}

TEST_F(AppearanceAnalyzerOnFrames, FrameThatCannotBeHad_LeavesNoHint) {
    for (const char* script : {"exit 1", "exit 0", "for last; do :; done; echo x >\"$last\""}) {
        const FakeTool ffmpeg("FFMPEG_PATH", script);
        EXPECT_EQ(analyzer_.analyze("/clip", "Anna", lineOf("Anna", 2, 3), oneHour, never),
                  std::nullopt)
            << script;
        EXPECT_EQ(ffmpeg.calls().size(), 1U);
    }
    expectNothingLeft();
}

TEST_F(AppearanceAnalyzerOnFrames, TimesBeyondAllTimecode_LeaveNoHint) {
    constexpr double huge = std::numeric_limits<double>::max();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();

    EXPECT_EQ(analyzer_.analyze("/clip", "Anna", lineOf("Anna", 0, huge), oneHour, never),
              std::nullopt);
    EXPECT_EQ(analyzer_.analyze("/clip", "Anna", lineOf("Anna", nan, nan), oneHour, never),
              std::nullopt);
    EXPECT_EQ(analyzer_.analyze("/clip", "Anna", lineOf("Anna", 0, 1e17), oneHour, never),
              std::nullopt);
    expectNothingLeft();
}

TEST_F(AppearanceAnalyzerOnFrames, TemporaryFolderThatIsMissing_LeavesNoHint) {
    const EnvironmentVariable missing("TMPDIR", (folder_.path() / "missing").native());

    EXPECT_EQ(analyzer_.analyze("/clip", "Anna", lineOf("Anna", 2, 3), oneHour, never),
              std::nullopt);
}

TEST(AppearanceAnalyzer, NoTools_IsUnavailableAndGivesNoHint) {
    EXPECT_TRUE(AppearanceAnalyzer().isAvailable());
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const int status = TestSupport::statusInOwnMounts([] {
        TestSupport::hideMediaTools();
        const AppearanceAnalyzer analyzer;
        const auto hint = analyzer.analyze("/clip", "Anna", lineOf("Anna", 2, 3), oneHour, never);
        return hint || analyzer.isAvailable() ? 2 : 1;
    });

    EXPECT_EQ(status, 1);
}

}  // namespace

}  // namespace ReelCore
