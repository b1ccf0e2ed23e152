#include "ReelCore/Transcode/FFmpegLocator.h"

#include "ReelCore/Platform/InstalledTool.h"

namespace ReelCore {

std::optional<URL> FFmpegLocator::ffmpeg() const {
    return installedTool("ffmpeg", "FFMPEG_PATH");
}

std::optional<URL> FFmpegLocator::ffprobe() const {
    return installedTool("ffprobe", "FFPROBE_PATH");
}

bool FFmpegLocator::isAvailable() const {
    return ffmpeg().has_value();
}

}  // namespace ReelCore
