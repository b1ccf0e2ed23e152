#pragma once

#include "ReelCore/Platform/URL.h"

#include <optional>

namespace ReelCore {

/// Finds ffmpeg and ffprobe: where FFMPEG_PATH and FFPROBE_PATH point, if an executable file stands
/// there, else in the folders where they are commonly installed. Never on the search path. Asks the
/// environment and the file system anew each time; any thread.
struct FFmpegLocator {
    std::optional<URL> ffmpeg() const;
    std::optional<URL> ffprobe() const;

    /// True if there is an ffmpeg; ffprobe is not looked for.
    bool isAvailable() const;
};

}  // namespace ReelCore
