#pragma once

#include "ReelCore/Transcribe/TranscriptTypes.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ReelCore {

/// Tells speech from the cues that a speech model writes for music and noises, such as
/// "(door slams)". Pure; any thread.
struct SpeechClassifier {
    static constexpr std::string_view musicLabel = "♪ Music";
    static constexpr std::string_view soundLabel = "Sound";
    static constexpr std::array nonSpeechLabels = {soundLabel, musicLabel};

    static bool isNonSpeech(std::string_view label);

    /// The label of a line that is a cue; absent for speech and for an empty text.
    static std::optional<std::string> nonSpeechSpeaker(std::string_view text);

    /// The same lines, cues under their label instead of their speaker's.
    static std::vector<TranscriptSegment> relabel(std::vector<TranscriptSegment> segments);
};

}  // namespace ReelCore
