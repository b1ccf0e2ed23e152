#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <string>

namespace ReelCore {

/// One spoken line. Times are seconds from the beginning of the source.
struct TranscriptSegment {
    std::string speaker;  ///< The line's label, which may stand for something other than speech.
    double startSeconds = 0.0;
    double endSeconds = 0.0;
    std::string text;  ///< Without white space at its ends.

    bool operator==(const TranscriptSegment&) const = default;
};

/// One known speaker, and where their sound is: an audio channel of the source (counted from 0), or
/// a file of its own.
struct SpeakerTrack {
    std::string name;  ///< The label of the speaker's lines.
    std::optional<std::int64_t> channelIndex;
    std::optional<URL> fileURL;

    bool operator==(const SpeakerTrack&) const = default;
};

}  // namespace ReelCore
