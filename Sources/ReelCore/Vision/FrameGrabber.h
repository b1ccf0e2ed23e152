#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Vision/StillImage.h"

#include <cstdint>
#include <optional>

namespace ReelCore {

/// Single frames of a clip as stills. Any thread.
struct FrameGrabber {
    FFmpegLocator ff;

    bool isAvailable() const { return ff.isAvailable(); }

    /// Writes the frame at `seconds` from the clip's beginning to "frame_MILLISECONDS.jpg" in
    /// `directory`, which is made, and returns where; a frame of the same millisecond is replaced.
    /// Blocks until ffmpeg has ended. Throws TranscribeError: FFmpegNotFound, ExtractionFailed
    /// where no frame came; SystemError where the folder can't be made or ffmpeg not be started. A
    /// time that is no number is a fatal fault. ffmpeg takes a "%d" in the folder's path for the
    /// number of a frame, and then no frame comes.
    URL grabFile(const URL& url, double seconds, const URL& directory) const;

    /// The frame at `seconds` as a picture, by a file that `grabFile` leaves in `directory`; absent
    /// where either fails. `enough` is as for `loadCGImage`.
    std::optional<StillImage> still(const URL& url, double seconds, const URL& directory,
                                    std::optional<std::int64_t> enough = std::nullopt) const;

    /// Loads a picture as it is stored, without turning it; absent for a file that is none or has
    /// more than 512 MiB. A picture with an edge longer than twice `enough` pixels is loaded at a
    /// half, a quarter or an eighth of its size, its longer edge no shorter than `enough`.
    static std::optional<StillImage> loadCGImage(const URL& url,
                                                 std::optional<std::int64_t> enough = std::nullopt);
};

}  // namespace ReelCore
