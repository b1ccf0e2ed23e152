#include "ReelCore/Sync/ALEWriter.h"
#include "ReelCore/Sync/FCPXMLWriter.h"
#include "ReelCore/Sync/Synchronizer.h"
#include "Support/Clip.h"
#include "Support/FolderTree.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace ReelCore {

namespace {

using testing::HasSubstr;
using TestSupport::ClipRecipe;

/// Clips that a label can't be counted in: none may end the program, as arithmetic on them would.
class UncountableClip : public testing::Test {
protected:
    URL clip(const std::string& name, const std::string& rate, const std::string& timecode) const {
        const URL url = folder_.path() / name;
        TestSupport::makeClip(url, ClipRecipe{.rate = rate,
                                              .seconds = 6.0,
                                              .video = {"-c:v", "mjpeg", "-pix_fmt", "yuvj420p"},
                                              .channels = {},
                                              .more = {"-metadata", "timecode=" + timecode}});
        return url;
    }

    const TestSupport::TemporaryFolder folder_;
};

TEST_F(UncountableClip, TimeLapseBelowHalfAFrameASecond_HasNoTimecode) {
    const VideoClip read = Synchronizer::readVideo(clip("clip.avi", "1/3", "01:00:00:00"));

    EXPECT_EQ(read.frameRate.nominal(), 0);
    EXPECT_EQ(read.startTimecode, std::nullopt);
    EXPECT_EQ(read.startSeconds, 0.0);
    EXPECT_NEAR(read.duration, 6.0, 0.5);
}

TEST_F(UncountableClip, TimeLapseFirst_TimelineIsCountedInTwentyFour) {
    const SyncResult day{{{Synchronizer::readVideo(clip("clip.avi", "1/3", "01:00:00:00")), {}}},
                         {}};

    EXPECT_THAT(FCPXMLWriter::fcpxml(day, "Day", "keldobay"),
                HasSubstr(R"(frameDuration="1/24s")"));
    EXPECT_THAT(ALEWriter::ale(day), HasSubstr("\nFPS\t24.00\n"));
}

TEST_F(UncountableClip, TimecodeTooLargeToCount_IsNone) {
    for (const char* tag : {"9223372036854775807:00:00:00", "00:00:00:9223372036854775807",
                            "9999999999:00:00:00", "-999999999999:00:00;00"}) {
        EXPECT_EQ(Synchronizer::readVideo(clip("clip.mkv", "25", tag)).startTimecode, std::nullopt)
            << tag;
    }
}

TEST_F(UncountableClip, LargeFieldsThatCanBeCounted_AreTaken) {
    EXPECT_EQ(Synchronizer::readVideo(clip("clip.mkv", "25", "999999999:00:00:00")).startTimecode,
              Timecode(999'999'999, 0, 0, 0, FrameRate::fps25));
}

// Who opens a pipe waits for a writer that never comes.
TEST_F(UncountableClip, PipeUnderTheNameOfAClip_IsNotAskedAndHasNothing) {
    const URL pipe = folder_.path() / "pipe.mov";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

    EXPECT_EQ(Synchronizer::readVideo(pipe),
              (VideoClip{pipe, 0.0, 0.0, FrameRate::fps24, std::nullopt, 1920, 1080}));
}

}  // namespace

}  // namespace ReelCore
