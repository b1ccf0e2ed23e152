#include "ReelCore/Transcribe/Transcript.h"

#include "ReelCore/Platform/Fatal.h"

#include <array>

namespace ReelCore {

Timecode Transcript::timecode(const TranscriptSegment& segment) const {
    return startTimecode.adding(segment.startSeconds);
}

std::string_view rawValue(TranscribeProgress::Phase phase) {
    using Phase = TranscribeProgress::Phase;
    switch (phase) {
        case Phase::probing:
            return "probing";
        case Phase::countingPeople:
            return "countingPeople";
        case Phase::diarizing:
            return "diarizing";
        case Phase::extracting:
            return "extracting";
        case Phase::transcribing:
            return "transcribing";
        case Phase::slate:
            return "slate";
        case Phase::appearance:
            return "appearance";
        case Phase::merging:
            return "merging";
        case Phase::writing:
            return "writing";
        case Phase::done:
            return "done";
    }
    fatal("no such phase");
}

template <>
std::span<const TranscribeProgress::Phase> allCases<TranscribeProgress::Phase>() {
    using Phase = TranscribeProgress::Phase;
    static constexpr std::array cases{Phase::probing,    Phase::countingPeople, Phase::diarizing,
                                      Phase::extracting, Phase::transcribing,   Phase::slate,
                                      Phase::appearance, Phase::merging,        Phase::writing,
                                      Phase::done};
    return cases;
}

}  // namespace ReelCore
