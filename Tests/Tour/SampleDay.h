#pragma once

#include "ReelCore/Platform/URL.h"

namespace Tour {

/// What a day on a set hands in.
struct SampleDay {
    /// Makes it below `folder` by ffmpeg, in some seconds, with empty folders for what comes of it.
    /// Throws std::runtime_error with what ffmpeg said if it fails.
    explicit SampleDay(const ReelCore::URL& folder);

    /// The folder of that name, which is there.
    ReelCore::URL operator/(const char* name) const;

    /// Three clips that play, two of them under a recording; one that lost its index; a recording
    /// at another time of day and one that was never closed. A sidecar for each clip.
    ReelCore::URL card;

    /// The raw bytes of a card that no longer mounts: a whole clip, and one that is cut off.
    ReelCore::URL image;

    ReelCore::URL look;  ///< A 3D LUT.

    /// A clip with sound: a slate, then a person in the picture while three voices speak in turn.
    ReelCore::URL interview;

private:
    ReelCore::URL folder_;
};

}  // namespace Tour
