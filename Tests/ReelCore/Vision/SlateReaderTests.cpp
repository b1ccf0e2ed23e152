#include "ReelCore/Vision/SlateReader.h"

#include "DrawnSlate.h"
#include "FakeDetector.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/OwnMounts.h"
#include "Support/Tool.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::EnvironmentVariable;
using TestSupport::FakeTool;

const auto never = [] { return false; };

class SlateReaderOnFrames : public testing::Test {
protected:
    void SetUp() override {
        if (const auto missing = slatesMissing(); !missing.empty()) GTEST_SKIP() << missing;
        drawText({"HELLO WORLD"}, path("none.png"));
        drawText({"SCENE 12A", "TAKE 3"}, path("two.png"));
        drawText({"SCENE 12A", "TAKE 3", "ROLL A004", "24 FPS"}, path("four.png"));
        drawText({"SCENE 99", "TAKE 7", "ROLL B001", "25 FPS"}, path("other.png"));
    }

    URL path(const std::string& name) const { return folder_.path() / name; }

    /// ffmpeg gives these pictures, whichever time is asked for; for "-" it fails.
    std::string giving(const std::vector<std::string>& names) const {
        std::string script = "n=$(cat '" + path("n").native() +
                             "' 2>/dev/null || echo 0)\necho $((n + 1)) >'" + path("n").native() +
                             "'\nfor last; do :; done\ncase $n in\n";
        for (std::size_t i = 0; i < names.size(); ++i) {
            script +=
                std::to_string(i) + ") " +
                (names[i] == "-" ? "exit 1" : "cp '" + path(names[i]).native() + "' \"$last\"") +
                ";;\n";
        }
        return script + "*) exit 1;; esac";
    }

    void expectNothingLeft() const { EXPECT_EQ(ownFilesIn(temporary_.path()), 0); }

    const TestSupport::TemporaryFolder folder_;
    const TestSupport::TemporaryFolder temporary_;
    const EnvironmentVariable variable_{"TMPDIR", temporary_.path().native()};
};

TEST_F(SlateReaderOnFrames, FirstFrameWithTheMostFields_Wins) {
    const FakeTool ffmpeg("FFMPEG_PATH", giving({"two.png", "four.png", "other.png"}));

    const auto slate = SlateReader().read("/clip.mov", 3.0, 3, never);

    ASSERT_TRUE(slate);
    EXPECT_EQ(slate->fieldCount(), 4);
    EXPECT_EQ(slate->summary(), "Sc 12A · Tk 3 · Roll A004");
    EXPECT_EQ(slate->fps, "24");
    EXPECT_EQ(slate->rawLines,
              (std::vector<std::string>{"SCENE 12A", "TAKE 3", "ROLL A004", "24 FPS"}));
    ASSERT_EQ(ffmpeg.calls().size(), 3U);
    const std::string hex = "[0-9A-F]";
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(ffmpeg.calls()[i].at(4), (std::array{"0.5", "1.5", "2.5"}.at(i)));
        EXPECT_EQ(ffmpeg.calls()[i].at(6), "/clip.mov");
        EXPECT_THAT(URL(ffmpeg.calls()[i].back()).parent_path().filename().native(),
                    testing::MatchesRegex("keldobay-slate-" + hex + "{8}(-" + hex + "{4}){3}-" +
                                          hex + "{12}"));
    }
    expectNothingLeft();
}

TEST_F(SlateReaderOnFrames, FramesWithoutFields_ArePassedOver) {
    const FakeTool ffmpeg("FFMPEG_PATH", giving({"-", "none.png", "two.png", "n"}));

    EXPECT_EQ(SlateReader().read("/clip.mov", 10.0, 4, never)->summary(), "Sc 12A · Tk 3");
    expectNothingLeft();
}

TEST_F(SlateReaderOnFrames, NoFieldsAnywhere_IsNoSlate) {
    const FakeTool ffmpeg("FFMPEG_PATH", giving({"-", "none.png", "n"}));

    EXPECT_EQ(SlateReader().read("/clip.mov", 10.0, 3, never), std::nullopt);
    EXPECT_EQ(ffmpeg.calls().size(), 3U);
    expectNothingLeft();
}

TEST_F(SlateReaderOnFrames, NoSamples_AreOne) {
    const FakeTool ffmpeg("FFMPEG_PATH", giving({"two.png", "four.png"}));

    EXPECT_EQ(SlateReader().read("/clip.mov", 10.0, 0, never)->fieldCount(), 2);
    EXPECT_EQ(ffmpeg.calls().size(), 1U);
    EXPECT_EQ(ffmpeg.calls()[0].at(4), "5.0");
}

TEST_F(SlateReaderOnFrames, Cancel_LeavesWhatWasFound) {
    const FakeTool ffmpeg("FFMPEG_PATH", giving({"two.png", "four.png"}));
    int asked = 0;

    EXPECT_EQ(SlateReader().read("/clip", 10.0, 8, [&] { return ++asked > 1; })->fieldCount(), 2);
    EXPECT_EQ(ffmpeg.calls().size(), 1U);
    EXPECT_EQ(SlateReader().read("/clip", 10.0, 8, [] { return true; }), std::nullopt);
    EXPECT_EQ(ffmpeg.calls().size(), 1U);
    expectNothingLeft();
}

TEST_F(SlateReaderOnFrames, ClipShorterThanTheHead_GivesWhatItHas) {
    const URL clip = path("clip.mp4");
    TestSupport::outputOf("ffmpeg", {"-v", "error", "-loop", "1", "-i", path("four.png").native(),
                                     "-t", "1", "-r", "10", "-pix_fmt", "yuv420p", clip.native()});

    EXPECT_EQ(SlateReader().read(clip, 10.0, 8, never)->fieldCount(), 4);
    expectNothingLeft();
}

TEST_F(SlateReaderOnFrames, FolderThatCannotBeMade_IsTheSystemsFailure) {
    const EnvironmentVariable missing("TMPDIR", path("missing").native());

    EXPECT_THROW(SlateReader().read("/clip", 10.0, 8, never), SystemError);
}

TEST(SlateReader, NoTools_FailsAndSaysSo) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const int status = TestSupport::statusInOwnMounts([] {
        TestSupport::hideMediaTools();
        try {
            SlateReader().read("/clip", 10.0, 8, never);
        } catch (const TranscribeError& error) {
            return error.is<TranscribeError::FFmpegNotFound>() ? 1 : 2;
        }
        return 3;
    });

    EXPECT_EQ(status, 1);
}

}  // namespace

}  // namespace ReelCore
