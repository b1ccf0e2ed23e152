#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcribe/SpeechClassifier.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "ReelCore/Transcribe/WhisperTranscriber.h"
#include "Support/LoopMount.h"
#include "Support/RIFF.h"
#include "Support/ToolFixture.h"
#include "Support/TranscriptMaterial.h"
#include "Support/TranscriptTools.h"

#include <gmock/gmock.h>

namespace ReelCore {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::writeFile;

/// What the real whisper-cli does.
class WhisperRealTest : public TestSupport::ToolFixture {
protected:
    void SetUp() override {
        const auto lack = tools_.lack({tools_.whisperCLI, tools_.englishModel, tools_.sample});
        if (!lack.empty()) GTEST_SKIP() << lack;
    }

    URL speech(const std::string& name) const {
        std::filesystem::create_directories(folder() / "in");
        std::filesystem::copy(tools_.sample, folder() / "in" / name);
        return folder() / "in" / name;
    }

    URL silence(double seconds) const {
        writeFile(folder() / "in/silence.wav",
                  TestSupport::broadcastWAV({.sampleRate = 16000,
                                             .bitsPerSample = 16,
                                             .seconds = seconds,
                                             .hasBroadcastExtension = false}));
        return folder() / "in/silence.wav";
    }

    static std::vector<TranscriptSegment> transcribe(
        const URL& wav, const std::optional<URL>& model = std::nullopt,
        const std::function<bool()>& isCancelled = [] { return false; }) {
        return WhisperTranscriber(model).transcribe(wav, "JANE", isCancelled);
    }

    static TranscribeError::WhisperFailed failure(const URL& wav,
                                                  const std::optional<URL>& model = std::nullopt) {
        try {
            transcribe(wav, model);
        } catch (const TranscribeError& error) {
            if (const auto* failed = error.get<TranscribeError::WhisperFailed>()) return *failed;
            throw;
        }
        throw std::runtime_error("no failure");
    }

    std::vector<std::string> besideTheSound() const { return FileSystem::names(folder() / "in"); }

    const TestSupport::TranscriptTools& tools() const { return tools_; }

private:
    TestSupport::TranscriptTools tools_;
};

TEST_F(WhisperRealTest, Speech_IsHeardWithItsTimes) {
    const auto lines = transcribe(speech("jfk ä — x.wav"));

    std::string heard;
    for (const TranscriptSegment& line : lines) {
        heard += line.text + " ";
        EXPECT_EQ(line.speaker, "JANE");
        EXPECT_GE(line.startSeconds, 0.0);
        EXPECT_LT(line.startSeconds, line.endSeconds);
        EXPECT_LE(line.endSeconds, 11.5);
    }
    const auto errors = TestSupport::wordErrors(
        "And so my fellow Americans ask not what your country can do for you ask what you can do "
        "for your country",
        heard);
    EXPECT_LE(errors.wrong, 2) << heard;
    EXPECT_THAT(besideTheSound(), testing::ElementsAre("jfk ä — x.wav"));
}

TEST_F(WhisperRealTest, Silence_IsACueAndNoSpeech) {
    const auto lines = SpeechClassifier::relabel(transcribe(silence(5.0)));

    ASSERT_FALSE(lines.empty());
    for (const TranscriptSegment& line : lines) EXPECT_EQ(line.speaker, "Sound") << line.text;
}

TEST_F(WhisperRealTest, AMoment_HasNoLines) {
    EXPECT_THAT(transcribe(silence(0.05)), IsEmpty());
}

// The tool calls these a success.
TEST_F(WhisperRealTest, SoundThatIsNone_LeavesNoResultToBeRead) {
    EXPECT_THROW(transcribe(silence(0.0)), SystemError);

    writeFile(folder() / "in/text.wav", "no sound");
    EXPECT_THROW(transcribe(folder() / "in/text.wav"), SystemError);
}

TEST_F(WhisperRealTest, FolderThatTakesNoResult_LeavesNoneToBeRead) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "this machine mounts no images";
    TestSupport::LoopMount drive("ext4", 4);
    std::filesystem::copy(silence(0.05), drive.path() / "moment.wav");
    ASSERT_THAT(transcribe(drive.path() / "moment.wav"), IsEmpty());
    drive.makeReadOnly();

    EXPECT_THROW(transcribe(drive.path() / "moment.wav"), SystemError);
}

TEST_F(WhisperRealTest, ModelThatIsNone_IsToldByItsLastLines) {
    const URL wav = speech("jfk.wav");
    writeFile(folder() / "ggml-bad.en.bin", "no model");

    for (const URL& model : {folder() / "ggml-bad.en.bin", folder() / "missing.bin"}) {
        const auto failed = failure(wav, model);
        EXPECT_EQ(failed.status, 3);
        EXPECT_THAT(failed.tail, HasSubstr("failed to initialize whisper context"));
    }
}

TEST_F(WhisperRealTest, SoundThatIsMissing_IsAFailureOfTheTool) {
    EXPECT_EQ(failure(folder() / "missing.wav").status, 2);
}

TEST_F(WhisperRealTest, CancelledWhileItListens_EndsItAndLeavesNothing) {
    const URL wav = speech("jfk.wav");
    int looks = 0;

    try {
        transcribe(wav, std::nullopt, [&] { return ++looks == 3; });
        ADD_FAILURE() << "not cancelled";
    } catch (const TranscribeError& error) {
        EXPECT_TRUE(error.is<TranscribeError::Cancelled>()) << error.description();
    }

    EXPECT_THAT(besideTheSound(), testing::ElementsAre("jfk.wav"));
}

}  // namespace

}  // namespace ReelCore
