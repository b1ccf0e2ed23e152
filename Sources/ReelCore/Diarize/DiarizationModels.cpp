#include "ReelCore/Diarize/DiarizationModels.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/InstalledTool.h"
#include "ReelCore/Transcribe/WhisperLocator.h"

#include <array>

namespace ReelCore {

URL DiarizationModels::directory() {
    return WhisperLocator::modelsDirectory() / "diarization";
}

std::optional<URL> DiarizationModels::python() const {
    constexpr std::array folders{"/opt/homebrew/bin", "/usr/local/bin", "/usr/bin"};
    return installedTool("python3", "KELDO_PYTHON", folders);
}

bool DiarizationModels::modelsPresent() const {
    return FileSystem::leadsSomewhere(segmentation()) && FileSystem::leadsSomewhere(embedding());
}

}  // namespace ReelCore
