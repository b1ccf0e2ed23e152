#include "ReelCore/Vision/FrameGrabber.h"

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "Support/AwkwardNames.h"
#include "Support/Clip.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/OwnMounts.h"
#include "Support/Tool.h"

#include <filesystem>
#include <functional>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace ReelCore {

namespace {

using TestSupport::EnvironmentVariable;
using TestSupport::FakeTool;
using TestSupport::TemporaryFolder;

/// A second of red and then a second of blue, 25 frames each.
void makeTwoColours(const URL& clip) {
    TestSupport::outputOf(
        "ffmpeg", {"-v", "error", "-f", "lavfi", "-i",
                   "color=red:s=64x36:r=25:d=1[a];color=blue:s=64x36:r=25:d=1[b];[a][b]concat",
                   "-c:v", "libx264", "-pix_fmt", "yuv444p", "file:" + clip.native()});
}

/// The colour in the middle of a still: "red", "blue", or "neither".
std::string colourOf(const URL& still) {
    const auto image = FrameGrabber::loadCGImage(still);
    if (!image) return "no picture";
    const auto middle =
        static_cast<std::size_t>((image->height / 2 * image->width + image->width / 2) * 3);
    const int blue = image->pixels.at(middle);
    const int red = image->pixels.at(middle + 2);
    if (red > 200 && blue < 50) return "red";
    return blue > 200 && red < 50 ? "blue" : "neither";
}

/// The failure's own words; for another end, which it was.
std::string failureOf(const std::function<void()>& grab) {
    try {
        grab();
    } catch (const TranscribeError& error) {
        if (const auto* failed = error.get<TranscribeError::ExtractionFailed>()) {
            return failed->reason;
        }
        return error.description();
    }
    return "no failure";
}

class FrameGrabberOnClip : public testing::Test {
protected:
    void SetUp() override { makeTwoColours(clip_); }

    const TemporaryFolder folder_;
    const URL clip_ = folder_.path() / "clip.mp4";
    const URL stills_ = folder_.path() / "new" / "stills";
    const FrameGrabber grabber_{};
};

TEST(FrameGrabber, Grab_AsksForOneFrameAtTheTimeAsItIsWritten) {
    const TemporaryFolder folder;
    const FakeTool ffmpeg("FFMPEG_PATH", "for last; do :; done; : > \"$last\"");
    struct Expectation {
        double seconds;
        const char* time;
        const char* name;
    };

    for (const auto& [seconds, time, name] : {Expectation{1.2345, "1.2345", "frame_1235.jpg"},
                                              {12.5, "12.5", "frame_12500.jpg"},
                                              {3600.0, "3600.0", "frame_3600000.jpg"},
                                              {0.0, "0.0", "frame_0.jpg"},
                                              {0.0005, "0.0005", "frame_1.jpg"},
                                              {0.0004999, "0.0004999", "frame_0.jpg"},
                                              {-0.0625, "-0.0625", "frame_-63.jpg"},
                                              {1e7, "10000000.0", "frame_10000000000.jpg"},
                                              {1e-7, "0.0000001", "frame_0.jpg"}}) {
        const URL still = FrameGrabber().grabFile("/media/clip.mov", seconds, folder.path());

        EXPECT_EQ(still, folder.path() / name);
        EXPECT_EQ(
            ffmpeg.calls().back(),
            (std::vector<std::string>{"-y", "-v", "error", "-ss", time, "-i", "/media/clip.mov",
                                      "-frames:v", "1", "-q:v", "2", still.native()}));
    }
}

TEST(FrameGrabber, FFmpegThatFails_IsAFailureThoughAFileIsThere) {
    const TemporaryFolder folder;
    const FakeTool ffmpeg("FFMPEG_PATH", "for last; do :; done; echo x > \"$last\"; exit 1");

    EXPECT_EQ(failureOf([&] { FrameGrabber().grabFile("/clip", 12.5, folder.path()); }),
              "frame grab at 12.5s failed");
}

TEST(FrameGrabber, FFmpegThatSucceedsWithoutAFile_IsAFailure) {
    const TemporaryFolder folder;
    const FakeTool ffmpeg("FFMPEG_PATH");

    EXPECT_EQ(failureOf([&] { FrameGrabber().grabFile("/clip", 3600.0, folder.path()); }),
              "frame grab at 3600.0s failed");
}

TEST(FrameGrabber, FFmpegThatSaysMuch_IsNotWaitedForForEver) {
    const TemporaryFolder folder;
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "head -c 1000000 /dev/zero; head -c 1000000 /dev/zero >&2; exit 1");

    EXPECT_EQ(failureOf([&] { FrameGrabber().grabFile("/clip", 1, folder.path()); }),
              "frame grab at 1.0s failed");
}

TEST(FrameGrabber, FFmpegThatCannotBeStarted_FailsAsTheSystemDoes) {
    const TemporaryFolder folder;
    const URL text = folder.path() / "text";
    TestSupport::writeFile(text, "no program");
    std::filesystem::permissions(text, std::filesystem::perms(0755));
    const EnvironmentVariable ffmpeg("FFMPEG_PATH", text.native());

    EXPECT_THROW(FrameGrabber().grabFile("/clip", 1, folder.path()), SystemError);
}

TEST(FrameGrabber, FolderThatCannotBeMade_FailsAsTheSystemDoes) {
    const TemporaryFolder folder;
    TestSupport::writeFile(folder.path() / "file", "x");

    EXPECT_THROW(FrameGrabber().grabFile("/clip", 1, folder.path() / "file" / "below"),
                 SystemError);
}

TEST(FrameGrabber, NoTools_IsUnavailableAndSaysSo) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const TemporaryFolder folder;
    const URL directory = folder.path() / "new";

    const int isAsPromised = TestSupport::statusInOwnMounts([&] {
        TestSupport::hideMediaTools();
        const std::string said = failureOf([&] { FrameGrabber().grabFile("/clip", 1, directory); });
        const bool saysSo = said == "ffmpeg not found (needed to extract audio tracks).";
        return saysSo && !FrameGrabber().isAvailable() ? 1 : 0;
    });

    EXPECT_EQ(isAsPromised, 1);
    EXPECT_FALSE(std::filesystem::exists(directory));
    EXPECT_TRUE(FrameGrabber().isAvailable());
}

TEST_F(FrameGrabberOnClip, Still_IsTheFrameOfThatTime) {
    EXPECT_EQ(colourOf(grabber_.grabFile(clip_, 0.0, stills_)), "red");
    EXPECT_EQ(colourOf(grabber_.grabFile(clip_, 0.96, stills_)), "red");
    EXPECT_EQ(colourOf(grabber_.grabFile(clip_, 1.0, stills_)), "blue");
    EXPECT_EQ(colourOf(grabber_.grabFile(clip_, 1.9, stills_)), "blue");
    EXPECT_EQ(TestSupport::readTree(stills_).size(), 4U);
}

TEST_F(FrameGrabberOnClip, SameMillisecond_ReplacesTheStill) {
    const URL first = grabber_.grabFile(clip_, 1.0, stills_);
    TestSupport::writeFile(first, "of another clip");

    const URL second = grabber_.grabFile(clip_, 1.0001, stills_);

    EXPECT_EQ(second, first);
    EXPECT_EQ(colourOf(second), "blue");
}

TEST_F(FrameGrabberOnClip, TimeBehindTheEnd_IsAFailure) {
    EXPECT_EQ(failureOf([&] { grabber_.grabFile(clip_, 3600.0, stills_); }),
              "frame grab at 3600.0s failed");
    EXPECT_EQ(failureOf([&] { grabber_.grabFile(clip_, 2.5, stills_); }),
              "frame grab at 2.5s failed");
}

TEST_F(FrameGrabberOnClip, TimeBehindTheEndWithAnEarlierStill_DoesNotGiveThatForIt) {
    std::filesystem::create_directories(stills_);
    TestSupport::writeFile(stills_ / "frame_3600000.jpg", "of a longer clip");

    EXPECT_EQ(failureOf([&] { grabber_.grabFile(clip_, 3600.0, stills_); }),
              "frame grab at 3600.0s failed");
}

TEST_F(FrameGrabberOnClip, LinkToAStill_IsLoaded) {
    const URL link = folder_.path() / "link.jpg";
    std::filesystem::create_symlink(grabber_.grabFile(clip_, 1.0, stills_), link);

    EXPECT_EQ(colourOf(link), "blue");
}

TEST_F(FrameGrabberOnClip, WhatIsNoClip_IsAFailureAndLeavesNoChild) {
    TestSupport::writeFile(folder_.path() / "empty.mov", "");
    TestSupport::writeFile(folder_.path() / "noise.mov", TestSupport::noise(100'000));
    std::filesystem::create_directory(folder_.path() / "folder.mov");

    for (const char* name : {"empty.mov", "noise.mov", "folder.mov", "missing.mov"}) {
        const URL clip = folder_.path() / name;
        EXPECT_EQ(failureOf([&] { grabber_.grabFile(clip, 0.0, stills_); }),
                  "frame grab at 0.0s failed")
            << name;
    }
    EXPECT_TRUE(TestSupport::readTree(stills_).empty());
    EXPECT_LT(::waitpid(-1, nullptr, WNOHANG), 0) << "a child is left behind";
}

TEST_F(FrameGrabberOnClip, AwkwardNames_AreNamesOfFilesAndNothingElse) {
    const int wrong = TestSupport::statusOfForked([&] {
        std::filesystem::current_path(folder_.path());
        int differences = 0;
        for (const std::string& name : TestSupport::awkwardNames) {
            const URL relative = name + ".mp4";
            std::filesystem::copy_file("clip.mp4", relative);
            if (colourOf(grabber_.grabFile(relative, 1.5, "stills")) != "blue") ++differences;
            std::filesystem::remove_all("stills");
        }
        return differences;
    });

    EXPECT_EQ(wrong, 0);
}

}  // namespace

}  // namespace ReelCore
