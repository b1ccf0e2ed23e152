// Runs at one time into one folder, and what becomes of a name that a run has taken.

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcode/TranscodeError.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/FakeTool.h"
#include "Support/FaultyFileSystem.h"
#include "Support/Forked.h"
#include "TranscodeFixture.h"

#include <algorithm>
#include <future>

namespace ReelCore {

namespace {

using TestSupport::FakeTool;
using TestSupport::FaultyFileSystem;
using TestSupport::readFile;
using Names = std::vector<std::string>;

/// A tool's beginning, after which "$last" is the path of its output.
const std::string toItsOutput = "for last; do :; done\n";

class TranscoderNames : public TranscodeFixture {
protected:
    URL out() const { return folder() / "out"; }

    /// Clips of one name on two cards, known by the widths of their pictures.
    TranscodeRequest jobOf(const std::string& card, const std::string& size) const {
        return {clip(card + "/A001.mov", {.size = size,
                                          .seconds = 0.2,
                                          .video = {"-c:v", "mjpeg", "-pix_fmt", "yuvj420p"},
                                          .channels = {}}),
                out(), TranscodePreset::proResProxy, std::nullopt, std::nullopt};
    }

    Names widthsIn(const URL& directory) const {
        Names widths;
        for (const std::string& name : FileSystem::names(directory)) {
            widths.push_back(TestSupport::probed(directory / name, "stream=width", "v:0"));
        }
        std::ranges::sort(widths);
        return widths;
    }
};

TEST_F(TranscoderNames, TwoProcessesAtOnce_EachKeepTheirClip) {
    TranscodeRequest first = jobOf("card 1", "64x64");
    TranscodeRequest second = jobOf("card 2", "96x64");
    for (int round = 0; round < 10; ++round) {
        first.outputDirectory = second.outputDirectory = out() / std::to_string(round);
        const auto statusOf = [](const TranscodeRequest& job) {
            return TestSupport::statusOfForked([&] {
                Transcoder().run(job, ignoreProgress);
                return 0;
            });
        };

        auto other = std::async(std::launch::async, statusOf, second);
        EXPECT_EQ(statusOf(first), 0);
        EXPECT_EQ(other.get(), 0);

        EXPECT_EQ(widthsIn(first.outputDirectory), (Names{"64", "96"})) << round;
    }
}

TEST_F(TranscoderNames, FFmpeg_FindsItsNameTaken) {
    const FakeTool ffmpeg("FFMPEG_PATH", toItsOutput +
                                             "[ -f \"$last\" ] && [ ! -s \"$last\" ] || exit 9\n"
                                             "printf clip >\"$last\"");

    const TranscodeResult result = Transcoder().run(anyJob(), ignoreProgress);

    EXPECT_EQ(result.outputURL, out() / "A001.mov");
    EXPECT_EQ(readFile(result.outputURL), "clip");
}

TEST_F(TranscoderNames, FFmpegThatWroteNothing_LeavesNoEmptyClip) {
    const FakeTool ffmpeg("FFMPEG_PATH", "exit 1");

    EXPECT_THROW(Transcoder().run(anyJob(), ignoreProgress), TranscodeError);
    EXPECT_EQ(FileSystem::names(out()), Names{});
}

TEST_F(TranscoderNames, CancelBeforeAnythingIsWritten_LeavesNoEmptyClip) {
    const FakeTool ffmpeg("FFMPEG_PATH", "exec sleep 100");
    const Transcoder transcoder([&] { return !FileSystem::names(out()).empty(); });

    EXPECT_THROW(transcoder.run(anyJob(), ignoreProgress), TranscodeError);
    EXPECT_EQ(FileSystem::names(out()), Names{});
}

TEST_F(TranscoderNames, FFmpegThatCannotBeStarted_LeavesNoEmptyClip) {
    const TranscodeRequest job = anyJob();
    TestSupport::writeFile(folder() / "text", "no program");
    std::filesystem::permissions(folder() / "text", std::filesystem::perms(0755));
    const TestSupport::EnvironmentVariable ffmpeg("FFMPEG_PATH", folder() / "text");

    EXPECT_THROW(Transcoder().run(job, ignoreProgress), SystemError);
    EXPECT_EQ(FileSystem::names(out()), Names{});
}

TEST_F(TranscoderNames, WhatFFmpegWrote_StaysAfterItsFailure) {
    const FakeTool ffmpeg("FFMPEG_PATH", toItsOutput + "printf part >\"$last\"; exit 1");

    EXPECT_THROW(Transcoder().run(anyJob(), ignoreProgress), TranscodeError);
    EXPECT_EQ(readFile(out() / "A001.mov"), "part");
}

TEST_F(TranscoderNames, NameThatCannotBeLookedAt_IsNotFree) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const FakeTool ffmpeg("FFMPEG_PATH");
    TranscodeRequest job = anyJob();
    TestSupport::writeFile(folder() / "back/A001.mov", "somebody's clip");
    const FaultyFileSystem drive(folder() / "back", folder() / "drive",
                                 {.failAttributesOf = "A001.mov"});
    job.outputDirectory = drive.path();

    EXPECT_THROW(Transcoder().run(job, ignoreProgress), SystemError);
    EXPECT_TRUE(ffmpeg.calls().empty());
    EXPECT_EQ(readFile(folder() / "back/A001.mov"), "somebody's clip");
}

}  // namespace

}  // namespace ReelCore
