#include "ReelCore/Platform/ChildProcess.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

/// The example over a real clip, with scripts that hear two voices.
class TranscriptExample : public testing::Test {
protected:
    TranscriptExample() {
        for (const char* name :
             {"diarization/segmentation.onnx", "diarization/embedding.onnx", "ggml-tiny.en.bin"}) {
            writeFile(place("data/keldobay/models") / name, "model");
        }
        outputOf("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=gray:s=320x240:r=25", "-f",
                            "lavfi", "-i", "sine", "-t", "4", "-timecode", "10:00:00:00", "-c:v",
                            "mpeg4", "-c:a", "pcm_s16le", place("A001.mov").native()});
    }

    URL place(const std::string& name) const { return folder_.path() / name; }

    ChildProcess::Outcome run(const std::vector<std::string>& more) const {
        std::vector<std::string> arguments{place("A001.mov").native(), place("out").native()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return ChildProcess::readOutput(EXAMPLE_TRANSCRIPT, arguments);
    }

    TemporaryFolder folder_;
    EnvironmentVariable data_{"XDG_DATA_HOME", (folder_.path() / "data").native()};
    EnvironmentVariable model_{"KELDO_WHISPER_MODEL", "/none"};
    FakeTool python_{"KELDO_PYTHON", "printf '0.0 2.0 4\\n2.0 4.0 1\\n'"};
    FakeTool whisper_{"KELDO_WHISPER_CLI", R"(cat >"$9.json" <<END
{"transcription":[{"offsets":{"from":0,"to":2000},"text":" Roll sound."},
                  {"offsets":{"from":2000,"to":4000},"text":" Sound rolls."}]}
END)"};
};

}  // namespace

TEST_F(TranscriptExample, TellsWhoSaysWhatAndWhereItIsWrittenDown) {
    const auto [status, output] = run({"2"});

    EXPECT_EQ(status, 0);
    EXPECT_EQ(output,
              "Speaker 1: no person on camera at this moment\n"
              "Speaker 2: no person on camera at this moment\n"
              "10:00:00:00  Speaker 1  Roll sound.\n"
              "10:00:02:00  Speaker 2  Sound rolls.\n"
              "document: " +
                  (place("out") / "A001_transcript.docx").native() + "\n");
    EXPECT_EQ(python_.calls().at(0).at(5), "2");
    EXPECT_EQ(readFile(place("out") / "A001_transcript.docx").substr(0, 2), "PK");
}

TEST_F(TranscriptExample, FailsWithAReason) {
    const FakeTool broken("KELDO_PYTHON", "exit 3");

    const auto [status, output] = run({"2"});

    EXPECT_EQ(status, 2);
    EXPECT_EQ(output, "");
}

TEST_F(TranscriptExample, IsToldNoNumber_SaysHowItIsUsed) {
    EXPECT_EQ(run({"two"}).status, 2);
    EXPECT_EQ(run({"2", "3"}).status, 2);
}
