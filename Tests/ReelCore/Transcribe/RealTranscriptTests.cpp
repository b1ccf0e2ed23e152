#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Transcribe/TranscriptBuilder.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"
#include "Support/TranscriptMaterial.h"
#include "Support/TranscriptTools.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using Lines = std::vector<TranscriptSegment>;
using TestSupport::outputOf;

/// What is said in a talk: who, and a word that is heard in no other sentence of it.
struct Said {
    std::string speaker;
    std::string word;
};

/// Transcripts by the real tools of the talk of three voices, whose turns are of six sentences.
class RealTranscriptTests : public testing::Test {
protected:
    void SetUp() override {
        const auto& tools = tools_;
        if (const auto lack =
                tools.lack({tools.whisperCLI, tools.englishModel, tools.python,
                            tools.diarizationModels / "segmentation.onnx",
                            tools.diarizationModels / "embedding.onnx", tools.sample});
            !lack.empty()) {
            GTEST_SKIP() << lack;
        }
        if (const auto none = TestSupport::lackOfSpeech(); !none.empty()) GTEST_SKIP() << none;
        TestSupport::makeSpeech(folder_.path(), tools.sample);
    }

    URL place(const std::string& name) const { return folder_.path() / name; }

    /// A clip with a picture and the sounds given, each a channel of one stream.
    URL clip(const std::vector<std::string>& sounds) const {
        const URL url = place("Talk.mov");
        std::vector<std::string> arguments{
            "-y", "-v", "error", "-f", "lavfi", "-i", "color=gray:s=320x240:r=25"};
        std::string filter;
        for (std::size_t i = 0; i < sounds.size(); ++i) {
            arguments.insert(arguments.end(), {"-i", place(sounds[i]).native()});
            filter += "[" + std::to_string(i + 1) + ":a]";
        }
        filter += "amerge=inputs=" + std::to_string(sounds.size()) + "[a]";
        if (sounds.size() == 1) filter = "[1:a]anull[a]";
        arguments.insert(arguments.end(), {"-filter_complex", filter, "-map", "0:v", "-map", "[a]",
                                           "-shortest", "-timecode", "10:00:00:00", "-c:v", "mpeg4",
                                           "-c:a", "pcm_s16le", url.native()});
        outputOf("ffmpeg", arguments);
        return url;
    }

    TranscribeRequest request(const URL& input) const {
        return {.input = input,
                .outputDirectory = place("out"),
                .readSlate = false,
                .appearanceHints = false};
    }

    static std::pair<Transcript, URL> run(const TranscribeRequest& request) {
        return TranscriptBuilder().run(request, [](const TranscribeProgress&) {});
    }

    static bool holds(const TranscriptSegment& line, const std::string& word) {
        return Text::lowerCased(line.text).find(word) != std::string::npos;
    }

    static std::string whoSays(const std::string& word, const std::pair<Transcript, URL>& made) {
        for (const TranscriptSegment& line : made.first.segments) {
            if (holds(line, word)) return line.speaker;
        }
        return "nobody";
    }

    /// Each sentence is heard, in this order, and beside its speaker, also in the document.
    static void expectSaid(const std::pair<Transcript, URL>& made, const std::vector<Said>& talk) {
        const std::string document =
            outputOf("unzip", {"-p", made.second.native(), "word/document.xml"});
        std::size_t line = 0;
        std::size_t at = 0;
        for (const auto& [speaker, word] : talk) {
            const auto isIt = [&](const TranscriptSegment& one) {
                return one.speaker == speaker && holds(one, word);
            };
            const Lines& lines = made.first.segments;
            const auto found =
                std::find_if(lines.begin() + static_cast<std::ptrdiff_t>(line), lines.end(), isIt);
            ASSERT_NE(found, lines.end()) << word << " of " << speaker;
            line = static_cast<std::size_t>(found - lines.begin()) + 1;
            const std::string beside = ">" + speaker + "<";
            at = document.find(beside, at);
            ASSERT_NE(at, document.npos) << beside;
            at = document.find(found->text, at);
            ASSERT_NE(at, document.npos) << found->text;
        }
    }

    const TestSupport::TranscriptTools tools_;
    const TestSupport::TemporaryFolder folder_;
};

}  // namespace

TEST_F(RealTranscriptTests, ThreeVoicesInOneMix_EachSentenceStandsBesideItsVoice) {
    TranscribeRequest job = request(clip({"three-voices.wav"}));
    job.diarize = DiarizationOptions{};

    const auto made = run(job);

    expectSaid(made, {{"Speaker 1", "brother"},
                      {"Speaker 2", "kitchen"},
                      {"Speaker 3", "window"},
                      {"Speaker 1", "window"},
                      {"Speaker 3", "brother"},
                      {"Speaker 2", "window"}});
    EXPECT_EQ(made.first.startTimecode.formatted(), "10:00:00:00");
}

TEST_F(RealTranscriptTests, AMicrophoneForEach_EachChannelIsHeardByItself) {
    TranscribeRequest job = request(clip({"flite-slt-3.wav", "flite-rms-2.wav"}));
    job.speakers = {{"Ann", 0, {}}, {"Bob", 1, {}}};

    const auto made = run(job);

    EXPECT_EQ(whoSays("brother", made), "Ann");
    EXPECT_EQ(whoSays("kitchen", made), "Bob");
}

TEST_F(RealTranscriptTests, AFileForEach_IsHeardInsteadOfTheClip) {
    TranscribeRequest job = request(clip({"flite-awb-5.wav"}));
    job.speakers = {{"Ann", {}, place("flite-slt-3.wav")}, {"Bob", {}, place("flite-rms-2.wav")}};

    const auto made = run(job);

    EXPECT_EQ(whoSays("brother", made), "Ann");
    EXPECT_EQ(whoSays("kitchen", made), "Bob");
    EXPECT_EQ(whoSays("window", made), "nobody");
}

TEST_F(RealTranscriptTests, ModelOfManyLanguages_FindsTheLanguageItself) {
    if (const auto lack = tools_.lack({tools_.multilingualModel}); !lack.empty()) {
        GTEST_SKIP() << lack;
    }
    TranscribeRequest job = request(clip({"flite-slt-3.wav"}));
    job.speakers = {{"Ann", 0, {}}};
    job.modelOverride = tools_.multilingualModel;

    EXPECT_EQ(whoSays("brother", run(job)), "Ann");
}

TEST_F(RealTranscriptTests, SilenceOfATrack_IsASoundAndNobodysLine) {
    outputOf("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "anullsrc=r=48000:cl=mono", "-t", "5",
                        place("silence.wav").native()});
    TranscribeRequest job = request(place("silence.wav"));
    job.speakers = {{"Ann", 0, {}}};

    const auto [transcript, document] = run(job);

    EXPECT_EQ(transcript.segments, (Lines{{"Sound", 0.0, 10.0, "[BLANK_AUDIO]"}}));
}

}  // namespace ReelCore
