#include "ReelCore/Transcribe/AudioExtractor.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/PeakMemory.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::FakeTool;
using TestSupport::peakMemoryInKiB;
using TestSupport::TemporaryFolder;
using Arguments = std::vector<std::string>;
using Calls = std::vector<Arguments>;

const URL clip = "/media/clip.mov";

/// What ffprobe is asked, up to how it is to print the answer.
Arguments question(const Arguments& entries) {
    Arguments all{"-v", "error"};
    all.insert(all.end(), entries.begin(), entries.end());
    all.insert(all.end(), {"-of", "default=nk=1:nw=1", clip.native()});
    return all;
}

const Arguments rate = question({"-select_streams", "v:0", "-show_entries", "stream=r_frame_rate"});
const Arguments streamTimecode =
    question({"-select_streams", "v:0", "-show_entries", "stream_tags=timecode"});
const Arguments containerTimecode = question({"-show_entries", "format_tags=timecode"});
const Arguments channels = question({"-select_streams", "a:0", "-show_entries", "stream=channels"});
const Arguments streams = question({"-select_streams", "a", "-show_entries", "stream=index"});

/// An ffprobe that gives these answers, as printf writes them.
struct Answers {
    std::string rate = "25/1\\n";
    std::string streamTimecode = {};
    std::string containerTimecode = {};
    std::string channels = {};
    std::string streams = {};

    std::string script() const {
        return "case \"$*\" in\n*r_frame_rate*) printf '" + rate + "';;\n*stream_tags*) printf '" +
               streamTimecode + "';;\n*format_tags*) printf '" + containerTimecode +
               "';;\n*channels*) printf '" + channels + "';;\n*index*) printf '" + streams +
               "';;\nesac";
    }
};

AudioExtractor::ClipInfo probed(const Answers& answers) {
    const FakeTool ffprobe("FFPROBE_PATH", answers.script());
    return AudioExtractor().probe(clip);
}

TEST(AudioExtractorProbe, VideoStreamHasATimecode_ContainerIsNotAsked) {
    const FakeTool ffprobe("FFPROBE_PATH", Answers{.streamTimecode = "01:02:03:04\\n"}.script());

    AudioExtractor().probe(clip);

    EXPECT_EQ(ffprobe.calls(), (Calls{rate, streamTimecode, channels, streams}));
}

TEST(AudioExtractorProbe, VideoStreamHasNoTimecode_ContainerIsAsked) {
    const FakeTool ffprobe("FFPROBE_PATH", Answers{.streamTimecode = " \\n"}.script());

    AudioExtractor().probe(clip);

    EXPECT_EQ(ffprobe.calls(), (Calls{rate, streamTimecode, containerTimecode, channels, streams}));
}

TEST(AudioExtractorProbe, Answers_BecomeTheClipInfo) {
    const auto info = probed({.rate = "24000/1001\\n",
                              .streamTimecode = "01:02:03:04\\n",
                              .containerTimecode = "10:00:00:00\\n",
                              .channels = " 2\\n",
                              .streams = "1\\n2\\n\\n3\\n"});

    EXPECT_EQ(info.frameRate, FrameRate::fps23_976);
    EXPECT_EQ(info.startTimecode, Timecode(1, 2, 3, 4, FrameRate::fps23_976));
    EXPECT_EQ(info.audioChannels, 2);
    EXPECT_EQ(info.audioStreams, 3);
}

TEST(AudioExtractorProbe, NoAnswerAtAll_Is24FramesAndNothingElse) {
    EXPECT_EQ(probed({.rate = ""}), AudioExtractor::ClipInfo());
    EXPECT_EQ(AudioExtractor::ClipInfo().frameRate, FrameRate::fps24);
}

TEST(AudioExtractorProbe, AnswersThatAreNotUTF8_CountAsNone) {
    EXPECT_EQ(probed({.rate = "25/1\\377",
                      .streamTimecode = "01:00:00:00\\377",
                      .containerTimecode = "01:00:00:00\\377",
                      .channels = "2\\377",
                      .streams = "1\\377"}),
              AudioExtractor::ClipInfo());
}

TEST(AudioExtractorProbe, UnreadableStreamTimecode_HidesTheContainers) {
    const auto info =
        probed({.streamTimecode = "garbage\\n", .containerTimecode = "10:00:00:00\\n"});

    EXPECT_EQ(info.startTimecode, std::nullopt);
    EXPECT_EQ(info.frameRate, FrameRate::fps25);
}

TEST(AudioExtractorProbe, ChannelsThatAreNoNumber_AreNone) {
    for (const char* answer : {"two", "2.0", "0x2", "2 3", "2\\n6", "99999999999999999999"}) {
        EXPECT_EQ(probed({.channels = answer}).audioChannels, 0) << answer;
    }
}

TEST(AudioExtractorProbe, ClipThatVanishesBetweenTwoQuestions_HasWhatWasAnswered) {
    const TemporaryFolder folder;
    const URL vanishing = folder.path() / "clip.mov";
    TestSupport::writeFile(vanishing, "footage");
    const FakeTool ffprobe("FFPROBE_PATH",
                           "for file; do :; done; test -e \"$file\" && echo 25/1; rm -f \"$file\"");

    AudioExtractor::ClipInfo expected;
    expected.frameRate = FrameRate::fps25;
    EXPECT_EQ(AudioExtractor().probe(vanishing), expected);
}

TEST(AudioExtractorExtract, TrackWithAChannel_PicksItOutOfTheInput) {
    const FakeTool ffmpeg("FFMPEG_PATH");

    const URL output = AudioExtractor().extract({"Anna", 3, {}}, clip, "/tmp/folder");

    EXPECT_EQ(output, "/tmp/folder/spk_Anna.wav");
    EXPECT_EQ(ffmpeg.calls(),
              (Calls{{"-y", "-i", clip.native(), "-filter_complex", "[0:a]pan=mono|c0=c3[a]",
                      "-map", "[a]", "-ar", "16000", "-c:a", "pcm_s16le", output.native()}}));
}

TEST(AudioExtractorExtract, TrackWithAFile_IsADownmixOfThatWhateverItsChannel) {
    const FakeTool ffmpeg("FFMPEG_PATH");

    const URL output =
        AudioExtractor().extract({"Anna", 3, "/media/anna.wav"}, clip, "/tmp/folder");

    EXPECT_EQ(ffmpeg.calls(), (Calls{{"-y", "-i", "/media/anna.wav", "-ac", "1", "-ar", "16000",
                                      "-c:a", "pcm_s16le", output.native()}}));
}

TEST(AudioExtractorExtract, TrackWithNeither_IsADownmixOfTheInput) {
    const FakeTool ffmpeg("FFMPEG_PATH");

    const URL output = AudioExtractor().extract({"Anna", {}, {}}, clip, "/tmp/folder");

    EXPECT_EQ(ffmpeg.calls(), (Calls{{"-y", "-i", clip.native(), "-ac", "1", "-ar", "16000", "-c:a",
                                      "pcm_s16le", output.native()}}));
}

TEST(AudioExtractorExtract, SlashesInAName_AreUnderscoresInTheFiles) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    const auto fileOf = [](const std::string& name) {
        return AudioExtractor().extract({name, {}, {}}, clip, "/tmp/folder").native();
    };

    EXPECT_EQ(fileOf("A/B"), "/tmp/folder/spk_A_B.wav");
    EXPECT_EQ(fileOf("/../x//"), "/tmp/folder/spk__.._x__.wav");
    EXPECT_EQ(fileOf(""), "/tmp/folder/spk_.wav");
    EXPECT_EQ(fileOf("Zoë's \"mic\"\n"), "/tmp/folder/spk_Zoë's \"mic\"\n.wav");
}

TEST(AudioExtractorMix, IsADownmixOfTheInputWithoutItsPicture) {
    const TemporaryFolder folder;
    const URL directory = folder.path() / "new" / "deeper";
    const FakeTool ffmpeg("FFMPEG_PATH");

    const URL output = AudioExtractor().extractMix(clip, directory);

    EXPECT_EQ(output, directory / "mix.wav");
    EXPECT_TRUE(std::filesystem::is_directory(directory));
    EXPECT_EQ(ffmpeg.calls(), (Calls{{"-y", "-i", clip.native(), "-vn", "-ac", "1", "-ar", "16000",
                                      "-c:a", "pcm_s16le", output.native()}}));
}

/// What extractMix and extract tell of an ffmpeg that fails like this; they are to agree.
std::string reasonOf(const std::string& script) {
    const TemporaryFolder folder;
    const FakeTool ffmpeg("FFMPEG_PATH", script);
    const auto reason = [](const auto& extraction) -> std::string {
        try {
            extraction();
        } catch (const TranscribeError& error) {
            const auto* failed = error.get<TranscribeError::ExtractionFailed>();
            return failed ? failed->reason : "another failure: " + error.description();
        }
        return "no failure";
    };
    const std::string mix = reason([&] { AudioExtractor().extractMix(clip, folder.path()); });
    const std::string track = reason([&] { AudioExtractor().extract({}, clip, folder.path()); });
    EXPECT_EQ(track, mix);
    return mix;
}

TEST(AudioExtractorFailure, Reason_IsTheEndOfWhatFFmpegSaid) {
    EXPECT_EQ(reasonOf("echo no such stream >&2; echo progress; exit 1"), "no such stream\n");
    EXPECT_EQ(reasonOf("exit 1"), "");
    EXPECT_EQ(reasonOf("head -c 10000000 /dev/zero; echo full >&2; exit 228"), "full\n");
}

// Each character is two code points and three bytes.
TEST(AudioExtractorFailure, LongReason_IsItsLast500Characters) {
    std::string accented;
    for (int i = 0; i < 500; ++i) accented += "e\u0301";

    EXPECT_EQ(reasonOf("printf '%s' 'lost" + accented + "' >&2; exit 1"), accented);
    EXPECT_EQ(reasonOf("printf '%s' '" + accented + "!' >&2; exit 1"), accented.substr(3) + "!");
}

TEST(AudioExtractorFailure, ReasonThatIsNotUTF8_IsEmpty) {
    EXPECT_EQ(reasonOf(R"(printf 'no such file: \377' >&2; exit 1)"), "");
}

TEST(AudioExtractorFailure, EndlessComplaints_TakeNoMemoryAndEndInWhatWasSaidLast) {
    const std::string script =
        "yes 'the same complaint' | head -c 64000000 >&2\n"
        "printf '\\nthe last one' >&2; exit 1";

    // In a process of its own, whose peak no other test has raised.
    const int mebibytes = TestSupport::statusOfForked([&] {
        const std::int64_t before = peakMemoryInKiB();
        if (!reasonOf(script).ends_with("the same complaint\nt\nthe last one")) return 255;
        return static_cast<int>((peakMemoryInKiB() - before) / 1024);
    });

    EXPECT_LT(mebibytes, 16);
}

// The three bytes of each character come to no whole number of them in what is kept.
TEST(AudioExtractorFailure, EndlessComplaintsCutWithinACharacter_AreStillText) {
    std::string euros;
    for (int i = 0; i < 500; ++i) euros += "\xE2\x82\xAC";

    for (const char* more : {"", "a", "ab"}) {
        EXPECT_EQ(reasonOf("yes € | tr -d '\\n' | head -c 3000000 >&2; printf '%s' '" + euros +
                           more + "' >&2; exit 1"),
                  euros.substr(3 * std::string(more).size()) + more);
    }
}

TEST(AudioExtractorFailure, FFmpegEndedByASignal_IsAFailure) {
    EXPECT_EQ(reasonOf("echo out of memory >&2; kill -KILL $$"), "out of memory\n");
}

}  // namespace

}  // namespace ReelCore
