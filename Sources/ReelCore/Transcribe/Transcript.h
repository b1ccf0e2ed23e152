#pragma once

#include "ReelCore/Diarize/DiarizationTypes.h"
#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcribe/FrameRate.h"
#include "ReelCore/Transcribe/Timecode.h"
#include "ReelCore/Transcribe/TranscriptTypes.h"
#include "ReelCore/Vision/VisionTypes.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ReelCore {

/// What a transcript is to be made of.
struct TranscribeRequest {
    URL input = {};                           ///< A clip or a sound file.
    std::vector<SpeakerTrack> speakers = {};  ///< With `diarize`, only counted.
    URL outputDirectory = {};
    std::optional<Timecode> startTimecodeOverride = {};  ///< Instead of the clip's own.
    bool readSlate = true;
    bool appearanceHints = true;
    std::optional<DiarizationOptions> diarize = {};  ///< Present: voices are told apart in one mix.
    std::optional<URL> modelOverride = {};           ///< A speech model instead of the located one.

    /// The input's name with "_transcript.docx" for its extension, in the output folder.
    URL documentURL() const;
};

/// A clip's dialogue, line by line, with what is known about who speaks.
struct Transcript {
    std::vector<TranscriptSegment> segments = {};  ///< In reading order.
    Timecode startTimecode{0, FrameRate::fps24};   ///< Of second 0 of the source.
    FrameRate frameRate = FrameRate::fps24;        ///< The clip's own.
    std::string sourceName = {};                   ///< With its extension.
    std::optional<SlateInfo> slate = {};
    std::map<std::string, AppearanceHint> appearances = {};  ///< By the speaker's label.

    /// Where a line begins, to the nearest frame. Throws OutOfRange beyond 64 bits.
    Timecode timecode(const TranscriptSegment& segment) const;

    bool operator==(const Transcript&) const = default;
};

/// One report of a run on its way.
struct TranscribeProgress {
    /// Not in the order of a run: merging comes before slate and appearance.
    enum class Phase {
        probing,
        countingPeople,
        diarizing,
        extracting,
        transcribing,
        slate,
        appearance,
        merging,
        writing,
        done
    };

    Phase phase = Phase::probing;
    std::optional<std::string> speaker;
    std::int64_t speakersDone = 0;
    std::int64_t totalSpeakers = 0;

    bool operator==(const TranscribeProgress&) const = default;
};

std::string_view rawValue(TranscribeProgress::Phase phase);

}  // namespace ReelCore
