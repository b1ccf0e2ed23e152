#include "ReelCore/Transcribe/AudioExtractor.h"

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "Support/AwkwardNames.h"
#include "Support/Clip.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/OwnMounts.h"
#include "ToneMeter.h"

#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace ReelCore {

namespace {

using TestSupport::ClipRecipe;
using TestSupport::makeClip;
using TestSupport::TemporaryFolder;
using Info = AudioExtractor::ClipInfo;
using Sound = std::pair<std::int64_t, std::int64_t>;  // channels, streams

class AudioExtractorOnClips : public testing::Test {
protected:
    Info infoOf(const std::string& name, const ClipRecipe& recipe) const {
        makeClip(path(name), recipe);
        return AudioExtractor().probe(path(name));
    }

    URL path(const std::string& name) const { return folder_.path() / name; }

    /// How many characters of ffmpeg's words came with the failure; absent without one.
    static std::optional<std::int64_t> reasonLength(const std::function<void()>& extraction) {
        try {
            extraction();
        } catch (const TranscribeError& error) {
            const auto* failed = error.get<TranscribeError::ExtractionFailed>();
            if (failed) return Text::characterCount(failed->reason);
        }
        return std::nullopt;
    }

    const TemporaryFolder folder_;
    const AudioExtractor extractor_{};
};

Timecode at(std::int64_t hours, FrameRate rate) {
    return {hours, 0, 0, 0, rate};
}

const std::vector<std::string> h264{"-c:v", "libx264", "-pix_fmt", "yuv420p"};
const std::vector<std::string> mpeg2{"-c:v", "mpeg2video", "-pix_fmt", "yuv422p"};
const std::vector<std::string> dnxhr{"-c:v",     "dnxhd",    "-profile:v",
                                     "dnxhr_lb", "-pix_fmt", "yuv422p"};

TEST_F(AudioExtractorOnClips, ProResWithATimecodeTrack_IsReadWhole) {
    EXPECT_EQ(infoOf("clip.mov", {.rate = "24000/1001", .timecode = "01:00:00:00"}),
              (Info{FrameRate::fps23_976, at(1, FrameRate::fps23_976), 2, 1}));
}

TEST_F(AudioExtractorOnClips, DropFrameTimecode_HasTheDropFrameRateAndTheClipKeepsIts) {
    EXPECT_EQ(infoOf("clip.mp4", {.rate = "30000/1001",
                                  .timecode = "01:00:00;00",
                                  .video = h264,
                                  .audio = {"-c:a", "aac"}}),
              (Info{FrameRate::fps29_97, at(1, FrameRate::fps29_97df), 2, 1}));
}

TEST_F(AudioExtractorOnClips, MXFWithTimecodeInTheContainerAlone_HasThat) {
    const auto info = infoOf("clip.mxf", {.timecode = "10:00:00:00", .video = mpeg2});

    ASSERT_EQ(TestSupport::probed(path("clip.mxf"), "stream_tags=timecode", "v:0"), "");
    EXPECT_EQ(info, (Info{FrameRate::fps25, at(10, FrameRate::fps25), 2, 1}));
}

TEST_F(AudioExtractorOnClips, DNxHR_IsReadWhole) {
    const ClipRecipe recipe{
        .rate = "24", .size = "256x144", .timecode = "23:00:00:00", .video = dnxhr};

    const Info expected{FrameRate::fps24, at(23, FrameRate::fps24), 2, 1};
    EXPECT_EQ(infoOf("clip.mov", recipe), expected);
    EXPECT_EQ(infoOf("clip.mxf", recipe), expected);
}

TEST_F(AudioExtractorOnClips, ClipWithoutTimecode_HasNoStart) {
    EXPECT_EQ(infoOf("clip.mov", {}), (Info{FrameRate::fps25, std::nullopt, 2, 1}));
}

TEST_F(AudioExtractorOnClips, ClipWithUnreadableTimecode_HasNoStartAndStillARate) {
    const Info expected{FrameRate::fps30, std::nullopt, 2, 1};

    EXPECT_EQ(
        infoOf("stream.mkv",
               {.rate = "30", .video = h264, .more = {"-metadata:s:v", "timecode=after lunch"}}),
        expected);
    EXPECT_EQ(infoOf("container.mkv",
                     {.rate = "30", .video = h264, .more = {"-metadata", "timecode=01:00"}}),
              expected);
}

TEST_F(AudioExtractorOnClips, Channels_AreThoseOfTheFirstAudioStream) {
    const auto sound = [&](const std::string& name, const std::vector<int>& channels) {
        const auto info = infoOf(name, {.channels = channels});
        return Sound(info.audioChannels, info.audioStreams);
    };

    EXPECT_EQ(sound("none.mov", {}), Sound(0, 0));
    EXPECT_EQ(sound("mono.mov", {1}), Sound(1, 1));
    EXPECT_EQ(sound("two streams.mov", {2, 2}), Sound(2, 2));
    EXPECT_EQ(sound("different.mov", {1, 2, 2}), Sound(1, 3));
    EXPECT_EQ(sound("six.mov", {6}), Sound(6, 1));
}

// ffprobe tells of a stream once for each program that it is in, and once more for itself.
TEST_F(AudioExtractorOnClips, TransportStream_CountsEachStreamOnce) {
    const std::vector<std::string> ac3{"-c:a", "ac3"};

    EXPECT_EQ(infoOf("one.mts", {.video = h264, .audio = ac3}),
              (Info{FrameRate::fps25, std::nullopt, 2, 1}));
    EXPECT_EQ(infoOf("three.m2ts", {.rate = "30000/1001",
                                    .video = h264,
                                    .channels = {1, 2, 2},
                                    .audio = ac3,
                                    .more = {"-mpegts_m2ts_mode", "1"}}),
              (Info{FrameRate::fps29_97, std::nullopt, 1, 3}));
    EXPECT_EQ(infoOf("silent.ts", {.video = h264, .channels = {}}),
              (Info{FrameRate::fps25, std::nullopt, 0, 0}));
    EXPECT_EQ(infoOf("programs.ts", {.rate = "50",
                                     .video = h264,
                                     .channels = {2, 2},
                                     .audio = ac3,
                                     .more = {"-program", "title=a:st=0:st=1", "-program",
                                              "title=b:st=0:st=1:st=2"}}),
              (Info{FrameRate::fromFFmpeg("50"), std::nullopt, 2, 2}));
}

TEST_F(AudioExtractorOnClips, SoundWithoutAPicture_HasTheRateOfNone) {
    TestSupport::makeClip(path("clip.mov"));
    const URL mix = extractor_.extractMix(path("clip.mov"), folder_.path());

    EXPECT_EQ(extractor_.probe(mix), (Info{FrameRate::fps24, std::nullopt, 1, 1}));
}

TEST_F(AudioExtractorOnClips, ExtractedSound_IsWhatSpeechRecognitionWants) {
    makeClip(path("clip.mov"), {.channels = {6}});

    for (const URL& output :
         {extractor_.extractMix(path("clip.mov"), path("mix")),
          extractor_.extract({"all", {}, {}}, path("clip.mov"), folder_.path()),
          extractor_.extract({"one", 5, {}}, path("clip.mov"), folder_.path())}) {
        EXPECT_EQ(TestSupport::probed(output, "stream=codec_name,sample_rate,channels"),
                  "pcm_s16le\n16000\n1");
        EXPECT_EQ(TestSupport::probed(output, "format=format_name"), "wav");
        EXPECT_NEAR(std::stod(TestSupport::probed(output, "format=duration")), 1.0, 0.01);
    }
}

TEST_F(AudioExtractorOnClips, Channel_IsPickedFromTheFirstAudioStreamCountedFrom0) {
    makeClip(path("clip.mov"), {.channels = {4, 2}});

    for (const int channel : {0, 1, 2, 3}) {
        const URL output =
            extractor_.extract({"Anna", channel, {}}, path("clip.mov"), folder_.path());

        EXPECT_EQ(tonesIn(output), (std::vector<int>{2000 + 1000 * channel}));
    }
}

TEST_F(AudioExtractorOnClips, TrackWithoutAChannel_HoldsAllChannels) {
    makeClip(path("clip.mov"), {.channels = {2}});

    const URL track = extractor_.extract({"Anna", {}, {}}, path("clip.mov"), folder_.path());
    const URL mix = extractor_.extractMix(path("clip.mov"), folder_.path());

    EXPECT_EQ(tonesIn(track), (std::vector<int>{2000, 3000}));
    EXPECT_EQ(tonesIn(mix), (std::vector<int>{2000, 3000}));
}

TEST_F(AudioExtractorOnClips, TrackWithAFile_HoldsThatAndNothingOfTheInput) {
    makeClip(path("clip.mov"), {.channels = {2}});
    makeClip(path("source.mov"), {.channels = {3}});
    const URL lavalier = extractor_.extract({"source", 2, {}}, path("source.mov"), folder_.path());

    const URL output = extractor_.extract({"Anna", 0, lavalier}, path("clip.mov"), folder_.path());

    EXPECT_EQ(tonesIn(output), (std::vector<int>{4000}));
}

TEST_F(AudioExtractorOnClips, SecondExtraction_ReplacesTheFirst) {
    makeClip(path("clip.mov"));
    const SpeakerTrack first{"A/B", 0, {}};
    const SpeakerTrack second{"A/B", 1, {}};

    extractor_.extract(first, path("clip.mov"), folder_.path());
    const URL output = extractor_.extract(second, path("clip.mov"), folder_.path());

    EXPECT_EQ(output, path("spk_A_B.wav"));
    EXPECT_EQ(tonesIn(output), (std::vector<int>{3000}));
}

TEST_F(AudioExtractorOnClips, WhatCannotBeExtracted_FailsWithTheEndOfWhatFFmpegSaid) {
    makeClip(path("silent.mov"), {.channels = {}});
    makeClip(path("clip.mov"));
    const auto extract = [&](const SpeakerTrack& track, const std::string& clip,
                             const URL& directory) {
        return reasonLength([&] { extractor_.extract(track, path(clip), directory); });
    };
    const std::string longName(300, 'x');

    EXPECT_EQ(extract({"", {}, {}}, "silent.mov", folder_.path()), 500);
    EXPECT_EQ(extract({"", 0, {}}, "silent.mov", folder_.path()), 500);
    EXPECT_EQ(extract({"", -1, {}}, "clip.mov", folder_.path()), 500);
    EXPECT_EQ(extract({"", {}, {}}, "clip.mov", path("missing")), 500);
    EXPECT_EQ(extract({longName, {}, {}}, "clip.mov", folder_.path()), 500);
    EXPECT_EQ(extract({"", {}, path("gone.wav")}, "clip.mov", folder_.path()), 500);
    EXPECT_EQ(reasonLength([&] { extractor_.extractMix(path("silent.mov"), folder_.path()); }),
              500);
    EXPECT_FALSE(std::filesystem::exists(path("missing")));
}

TEST_F(AudioExtractorOnClips, MixWhereAFileStandsInTheWay_FailsAsTheSystemDoes) {
    TestSupport::writeFile(path("file"), "x");

    EXPECT_THROW(extractor_.extractMix(path("clip.mov"), path("file") / "below"), SystemError);
}

TEST_F(AudioExtractorOnClips, WhatIsNoClip_HasNothingAndFails) {
    makeClip(path("whole.mov"));
    TestSupport::writeFile(path("empty.mov"), "");
    TestSupport::writeFile(path("noise.mov"), TestSupport::noise(100'000));
    TestSupport::writeFile(path("cut.mov"),
                           TestSupport::readFile(path("whole.mov")).substr(0, 20'000));
    std::filesystem::create_directory(path("folder.mov"));

    for (const char* name : {"empty.mov", "noise.mov", "cut.mov", "folder.mov", "missing.mov"}) {
        EXPECT_EQ(extractor_.probe(path(name)), Info()) << name;
        const auto reason =
            reasonLength([&] { extractor_.extractMix(path(name), folder_.path()); });
        EXPECT_EQ(reason, 500) << name;
    }
    EXPECT_LT(::waitpid(-1, nullptr, WNOHANG), 0) << "a child is left behind";
}

TEST_F(AudioExtractorOnClips, AwkwardNames_AreNamesOfFilesAndNothingElse) {
    makeClip(path("clip.mov"), {.timecode = "01:00:00:00"});
    const Info expected = extractor_.probe(path("clip.mov"));
    ASSERT_EQ(expected.audioChannels, 2);

    const int wrong = TestSupport::statusOfForked([&] {
        std::filesystem::current_path(folder_.path());
        int differences = 0;
        for (const std::string& name : TestSupport::awkwardNames) {
            const URL relative = name + ".mov";
            std::filesystem::copy_file("clip.mov", relative);
            if (extractor_.probe(relative) != expected) ++differences;
            const URL output = extractor_.extract({name, {}, {}}, relative, "");
            if (output != "spk_" + name + ".wav") ++differences;
            if (tonesIn(output) != std::vector<int>{2000, 3000}) ++differences;
        }
        return differences;
    });

    EXPECT_EQ(wrong, 0);
}

TEST_F(AudioExtractorOnClips, NoTools_IsSaidByEachOperation) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const auto says = [](const auto& operation) {
        try {
            operation();
        } catch (const TranscribeError& error) {
            return error.is<TranscribeError::FFmpegNotFound>();
        }
        return false;
    };

    const int said = TestSupport::statusInOwnMounts([&] {
        TestSupport::hideMediaTools();
        return int{says([&] { extractor_.probe(path("clip.mov")); })} + int{says([&] {
                   extractor_.extract({"", {}, {}}, path("clip.mov"), path("new"));
               })} +
               int{says([&] { extractor_.extractMix(path("clip.mov"), path("new")); })};
    });

    EXPECT_EQ(said, 3);
    EXPECT_FALSE(std::filesystem::exists(path("new")));
}

TEST_F(AudioExtractorOnClips, OneToolAlone_ServesWhatNeedsNoOther) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const auto works = [](const auto& operation) {
        try {
            operation();
            return true;
        } catch (const TranscribeError&) {
            return false;
        }
    };

    const int asPromised = TestSupport::statusInOwnMounts([&] {
        TestSupport::hideMediaTools();
        const auto probe = [&] { extractor_.probe(path("clip.mov")); };
        const auto mix = [&] { extractor_.extractMix(path("clip.mov"), path("new")); };
        {
            const TestSupport::FakeTool ffprobe("FFPROBE_PATH");
            if (!works(probe) || works(mix)) return 0;
        }
        const TestSupport::FakeTool ffmpeg("FFMPEG_PATH");
        return !works(probe) && works(mix) ? 1 : 0;
    });

    EXPECT_EQ(asPromised, 1);
}

// ffmpeg would wait for a writer that never comes.
TEST_F(AudioExtractorOnClips, PipeUnderTheNameOfAClip_IsRefused) {
    const URL pipe = path("pipe.wav");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

    EXPECT_EQ(extractor_.probe(pipe), Info{});
    EXPECT_THROW(extractor_.extractMix(pipe, folder_.path()), SystemError);
    EXPECT_THROW(extractor_.extract({"A", {}, {}}, pipe, folder_.path()), SystemError);
    EXPECT_THROW(extractor_.extract({"A", {}, pipe}, path("clip.mov"), folder_.path()),
                 SystemError);
}

TEST_F(AudioExtractorOnClips, ToolThatCannotBeStarted_IsTheSystemsFailure) {
    const URL text = path("text");
    TestSupport::writeFile(text, "no program");
    std::filesystem::permissions(text, std::filesystem::perms(0755));
    const TestSupport::EnvironmentVariable ffprobe("FFPROBE_PATH", text.native());
    const TestSupport::EnvironmentVariable ffmpeg("FFMPEG_PATH", text.native());

    EXPECT_THROW(extractor_.probe(path("clip.mov")), SystemError);
    EXPECT_THROW(extractor_.extractMix(path("clip.mov"), path("new")), SystemError);
}

}  // namespace

}  // namespace ReelCore
