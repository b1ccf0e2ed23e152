#include "ReelCore/Transcribe/SpeechClassifier.h"

#include "ReelCore/Platform/Text.h"

#include <algorithm>

namespace ReelCore {

namespace {

constexpr std::array notes{"♪", "🎵", "🎶"};
constexpr std::array wordsOfMusic{"music",         "guitar",       "singing", "song", "piano",
                                  "music playing", "instrumental", "melody",  "drum"};

bool containsAny(std::string_view text, const auto& pieces) {
    return std::ranges::any_of(pieces,
                               [&](const char* piece) { return text.find(piece) != text.npos; });
}

bool isBracketed(std::string_view text) {
    return (text.starts_with('(') && text.ends_with(')')) ||
           (text.starts_with('[') && text.ends_with(']'));
}

}  // namespace

bool SpeechClassifier::isNonSpeech(std::string_view label) {
    return std::ranges::find(nonSpeechLabels, label) != nonSpeechLabels.end();
}

std::optional<std::string> SpeechClassifier::nonSpeechSpeaker(std::string_view text) {
    const std::string cue = Text::lowerCased(Text::trimmed(text));
    if (containsAny(cue, notes)) return std::string(musicLabel);
    if (!isBracketed(cue)) return std::nullopt;
    return std::string(containsAny(cue, wordsOfMusic) ? musicLabel : soundLabel);
}

std::vector<TranscriptSegment> SpeechClassifier::relabel(std::vector<TranscriptSegment> segments) {
    for (TranscriptSegment& segment : segments) {
        if (auto label = nonSpeechSpeaker(segment.text)) segment.speaker = std::move(*label);
    }
    return segments;
}

}  // namespace ReelCore
