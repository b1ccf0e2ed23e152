#include "ReelCore/Sync/ALEWriter.h"

#include "EditorialSamples.h"
#include "ReelCore/Platform/Arithmetic.h"
#include "Support/EditorialReaders.h"
#include "Support/FolderTree.h"

#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Row = std::vector<std::string>;

VideoClip pictureAt(const URL& url, double duration, const Timecode& start) {
    VideoClip clip = picture(url, duration, start.rate);
    clip.startTimecode = start;
    return clip;
}

AudioClip slated(AudioClip clip, const std::string& tape, const std::string& scene,
                 const std::string& take) {
    clip.tape = tape;
    clip.scene = scene;
    clip.take = take;
    return clip;
}

/// The lines of the clips.
std::string dataOf(const std::vector<SyncGroup>& groups) {
    const std::string text = ALEWriter::ale({groups, {}});
    return text.substr(text.find("\nData\n") + 6);
}

TEST(ALEWriter, EmptyResult_IsAHeadWithoutLines) {
    EXPECT_EQ(ALEWriter::ale({}),
              "Heading\n"
              "FIELD_DELIM\tTABS\n"
              "VIDEO_FORMAT\t1080\n"
              "AUDIO_FORMAT\t48kHz\n"
              "FPS\t24.00\n"
              "\n"
              "Column\n"
              "Name\tTracks\tStart\tEnd\tTape\tScene\tTake\tSound Roll\tSound TC\n"
              "\n"
              "Data\n");
}

TEST(ALEWriter, Day_IsOneLineAClipWithTheSlateOfItsSound) {
    VideoClip first = pictureAt("/day/A&B.mov", 2.002, Timecode(10, 0, 0, 0, FrameRate::fps23_976));
    first.width = 4096;
    first.height = 2160;
    const VideoClip mute =
        pictureAt("/day/C2.mov", 1.001, Timecode(10, 0, 10, 12, FrameRate::fps25));
    VideoClip timeless = picture("/day/C3.mov", 1001, FrameRate::fps30);
    timeless.startSeconds = 3600;
    const VideoClip drop =
        pictureAt("/day/C4.mov", 2.002, Timecode(1, 0, 59, 29, FrameRate::fps29_97df));
    AudioClip shared = slated(sound("/day/SOUND/T1.wav", 60), "SR01", "12A", "3");
    shared.startSeconds = 35990;
    const AudioClip bare = sound("/day/SOUND/T2.wav", 60);

    const std::string text = ALEWriter::ale({{pair(first, shared),
                                              {mute, {}},
                                              {timeless, {{bare, 0, 0.5}, {shared, 0, 0.9}}},
                                              pair(drop, bare)},
                                             {sound("/day/SOUND/LONELY.wav", 5)}});

    EXPECT_EQ(text,
              "Heading\n"
              "FIELD_DELIM\tTABS\n"
              "VIDEO_FORMAT\t1080\n"
              "AUDIO_FORMAT\t48kHz\n"
              "FPS\t23.98\n"
              "\n"
              "Column\n"
              "Name\tTracks\tStart\tEnd\tTape\tScene\tTake\tSound Roll\tSound TC\n"
              "\n"
              "Data\n"
              "A&B.mov\tV\t10:00:00:00\t10:00:02:00\tSR01\t12A\t3\tT1.wav\t09:59:14:01\n"
              "C2.mov\tV\t10:00:10:12\t10:00:11:12\t\t\t\t\t\n"
              "C3.mov\tV\t00:59:56:10\t01:16:36:10\tSR01\t12A\t3\tT1.wav\t09:59:14:01\n"
              "C4.mov\tV\t01:00:59;29\t01:01:02;01\t\t\t\tT2.wav\t00:00:00:00\n");
}

TEST(ALEWriter, FramesPerSecond_AreThoseOfTheFirstClipToTwoPlaces) {
    const auto fpsOf = [](FrameRate rate) {
        const std::string text = ALEWriter::ale(
            {{{picture("/day/C1.mov", 1, rate), {}}, {picture("/day/C2.mov", 1), {}}}, {}});
        const auto start = text.find("FPS\t");
        return text.substr(start, text.find('\n', start) - start);
    };

    EXPECT_EQ(fpsOf(FrameRate::fps24), "FPS\t24.00");
    EXPECT_EQ(fpsOf(FrameRate::fps25), "FPS\t25.00");
    EXPECT_EQ(fpsOf(FrameRate::fps30), "FPS\t30.00");
    EXPECT_EQ(fpsOf(FrameRate::fps23_976), "FPS\t23.98");
    EXPECT_EQ(fpsOf(FrameRate::fps29_97), "FPS\t29.97");
    EXPECT_EQ(fpsOf(FrameRate::fps29_97df), "FPS\t29.97");
    EXPECT_EQ(fpsOf(FrameRate::fps59_94), "FPS\t59.94");
    EXPECT_EQ(fpsOf(FrameRate::fps59_94df), "FPS\t59.94");
    EXPECT_EQ(fpsOf(FrameRate::other(48, 48000.0 / 1001.0)), "FPS\t47.95");
    EXPECT_EQ(fpsOf(FrameRate::other(120, 120.0)), "FPS\t120.00");
}

TEST(ALEWriter, ClipWithATimecode_CountsInItsOwnRateWhateverTheFirstClips) {
    const VideoClip first = picture("/day/C1.mov", 1, FrameRate::fps24);

    EXPECT_EQ(
        dataOf({{first, {}},
                {pictureAt("/day/C2.mov", 0.98, Timecode(90000, FrameRate::fps25)), {}},
                {pictureAt("/day/C3.mov", 60, Timecode(0, FrameRate::fps29_97)), {}},
                {pictureAt("/day/C4.mov", 60, Timecode(0, FrameRate::fps29_97df)), {}},
                {pictureAt("/day/C5.mov", 1, Timecode(0, FrameRate::other(48, 47.952))), {}}}),
        "C1.mov\tV\t00:00:00:00\t00:00:01:00\t\t\t\t\t\n"
        "C2.mov\tV\t01:00:00:00\t01:00:01:00\t\t\t\t\t\n"
        "C3.mov\tV\t00:00:00:00\t00:00:59:28\t\t\t\t\t\n"
        "C4.mov\tV\t00:00:00;00\t00:00:59;28\t\t\t\t\t\n"
        "C5.mov\tV\t00:00:00:00\t00:00:01:00\t\t\t\t\t\n");
}

TEST(ALEWriter, ClipWithoutATimecode_CountsInTheFirstClipsRate) {
    VideoClip first = picture("/day/C1.mov", 1, FrameRate::fps59_94df);
    first.startSeconds = 60.06;
    VideoClip second = picture("/day/C2.mov", 0, FrameRate::fps25);
    second.startSeconds = 60.04;

    EXPECT_EQ(dataOf({{first, {}}, {second, {}}}),
              "C1.mov\tV\t00:01:00;04\t00:01:01;04\t\t\t\t\t\n"
              "C2.mov\tV\t00:00:59;59\t00:00:59;59\t\t\t\t\t\n");
}

TEST(ALEWriter, HalfAFrame_GoesUp) {
    const FrameRate twoASecond = FrameRate::other(2, 2.0);
    VideoClip timeless = picture("/day/C1.mov", 0.5, twoASecond);
    timeless.startSeconds = 10.25;
    AudioClip recording = sound("/day/T1.wav", 60);
    recording.startSeconds = 9.75;

    EXPECT_EQ(dataOf({pair(timeless, recording),
                      {pictureAt("/day/C2.mov", 0.25, Timecode(0, twoASecond)), {}}}),
              "C1.mov\tV\t00:00:10:01\t00:00:11:00\t\t\t\tT1.wav\t00:00:10:00\n"
              "C2.mov\tV\t00:00:00:00\t00:00:00:01\t\t\t\t\t\n");
}

TEST(ALEWriter, TimesPastMidnightAndBeforeIt_AreNotFolded) {
    VideoClip late = picture("/day/C1.mov", 3600);
    late.startSeconds = 86399;
    VideoClip early = picture("/day/C2.mov", 0);
    early.startSeconds = -1;

    EXPECT_EQ(dataOf({{late, {}}, {early, {}}}),
              "C1.mov\tV\t23:59:59:00\t24:59:59:00\t\t\t\t\t\n"
              "C2.mov\tV\t00:00:-1:00\t00:00:-1:00\t\t\t\t\t\n");
}

TEST(ALEWriter, SlateThatIsHalfThere_LeavesTheOtherFieldsEmpty) {
    AudioClip sceneOnly = sound("/day/T1.wav", 60);
    sceneOnly.scene = "7";
    AudioClip takeOnly = sound("/day/T2.wav", 60);
    takeOnly.take = "2";
    AudioClip tapeOnly = sound("/day/T3.wav", 60);
    tapeOnly.tape = "SR02";
    const VideoClip clip = picture("/day/C.mov", 1);

    EXPECT_EQ(dataOf({pair(clip, sceneOnly), pair(clip, takeOnly), pair(clip, tapeOnly)}),
              "C.mov\tV\t00:00:00:00\t00:00:01:00\t\t7\t\tT1.wav\t00:00:00:00\n"
              "C.mov\tV\t00:00:00:00\t00:00:01:00\t\t\t2\tT2.wav\t00:00:00:00\n"
              "C.mov\tV\t00:00:00:00\t00:00:01:00\tSR02\t\t\tT3.wav\t00:00:00:00\n");
}

TEST(ALEWriter, EveryLine_HasEightTabsAndNoCarriageReturn) {
    const AudioClip recording = slated(sound("/day/T1.wav", 60), "SR01", "12A", "3");
    const std::vector<SyncGroup> groups{pair(picture("/day/C1.mov", 1), recording),
                                        {picture("/day/C2.mov", 1), {}}};
    const TemporaryFolder folder;

    const URL log = ALEWriter::write({groups, {}}, folder.path() / "day.ale");

    std::vector<std::ptrdiff_t> tabs;
    const std::string text = readFile(log);
    for (auto line = text.begin(); line != text.end();) {
        const auto end = std::find(line, text.end(), '\n');
        ASSERT_NE(end, text.end()) << "a last line without its end";
        tabs.push_back(std::count(line, end, '\t'));
        line = end + 1;
    }
    EXPECT_EQ(tabs, (std::vector<std::ptrdiff_t>{0, 1, 1, 1, 1, 0, 0, 8, 0, 0, 8, 8}));
    EXPECT_EQ(text.find('\r'), text.npos);
    EXPECT_EQ(
        readTabbed(log),
        (std::vector<Row>{
            {"Heading"},
            {"FIELD_DELIM", "TABS"},
            {"VIDEO_FORMAT", "1080"},
            {"AUDIO_FORMAT", "48kHz"},
            {"FPS", "25.00"},
            {},
            {"Column"},
            {"Name", "Tracks", "Start", "End", "Tape", "Scene", "Take", "Sound Roll", "Sound TC"},
            {},
            {"Data"},
            {"C1.mov", "V", "00:00:00:00", "00:00:01:00", "SR01", "12A", "3", "T1.wav",
             "00:00:00:00"},
            {"C2.mov", "V", "00:00:00:00", "00:00:01:00", "", "", "", "", ""}}));
}

TEST(ALEWriter, NothingIsCleaned_ATabInASceneSplitsTheField) {
    const AudioClip recording = slated(sound("/day/T1.wav", 60), "", "12\tA", " \"3\" ");

    EXPECT_EQ(dataOf({pair(picture("/day/C1.mov", 1), recording)}),
              "C1.mov\tV\t00:00:00:00\t00:00:01:00\t\t12\tA\t \"3\" \tT1.wav\t00:00:00:00\n");
}

TEST(ALEWriter, TimesThatAreNoNumbers_AreRefused) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const VideoClip clip = picture("/day/C1.mov", 1);
    VideoClip startless = clip;
    startless.startSeconds = none;
    AudioClip endless = sound("/day/T1.wav", 60);
    endless.startSeconds = std::numeric_limits<double>::infinity();

    EXPECT_THROW(dataOf({{startless, {}}}), OutOfRange);
    EXPECT_THROW(dataOf({{picture("/day/C1.mov", none), {}}}), OutOfRange);
    EXPECT_THROW(dataOf({{pictureAt("/day/C1.mov", 1e300, Timecode(0, FrameRate::fps25)), {}}}),
                 OutOfRange);
    EXPECT_THROW(dataOf({pair(clip, endless)}), OutOfRange);
}

}  // namespace
