#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Sync/BWFReader.h"
#include "ReelCore/Sync/Synchronizer.h"
#include "Support/Clip.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Arguments = std::vector<std::string>;

class SynchronizerReadTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

private:
    TemporaryFolder folder_;
};

/// What a clip is of which nothing can be learned.
VideoClip blank(const URL& url) {
    return {url, 0.0, 0.0, FrameRate::fps24, std::nullopt, 1920, 1080};
}

/// An ffprobe that answers each query by what it asks for.
std::string answers(const std::string& rate, const std::string& streamTimecode,
                    const std::string& fileTimecode, const std::string& duration,
                    const std::string& size) {
    return "case \"$*\" in\n*r_frame_rate*) printf '" + rate + "';;\n*stream_tags*) printf '" +
           streamTimecode + "';;\n*format_tags*) printf '" + fileTimecode +
           "';;\n*format=duration*) printf '" + duration + "';;\n*width*) printf '" + size +
           "';;\nesac";
}

}  // namespace

TEST_F(SynchronizerReadTest, Video_ProResWithTimecode_TellsAll) {
    const URL url = at("A001C001 & Söhne.mov");
    ClipRecipe recipe;
    recipe.timecode = "10:00:10:12";
    recipe.seconds = 2.0;
    recipe.size = "320x180";
    makeClip(url, recipe);

    const VideoClip clip = Synchronizer::readVideo(url);

    EXPECT_EQ(clip.url, url);
    EXPECT_EQ(clip.startSeconds, 36010.48);
    EXPECT_EQ(clip.duration, 2.0);
    EXPECT_EQ(clip.frameRate, FrameRate::fps25);
    EXPECT_EQ(clip.startTimecode, Timecode(10, 0, 10, 12, FrameRate::fps25));
    EXPECT_EQ(clip.width, 320);
    EXPECT_EQ(clip.height, 180);
}

TEST_F(SynchronizerReadTest, Video_DropFrame_DropsInItsTimecodeAlone) {
    const URL url = at("C0001.MP4");
    ClipRecipe recipe;
    recipe.rate = "30000/1001";
    recipe.timecode = "01:01:00;02";
    recipe.video = {"-c:v", "mpeg4"};
    recipe.audio = {"-c:a", "aac"};
    makeClip(url, recipe);

    const VideoClip clip = Synchronizer::readVideo(url);

    EXPECT_EQ(clip.frameRate, FrameRate::fps29_97);
    ASSERT_TRUE(clip.startTimecode.has_value());
    EXPECT_EQ(clip.startTimecode->rate, FrameRate::fps29_97df);
    EXPECT_EQ(clip.startTimecode->formatted(), "01:01:00;02");
    EXPECT_DOUBLE_EQ(clip.startSeconds, 3660.0 + 2.0 * 1001.0 / 30000.0);
}

TEST_F(SynchronizerReadTest, Video_MXF_HasTheTimecodeOfItsContainer) {
    const URL url = at("C0001.MXF");
    ClipRecipe recipe;
    recipe.timecode = "23:59:59:24";
    recipe.video = {"-c:v", "mpeg2video"};
    makeClip(url, recipe);

    const VideoClip clip = Synchronizer::readVideo(url);

    EXPECT_EQ(clip.startTimecode, Timecode(23, 59, 59, 24, FrameRate::fps25));
    EXPECT_EQ(clip.startSeconds, 86399.96);
    EXPECT_EQ(clip.duration, 1.0);
    EXPECT_EQ(clip.width, 128);
    EXPECT_EQ(clip.height, 72);
}

TEST_F(SynchronizerReadTest, Video_TransportStream_HasTheSizeOfItsPicture) {
    const std::vector<std::string> h264{"-c:v", "libx264", "-pix_fmt", "yuv420p"};
    // Side data of the stream, which ffprobe marks in its answer.
    const std::vector<std::string> mpeg2{"-c:v",     "mpeg2video", "-b:v",     "4M",
                                         "-maxrate", "8M",         "-bufsize", "2M"};
    for (const auto& video : {h264, mpeg2}) {
        ClipRecipe recipe;
        recipe.size = "320x180";
        recipe.video = video;
        recipe.audio = {"-c:a", "ac3"};
        makeClip(at("00001.MTS"), recipe);

        const VideoClip clip = Synchronizer::readVideo(at("00001.MTS"));

        EXPECT_EQ(clip.frameRate, FrameRate::fps25) << video[1];
        EXPECT_NEAR(clip.duration, 1.0, 0.1) << video[1];
        EXPECT_EQ(clip.width, 320) << video[1];
        EXPECT_EQ(clip.height, 180) << video[1];
    }
}

TEST_F(SynchronizerReadTest, Video_WithoutTimecode_StartsAtMidnight) {
    makeClip(at("clip.mov"));

    const VideoClip clip = Synchronizer::readVideo(at("clip.mov"));

    EXPECT_EQ(clip.startTimecode, std::nullopt);
    EXPECT_EQ(clip.startSeconds, 0.0);
    EXPECT_EQ(clip.duration, 1.0);
    EXPECT_EQ(clip.frameRate, FrameRate::fps25);
}

TEST_F(SynchronizerReadTest, Video_NoClipAtAll_IsBlankAndNoFailure) {
    writeFile(at("empty.mov"), "");
    writeFile(at("noise.mov"), noise(20'000));
    std::filesystem::create_directory(at("folder.mov"));
    std::filesystem::create_symlink("gone", at("broken.mov"));

    for (const char* name : {"empty.mov", "noise.mov", "folder.mov", "broken.mov", "missing.mov"}) {
        EXPECT_EQ(Synchronizer::readVideo(at(name)), blank(at(name))) << name;
    }
}

TEST_F(SynchronizerReadTest, Video_Queries_AreThese) {
    const FakeTool ffprobe("FFPROBE_PATH", answers("24/1", "01:00:00:12", "", "12.5", "3840x2160"));
    const std::string path = at("clip.mov");

    const VideoClip clip = Synchronizer::readVideo(path);

    EXPECT_EQ(clip, (VideoClip{path, 3600.5, 12.5, FrameRate::fps24,
                               Timecode(1, 0, 0, 12, FrameRate::fps24), 3840, 2160}));
    const auto calls = ffprobe.calls();
    ASSERT_EQ(calls.size(), 6U);
    EXPECT_EQ(calls[4], (Arguments{"-v", "error", "-show_entries", "format=duration", "-of",
                                   "default=nokey=1:noprint_wrappers=1", path}));
    EXPECT_EQ(calls[5], (Arguments{"-v", "error", "-select_streams", "v:0", "-show_entries",
                                   "stream=width,height", "-of", "csv=p=0:s=x", path}));
}

TEST_F(SynchronizerReadTest, Video_NoTimecodeInTheStream_IsASeventhQuery) {
    const FakeTool ffprobe("FFPROBE_PATH",
                           answers("25/1", "", "02:00:00:05\\n", "1.0", "1280x720"));

    const VideoClip clip = Synchronizer::readVideo(at("clip.mxf"));

    EXPECT_EQ(ffprobe.calls().size(), 7U);
    EXPECT_EQ(clip.startSeconds, 7200.2);
}

TEST_F(SynchronizerReadTest, Video_OddDuration_IsNone) {
    for (const char* odd : {"", "N/A", "1.0 s", "1.0\\n2.0", "inf", "-inf", "nan", "1e400"}) {
        const FakeTool ffprobe("FFPROBE_PATH", answers("25/1", "00:00:01:00", "", odd, "64x36"));

        const VideoClip clip = Synchronizer::readVideo(at("clip.mov"));

        EXPECT_EQ(clip.duration, 0.0) << odd;
        EXPECT_EQ(clip.startSeconds, 1.0) << odd;
        EXPECT_EQ(clip.width, 64) << odd;
    }
}

TEST_F(SynchronizerReadTest, Video_OddTimecode_StartsAtMidnight) {
    const FakeTool ffprobe("FFPROBE_PATH",
                           answers("25/1", "ten o clock", "01:00:00:00", "1.0", "64x36"));

    const VideoClip clip = Synchronizer::readVideo(at("clip.mov"));

    EXPECT_EQ(clip.startTimecode, std::nullopt);
    EXPECT_EQ(clip.startSeconds, 0.0);
    EXPECT_EQ(clip.duration, 1.0);
}

TEST_F(SynchronizerReadTest, Video_FFprobeThatCannotBeStarted_Fails) {
    writeFile(at("ffprobe"), "no program");
    std::filesystem::permissions(at("ffprobe"), std::filesystem::perms(0755));
    const EnvironmentVariable variable("FFPROBE_PATH", at("ffprobe"));

    EXPECT_THROW(Synchronizer::readVideo(at("clip.mov")), SystemError);
    EXPECT_EQ(Synchronizer::dimensions(at("clip.mov")), (Synchronizer::FrameSize{1920, 1080}));
}

TEST_F(SynchronizerReadTest, Dimensions_Answers_GiveTwoNumbersOrTheDefault) {
    constexpr Synchronizer::FrameSize unknown{1920, 1080};
    const std::vector<std::pair<std::string, Synchronizer::FrameSize>> cases{
        {"3840x2160", {3840, 2160}},
        {"\\n  3840x2160 \\t\\r\\n", {3840, 2160}},
        {"3840x2160x\\n\\n", {3840, 2160}},
        {"xx3840xx2160", {3840, 2160}},
        {"3840xwidex2160", {3840, 2160}},
        {"+3840x-1", {3840, -1}},
        {"0x0", {0, 0}},
        {"", unknown},
        {"\\n", unknown},
        {"x", unknown},
        {"3840", unknown},
        {"3840x", unknown},
        {"3840X2160", unknown},
        {"3840 x 2160", unknown},
        {"3840,2160", unknown},
        {"3840x2160\\n1280x720", {3840, 720}},
        {"3840x2160x1", unknown},
        {"3840.0x2160", unknown},
        {"99999999999999999999x2160", unknown},
        {"3840x2160\\377", unknown},
    };
    for (const auto& [text, size] : cases) {
        const FakeTool ffprobe("FFPROBE_PATH", "printf '" + text + "'");

        EXPECT_EQ(Synchronizer::dimensions(at("clip.mov")), size) << text;
    }
}

TEST_F(SynchronizerReadTest, Dimensions_FFprobeFailsOrComplains_CountsOnlyWhatItPrints) {
    const FakeTool ffprobe("FFPROBE_PATH", "echo 640x480; echo 1x1 >&2; exit 3");

    EXPECT_EQ(Synchronizer::dimensions(at("clip.mov")), (Synchronizer::FrameSize{640, 480}));
}

TEST_F(SynchronizerReadTest, Dimensions_FFprobeComplainsAtLength_IsNotHeldUp) {
    const FakeTool ffprobe("FFPROBE_PATH",
                           "head -c 1000000 /dev/zero | tr '\\0' '!' >&2; echo 640x480");

    EXPECT_EQ(Synchronizer::dimensions(at("clip.mov")), (Synchronizer::FrameSize{640, 480}));
}

TEST_F(SynchronizerReadTest, Audio_Recording_IsWhatItsReaderMakesOfIt) {
    Recording recording;
    recording.timeReference = 172'800'000;
    recording.iXML = "<SCENE>12A</SCENE>";
    writeFile(at("T001.wav"), broadcastWAV(recording));

    const AudioClip clip = Synchronizer::readAudio(at("T001.wav"));

    EXPECT_EQ(clip, BWFReader::read(at("T001.wav")));
    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_EQ(clip.duration, 1.0);
    EXPECT_EQ(clip.scene, "12A");
}

TEST_F(SynchronizerReadTest, Audio_LinkToARecording_IsReadUnderItsOwnName) {
    Recording recording;
    recording.timeReference = 172'800'000;
    writeFile(at("T001.wav"), broadcastWAV(recording));
    std::filesystem::create_symlink("T001.wav", at("link.wav"));

    const AudioClip clip = Synchronizer::readAudio(at("link.wav"));

    EXPECT_EQ(clip.url, at("link.wav"));
    EXPECT_EQ(clip.startSeconds, 3600.0);
}

TEST_F(SynchronizerReadTest, Audio_NoRecording_FailsAsItsReaderDoes) {
    writeFile(at("empty.wav"), "");

    EXPECT_THROW(Synchronizer::readAudio(at("empty.wav")), BWFReader::BWFError);
    EXPECT_THROW(Synchronizer::readAudio(at("gone.wav")), SystemError);
}
