#include "Support/TranscriptMaterial.h"

#include "Support/FolderTree.h"
#include "Support/Tool.h"
#include "Support/TranscriptTools.h"

#include <gtest/gtest.h>

using TestSupport::outputOf;
using TestSupport::TemporaryFolder;
using TestSupport::TranscriptTools;
using TestSupport::turnErrors;
using TestSupport::wordErrors;

namespace {

TEST(TranscriptMaterialTests, WordsPutInLeftOutAndChanged_AreCountedWithoutCaseAndPunctuation) {
    const auto same = wordErrors("Roll sound. Mark it!", "roll SOUND, mark-it");
    EXPECT_EQ(same.wrong, 0);
    EXPECT_EQ(same.said, 4);
    EXPECT_EQ(wordErrors("take three of four", "take of five four").wrong, 2);
    EXPECT_EQ(wordErrors("take three", "").wrong, 2);
    EXPECT_EQ(wordErrors("take", "take it from here").wrong, 3);
}

TEST(TranscriptMaterialTests, SpeakersUnderOtherNames_AreTheSame) {
    const auto errors = turnErrors("0 2 anna\n2 4 ben\n4 6 anna\n", "4 6 7\n0 2 7\n2 4 3\n");
    EXPECT_EQ(errors.order, "1 2 1");
    EXPECT_EQ(errors.confused, 0);
    EXPECT_EQ(errors.missed, 0);
    EXPECT_EQ(errors.madeUp, 0);
}

TEST(TranscriptMaterialTests, SpeechGivenToOthersMissedAndMadeUp_IsTold) {
    const auto errors = turnErrors("0 4 anna\n4 8 ben\n", "0 4 1\n4 5 1\n6 8 2\n9 10 2\n");
    EXPECT_EQ(errors.confused, 125);
    EXPECT_EQ(errors.missed, 125);
    EXPECT_EQ(errors.madeUp, 125);
    EXPECT_EQ(turnErrors("0 4 anna\n4 8 ben\n", "0 8 1\n").confused, 500);
}

/// A tone for each pair of a frequency in hertz (0: silence) and a time in seconds.
void makeTones(const ReelCore::URL& wav, const std::vector<std::pair<int, double>>& tones) {
    std::vector<std::string> arguments{"-v", "error"};
    std::string inputs;
    for (std::size_t i = 0; i < tones.size(); ++i) {
        const auto& [frequency, seconds] = tones[i];
        arguments.insert(arguments.end(), {"-f", "lavfi", "-i",
                                           "sine=r=16000:f=" + std::to_string(frequency) +
                                               ":d=" + std::to_string(seconds)});
        inputs += "[" + std::to_string(i) + "]";
    }
    arguments.insert(
        arguments.end(),
        {"-filter_complex", inputs + "concat=n=" + std::to_string(tones.size()) + ":v=0:a=1", "-ac",
         "1", "-c:a", "pcm_s16le", wav.native()});
    outputOf("ffmpeg", arguments);
}

TEST(TranscriptMaterialTests, ScriptedModel_WhisperSaysTheScript) {
    const TranscriptTools tools;
    if (const auto lack = tools.lack({tools.whisperCLI}); !lack.empty()) GTEST_SKIP() << lack;
    const TemporaryFolder folder;
    const ReelCore::URL model = folder.path() / "scripted.en.bin", wav = folder.path() / "tone.wav";
    makeTones(wav, {{300, 4.2}});
    TestSupport::makeScriptedModel(model, {"0 2 Scene twelve, take three.", "2 4.2 Slate closed."});
    outputOf(tools.whisperCLI.native(), {"-m", model.native(), "-f", wav.native(), "-l", "en",
                                         "-ocsv", "-of", (folder.path() / "said").native()});
    EXPECT_EQ(
        TestSupport::readFile(folder.path() / "said.csv"),
        "start,end,text\n0,2000,\" Scene twelve, take three.\"\n2000,4200,\" Slate closed.\"\n");
}

TEST(TranscriptMaterialTests, StubDiarization_TellsADullToneFromABrightOne) {
    const TranscriptTools tools;
    if (const auto lack = tools.lack({tools.python}); !lack.empty()) GTEST_SKIP() << lack;
    const TemporaryFolder folder;
    const ReelCore::URL wav = folder.path() / "tones.wav";
    makeTones(wav, {{0, 0.5}, {200, 3}, {0, 0.8}, {3000, 3}, {0, 0.8}, {200, 3}, {0, 0.5}});
    TestSupport::makeStubDiarization(folder.path());
    const std::string heard = outputOf(tools.python.native(),
                                       {"-B", TestSupport::transcriptProgram("diarize.py").native(),
                                        (folder.path() / "segmentation.onnx").native(),
                                        (folder.path() / "embedding.onnx").native(), wav.native()});
    const auto errors = turnErrors("0.5 3.5 dull\n4.3 7.3 bright\n8.1 11.1 dull\n", heard);
    EXPECT_EQ(errors.order, "1 2 1") << heard;
    EXPECT_LE(errors.confused, 10) << heard;
    EXPECT_LE(errors.missed, 30) << heard;
}

}  // namespace
