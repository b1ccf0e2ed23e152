#include "ReelCore/Diarize/Diarizer.h"
#include "Support/EnvironmentVariable.h"
#include "Support/RIFF.h"
#include "Support/ToolFixture.h"
#include "Support/TranscriptMaterial.h"
#include "Support/TranscriptTools.h"

#include <set>

#include <gmock/gmock.h>

namespace ReelCore {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::EnvironmentVariable;
using TestSupport::writeFile;

/// What the real python with the real models does.
class DiarizerRealTest : public TestSupport::ToolFixture {
protected:
    void SetUp() override {
        const auto lack =
            tools_.lack({tools_.python, tools_.diarizationModels / "segmentation.onnx",
                         tools_.diarizationModels / "embedding.onnx", tools_.sample});
        if (!lack.empty()) GTEST_SKIP() << lack;
    }

    URL silence(double seconds) const {
        writeFile(folder() / "silence.wav",
                  TestSupport::broadcastWAV({.sampleRate = 16000,
                                             .bitsPerSample = 16,
                                             .seconds = seconds,
                                             .hasBroadcastExtension = false}));
        return folder() / "silence.wav";
    }

    /// The user's data with these files as the models.
    EnvironmentVariable dataWith(const URL& segmentation, const URL& embedding) const {
        const URL models = folder() / "keldobay/models/diarization";
        std::filesystem::create_directories(models);
        std::filesystem::create_symlink(segmentation, models / "segmentation.onnx");
        std::filesystem::create_symlink(embedding, models / "embedding.onnx");
        return {"XDG_DATA_HOME", folder().native()};
    }

    static DiarizeError::Failed failure(const URL& wav) {
        try {
            Diarizer().run(wav, {});
        } catch (const DiarizeError& error) {
            if (const auto* failed = error.get<DiarizeError::Failed>()) return *failed;
            throw;
        }
        throw std::runtime_error("no failure");
    }

    const TestSupport::TranscriptTools& tools() const { return tools_; }
    URL segmentation() const { return tools_.diarizationModels / "segmentation.onnx"; }
    URL embedding() const { return tools_.diarizationModels / "embedding.onnx"; }

private:
    TestSupport::TranscriptTools tools_;
};

std::string printed(const std::vector<DiarizedTurn>& turns) {
    std::string text;
    for (const DiarizedTurn& turn : turns) {
        text += std::to_string(turn.startSeconds) + " " + std::to_string(turn.endSeconds) + " " +
                turn.speaker.substr(turn.speaker.find(' ') + 1) + "\n";
    }
    return text;
}

TEST_F(DiarizerRealTest, ThreeVoices_AreToldApartAndNumberedAsTheyAppear) {
    if (const auto lack = TestSupport::lackOfSpeech(); !lack.empty()) GTEST_SKIP() << lack;
    TestSupport::makeSpeech(folder(), tools().sample);

    for (const auto& speakers : {std::optional<std::int64_t>(), std::optional<std::int64_t>(3)}) {
        const auto turns = Diarizer().run(folder() / "three-voices.wav", {speakers, 0.5});

        std::vector<std::string> order;
        for (const DiarizedTurn& turn : turns) order.push_back(turn.speaker);
        EXPECT_THAT(order, testing::ElementsAre("Speaker 1", "Speaker 2", "Speaker 3", "Speaker 1",
                                                "Speaker 3", "Speaker 2"));
        const auto errors = TestSupport::turnErrors(
            TestSupport::readFile(folder() / "three-voices.turns"), printed(turns));
        EXPECT_LE(errors.confused, 50);
        EXPECT_LE(errors.missed, 100);
        EXPECT_LE(errors.madeUp, 100);
    }
}

TEST_F(DiarizerRealTest, MoreSpeakersThanThereAre_AreNumberedWithoutGaps) {
    const auto turns = Diarizer().run(tools().sample, {9, 0.5});

    ASSERT_FALSE(turns.empty());
    std::set<std::string> speakers;
    for (const DiarizedTurn& turn : turns) {
        if (speakers.insert(turn.speaker).second) {
            EXPECT_EQ(turn.speaker, "Speaker " + std::to_string(speakers.size()));
        }
    }
}

TEST_F(DiarizerRealTest, SoundWithoutSpeech_HasNoTurns) {
    EXPECT_THAT(Diarizer().run(silence(5.0), {}), IsEmpty());
    EXPECT_THAT(Diarizer().run(silence(0.05), {}), IsEmpty());
    EXPECT_THAT(Diarizer().run(silence(0.0), {}), IsEmpty());
}

TEST_F(DiarizerRealTest, SoundThatIsNone_IsToldByPythonsOwnWords) {
    writeFile(folder() / "text.wav", "no sound at all");

    const auto failed = failure(folder() / "text.wav");

    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(failed.tail, HasSubstr("wave.Error"));
}

TEST_F(DiarizerRealTest, ModelsInEachOthersPlace_AreAFailureWithoutATraceback) {
    const auto data = dataWith(embedding(), segmentation());

    const auto failed = failure(silence(1.0));

    EXPECT_EQ(failed.status, 255);
    EXPECT_THAT(failed.tail, HasSubstr("metadata"));
}

TEST_F(DiarizerRealTest, ModelThatIsNone_IsToldByPythonsOwnWords) {
    writeFile(folder() / "bad.onnx", "no model");
    const auto data = dataWith(folder() / "bad.onnx", embedding());

    const auto failed = failure(silence(1.0));

    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(failed.tail, HasSubstr("RuntimeError"));
}

// Resolved, the environment's python is the system's, which has no such packages.
TEST_F(DiarizerRealTest, PythonWithoutThePackages_IsToldFromOtherFailures) {
    const EnvironmentVariable resolved("KELDO_PYTHON", std::filesystem::canonical(tools().python));
    const EnvironmentVariable none("PYTHONNOUSERSITE", "1");

    try {
        Diarizer().run(tools().sample, {});
        ADD_FAILURE() << "the system's python has the packages";
    } catch (const DiarizeError& error) {
        ASSERT_TRUE(error.is<DiarizeError::SherpaNotInstalled>()) << error.description();
        EXPECT_THAT(error.description(), HasSubstr("No module named"));
    }
}

}  // namespace

}  // namespace ReelCore
