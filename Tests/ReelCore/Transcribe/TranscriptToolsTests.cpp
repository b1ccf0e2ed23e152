#include "Support/TranscriptTools.h"

#include "Support/FolderTree.h"
#include "Support/Tool.h"
#include "Support/TranscriptMaterial.h"

#include <cstdlib>

#include <gtest/gtest.h>

using TestSupport::EnvironmentVariable;
using TestSupport::TemporaryFolder;
using TestSupport::ToolOutcome;
using TestSupport::TranscriptTools;

namespace {

TEST(TranscriptToolsTests, Variable_NamesTheFolderAndTheEnvironmentFollowsForAWhile) {
    const EnvironmentVariable folder("KELDO_TEST_TRANSCRIPT", "/somewhere");
    const EnvironmentVariable python("KELDO_PYTHON", "/own/python3");
    {
        const TranscriptTools tools;
        EXPECT_EQ(tools.englishModel, "/somewhere/keldobay/models/ggml-tiny.en.bin");
        EXPECT_STREQ(std::getenv("XDG_DATA_HOME"), "/somewhere");
        EXPECT_STREQ(std::getenv("KELDO_WHISPER_CLI"), "/somewhere/keldobay/bin/whisper-cli");
        EXPECT_STREQ(std::getenv("KELDO_PYTHON"), "/somewhere/keldobay/python/bin/python3");
    }
    EXPECT_STREQ(std::getenv("KELDO_PYTHON"), "/own/python3");
}

TEST(TranscriptToolsTests, NoVariable_TakesTheCacheFolder) {
    const EnvironmentVariable folder("KELDO_TEST_TRANSCRIPT", std::nullopt);
    const EnvironmentVariable cache("XDG_CACHE_HOME", "/cache");
    EXPECT_EQ(TranscriptTools().dataHome(), "/cache/keldobay-transcript");
    const EnvironmentVariable none("XDG_CACHE_HOME", std::nullopt);
    const EnvironmentVariable home("HOME", "/home/anna");
    EXPECT_EQ(TranscriptTools().dataHome(), "/home/anna/.cache/keldobay-transcript");
}

TEST(TranscriptToolsTests, OneOfTwoIsThere_NamesTheOther) {
    const TemporaryFolder folder;
    const EnvironmentVariable variable("KELDO_TEST_TRANSCRIPT", folder.path().native());
    const TranscriptTools tools;
    TestSupport::writeFile(tools.englishModel, "model");
    EXPECT_EQ(tools.lack({tools.englishModel}), "");
    EXPECT_EQ(tools.lack({tools.whisperCLI, tools.englishModel}),
              "needs what Scripts/install-transcript sets up; not in " + folder.path().native() +
                  "/keldobay: bin/whisper-cli");
}

/// What the real tools make of speech that is known. What it prints shows in the log of the test.
void expectFine(const TranscriptTools& tools, const std::string& measure) {
    const ToolOutcome outcome = TestSupport::runTool(
        tools.python.native(), {"-B", TestSupport::transcriptProgram("measure.py").native(),
                                measure, tools.dataHome().native()});
    std::printf("%s", outcome.output.c_str());
    EXPECT_EQ(outcome.status, 0);
}

class TranscriptFiguresTests : public testing::Test {
protected:
    void SetUp() override {
        if (const auto none = TestSupport::lackOfSpeech(); !none.empty()) GTEST_SKIP() << none;
    }

    std::string lackOfWords() const {
        return tools_.lack({tools_.whisperCLI, tools_.englishModel, tools_.python, tools_.sample});
    }

    std::string lackOfSpeakers() const {
        return tools_.lack({tools_.python, tools_.diarizationModels / "segmentation.onnx",
                            tools_.diarizationModels / "embedding.onnx", tools_.sample});
    }

    const TranscriptTools tools_;
};

TEST_F(TranscriptFiguresTests, ClipsOfPeople_AtMostEightPercentOfTheWordsAreWrong) {
    if (const auto lack = lackOfWords(); !lack.empty()) GTEST_SKIP() << lack;
    expectFine(tools_, "human");
}

TEST_F(TranscriptFiguresTests, ClipsOfThreeVoices_AtMostTwelvePercentOfTheWordsAreWrong) {
    if (const auto lack = lackOfWords(); !lack.empty()) GTEST_SKIP() << lack;
    expectFine(tools_, "flite");
}

TEST_F(TranscriptFiguresTests, TalksOfThreeVoicesAndOfTwoPeople_AreToldApart) {
    if (const auto lack = lackOfSpeakers(); !lack.empty()) GTEST_SKIP() << lack;
    expectFine(tools_, "talks");
}

}  // namespace
