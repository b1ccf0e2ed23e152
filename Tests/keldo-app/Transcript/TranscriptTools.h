#pragma once

#include "Support/Clip.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <filesystem>
#include <optional>
#include <string>

namespace WindowSupport {

/// A machine on which transcripts can be made, beside the real ffmpeg: a model, a whisper-cli that
/// hears the same in every sound, and a python that tells two voices apart. To stand before the
/// view model, which looks for them once.
class TranscriptTools {
public:
    TranscriptTools() {
        std::filesystem::create_directories(home_.path() / "tmp");
        TestSupport::writeFile(models() / "ggml-tiny.en.bin", "model");
        for (const char* name : {"segmentation.onnx", "embedding.onnx"}) {
            TestSupport::writeFile(models() / "diarization" / name, "model");
        }
        hear(line(0, 400, "Hello there.") + "," + line(400, 600, "(door slams)") + "," +
             line(1000, 1400, "Who is it?"));
    }

    ReelCore::URL models() const { return home_.path() / "data/keldobay/models"; }

    /// Of one line, in milliseconds, as whisper-cli writes it.
    static std::string line(int from, int to, const std::string& text) {
        return R"({"offsets":{"from":)" + std::to_string(from) + R"(,"to":)" + std::to_string(to) +
               R"(},"text":" )" + text + R"("})";
    }

    /// From now on every sound says these lines; before it hears one, whisper-cli does `first`.
    void hear(const std::string& lines, const std::string& first = {}) {
        whisper.reset();
        whisper.emplace(
            "KELDO_WHISPER_CLI",
            first + "\ncat >\"$9.json\" <<END\n{\"transcription\":[" + lines + "]}\nEND\n");
    }

    /// From now on whisper-cli listens for ever.
    void hearForEver() { hear("", "while :; do sleep 0.02; done"); }

    /// From now on python prints these turns: begin, end and voice, a line each.
    void speakInTurns(const std::string& turns) {
        python.reset();
        python.emplace("KELDO_PYTHON", "printf '%s' '" + turns + "'");
    }

    /// What stands in a Word document.
    static std::string documentXML(const ReelCore::URL& docx) {
        return TestSupport::outputOf("unzip", {"-p", docx.native(), "word/document.xml"});
    }

    std::optional<TestSupport::FakeTool> whisper;
    std::optional<TestSupport::FakeTool> python{std::in_place, "KELDO_PYTHON",
                                                "printf '0.0 0.9 0\\n0.9 2.0 1\\n'"};

private:
    TestSupport::TemporaryFolder home_;
    TestSupport::EnvironmentVariable data_{"XDG_DATA_HOME", (home_.path() / "data").native()};
    TestSupport::EnvironmentVariable temporary_{"TMPDIR", (home_.path() / "tmp").native()};
    TestSupport::EnvironmentVariable modelOfItsOwn_{"KELDO_WHISPER_MODEL", std::nullopt};
};

}  // namespace WindowSupport
