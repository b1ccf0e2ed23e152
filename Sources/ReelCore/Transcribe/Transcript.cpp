#include "ReelCore/Transcribe/Transcript.h"

namespace ReelCore {

URL TranscribeRequest::documentURL() const {
    const URL name = lastPathComponent(input);
    return outputDirectory / (name.stem().native() + "_transcript.docx");
}

Timecode Transcript::timecode(const TranscriptSegment& segment) const {
    return startTimecode.adding(segment.startSeconds);
}

std::string_view rawValue(TranscribeProgress::Phase phase) {
    using enum TranscribeProgress::Phase;
    switch (phase) {
        case probing:
            return "probing";
        case countingPeople:
            return "countingPeople";
        case diarizing:
            return "diarizing";
        case extracting:
            return "extracting";
        case transcribing:
            return "transcribing";
        case slate:
            return "slate";
        case appearance:
            return "appearance";
        case merging:
            return "merging";
        case writing:
            return "writing";
        case done:
            return "done";
    }
    return "";
}

}  // namespace ReelCore
