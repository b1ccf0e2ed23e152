#pragma once

#include "ReelCore/Platform/Date.h"
#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcode/LUT.h"
#include "ReelCore/Transcode/TranscodePreset.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ReelCore {

/// What one transcode is to do.
struct TranscodeRequest {
    URL input;
    URL outputDirectory;
    TranscodePreset preset;
    std::optional<LUT> lut;
    std::optional<std::int64_t> scaleLongEdge;  ///< Pixels of the picture's longer edge.

    /// The input's name with the preset's extension, in the output folder.
    URL outputURL() const;
};

/// How far a transcode is, by ffmpeg's own word.
struct TranscodeProgress {
    double fractionComplete = 0.0;  ///< At most 1; stays 0 where the length is unknown.
    double currentSeconds = 0.0;
    double totalSeconds = 0.0;
    std::optional<double> fps;         ///< Frames encoded in a second of the clock.
    std::optional<std::string> speed;  ///< Against real time, such as "2.13x".

    bool operator==(const TranscodeProgress&) const = default;
};

struct TranscodeResult {
    TranscodeRequest request;
    URL outputURL;
    double durationSeconds = 0.0;  ///< The input's length, 0 where it could not be learned.
    Date startedAt{};
    Date finishedAt{};
};

}  // namespace ReelCore
