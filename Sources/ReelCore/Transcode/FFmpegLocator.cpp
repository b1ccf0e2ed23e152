#include "ReelCore/Transcode/FFmpegLocator.h"

#include "ReelCore/Platform/FileSystem.h"

#include <cstdlib>

namespace ReelCore {

namespace {

std::optional<URL> locate(const char* name, const char* variable) {
    const char* const named = std::getenv(variable);
    if (named && FileSystem::isExecutable(named)) return named;
    for (const URL folder : {"/opt/homebrew/bin", "/usr/local/bin", "/opt/local/bin", "/usr/bin"}) {
        if (FileSystem::isExecutable(folder / name)) return folder / name;
    }
    return std::nullopt;
}

}  // namespace

std::optional<URL> FFmpegLocator::ffmpeg() const {
    return locate("ffmpeg", "FFMPEG_PATH");
}

std::optional<URL> FFmpegLocator::ffprobe() const {
    return locate("ffprobe", "FFPROBE_PATH");
}

bool FFmpegLocator::isAvailable() const {
    return ffmpeg().has_value();
}

}  // namespace ReelCore
