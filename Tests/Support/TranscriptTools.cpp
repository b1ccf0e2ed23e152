#include "Support/TranscriptTools.h"

#include "ReelCore/Platform/FileSystem.h"

#include <cstdlib>

namespace TestSupport {

namespace {

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

ReelCore::URL installedIn() {
    if (const std::string named = variable("KELDO_TEST_TRANSCRIPT"); !named.empty()) return named;
    const std::string cache = variable("XDG_CACHE_HOME");
    const ReelCore::URL folder =
        cache.empty() ? ReelCore::URL(variable("HOME")) / ".cache" : ReelCore::URL(cache);
    return folder / "keldobay-transcript";
}

}  // namespace

TranscriptTools::TranscriptTools()
    : dataHome_(installedIn()),
      folder_(dataHome_ / "keldobay"),
      whisperCLI(folder_ / "bin/whisper-cli"),
      englishModel(folder_ / "models/ggml-tiny.en.bin"),
      multilingualModel(folder_ / "models/ggml-base.bin"),
      python(folder_ / "python/bin/python3"),
      diarizationModels(folder_ / "models/diarization"),
      visionModels(folder_ / "models/vision"),
      sample(folder_ / "samples/jfk.wav"),
      data_("XDG_DATA_HOME", dataHome_.native()),
      cli_("KELDO_WHISPER_CLI", whisperCLI.native()),
      model_("KELDO_WHISPER_MODEL", std::nullopt),
      interpreter_("KELDO_PYTHON", python.native()) {}

std::string TranscriptTools::lack(const std::vector<ReelCore::URL>& files) const {
    std::string missing;
    for (const ReelCore::URL& file : files) {
        if (!ReelCore::FileSystem::exists(file)) {
            missing += " " + file.lexically_relative(folder_).native();
        }
    }
    if (missing.empty()) return {};
    return "needs what Scripts/install-transcript sets up; not in " + folder_.native() + ":" +
           missing;
}

}  // namespace TestSupport
