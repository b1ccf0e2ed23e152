#pragma once

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Transcribe/TranscriptBuilder.h"
#include "Support/Clip.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace ReelCore {

/// Runs of the pipeline over real clips and the real ffmpeg, with scripts in the place of the tools
/// that hear: a whisper-cli for which every sound says one line, and a python without turns.
class TranscriptBuilderFixture : public testing::Test {
protected:
    TranscriptBuilderFixture() {
        TestSupport::writeFile(place("ggml-tiny.en.bin"), "model");
        for (const char* name : {"segmentation.onnx", "embedding.onnx"}) {
            TestSupport::writeFile(place("data/keldobay/models/diarization") / name, "model");
        }
    }

    URL place(const std::string& name) const { return folder_.path() / name; }
    const URL& temporary() const { return temporary_; }
    const URL& output() const { return output_; }

    URL clip(const std::string& name, TestSupport::ClipRecipe recipe = {.seconds = 0.4}) const {
        TestSupport::makeClip(place(name), recipe);
        return place(name);
    }

    /// From now on every sound says what `json` holds; `$4` in it is the sound's path.
    void say(const std::string& json) {
        whisper_.emplace("KELDO_WHISPER_CLI", "cat >\"$9.json\" <<END\n" + json + "\nEND\n");
    }

    /// From now on the voices change as `turns` says, in lines of start, end and cluster.
    void speakInTurns(const std::string& turns) {
        python_.emplace("KELDO_PYTHON", "printf '%s' '" + turns + "'");
    }

    TranscribeRequest request(const URL& input, std::vector<SpeakerTrack> speakers = {}) const {
        TranscribeRequest request{.input = input,
                                  .speakers = std::move(speakers),
                                  .outputDirectory = output_,
                                  .readSlate = false,
                                  .appearanceHints = false};
        if (request.speakers.empty()) request.diarize = DiarizationOptions{.numSpeakers = 2};
        return request;
    }

    std::pair<Transcript, URL> run(const TranscribeRequest& request) {
        return TranscriptBuilder([this] { return isCancelled_(); })
            .run(request, [this](const TranscribeProgress& progress) {
                std::string line(rawValue(progress.phase));
                if (progress.speaker) line += " " + *progress.speaker;
                line += " " + std::to_string(progress.speakersDone) + "/" +
                        std::to_string(progress.totalSpeakers);
                reports_.push_back(line);
            });
    }

    /// What a run that ends without a result says.
    std::string failure(const TranscribeRequest& request) {
        try {
            run(request);
        } catch (const Error& error) {
            return error.description();
        }
        return "no failure";
    }

    bool hasReported(const std::string& report) const {
        return std::ranges::find(reports_, report) != reports_.end();
    }

    /// True if nothing of the pipeline's stands in the temporary folder, where the tests' own is.
    bool isNothingLeft() const {
        return std::ranges::all_of(FileSystem::names(temporary_), [](const std::string& name) {
            return name.starts_with("keldo-test-");
        });
    }

    static URL made(const URL& folder) {
        std::filesystem::create_directories(folder);
        return folder;
    }

    TestSupport::TemporaryFolder folder_;
    URL temporary_ = made(folder_.path() / "tmp");
    URL output_ = folder_.path() / "out";
    TestSupport::EnvironmentVariable tmpdir_{"TMPDIR", temporary_.native()};
    TestSupport::EnvironmentVariable data_{"XDG_DATA_HOME", (folder_.path() / "data").native()};
    TestSupport::EnvironmentVariable model_{"KELDO_WHISPER_MODEL",
                                            (folder_.path() / "ggml-tiny.en.bin").native()};
    std::optional<TestSupport::FakeTool> whisper_{
        std::in_place, "KELDO_WHISPER_CLI",
        R"(echo '{"transcription":[{"offsets":{"from":0,"to":400},"text":" hello"}]}' >"$9.json")"};
    std::optional<TestSupport::FakeTool> python_{std::in_place, "KELDO_PYTHON"};
    std::function<bool()> isCancelled_ = [] { return false; };
    std::vector<std::string> reports_;
};

}  // namespace ReelCore
