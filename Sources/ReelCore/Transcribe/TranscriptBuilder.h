#pragma once

#include "ReelCore/Diarize/DiarizationModels.h"
#include "ReelCore/Diarize/DiarizationTypes.h"
#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Transcribe/Transcript.h"
#include "ReelCore/Transcribe/TranscriptTypes.h"
#include "ReelCore/Transcribe/WhisperLocator.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace ReelCore {

/// Makes a transcript of one clip and its Word document. Who speaks is known by a list of tracks,
/// or told by voice from one mix. Holds no state of a job and may be used again.
class TranscriptBuilder {
public:
    /// `isCancelled` is asked on the thread of `run`: between the steps, before each frame that is
    /// looked at, and ten times a second while lines are transcribed.
    explicit TranscriptBuilder(std::function<bool()> isCancelled = [] { return false; });

    static bool isAvailable() {
        return WhisperLocator().isAvailable() && FFmpegLocator().isAvailable();
    }
    static bool isDiarizationAvailable() { return DiarizationModels().isAvailable(); }

    /// Returns the transcript and where its document is: "NAME_transcript.docx" in the request's
    /// output folder, which is made; an earlier document is replaced. `progress` is called on this
    /// thread.
    ///
    /// Throws TranscribeError, DiarizeError and SystemError, Error for a result of whisper-cli that
    /// can't be read, OutOfRange for a line beyond all timecodes. A cancel seen before the last
    /// line is transcribed is TranscribeError::Cancelled; later the document is written all the
    /// same, with as many hints as there are. A slate or a hint that can't be had is left out. The
    /// folder of the sound's temporary files is gone on every way out.
    std::pair<Transcript, URL> run(
        const TranscribeRequest& request,
        const std::function<void(const TranscribeProgress&)>& progress) const;

    /// All lines by their beginnings; at one time by speaker; those of one speaker in track order.
    static std::vector<TranscriptSegment> merge(
        const std::vector<std::vector<TranscriptSegment>>& perTrack);

    /// Gives each line the speaker of the turn that it overlaps longest, or of the turn nearest to
    /// its middle; of equals the earlier turn. Without turns the lines stay as they are.
    static std::vector<TranscriptSegment> assign(std::vector<TranscriptSegment> segments,
                                                 const std::vector<DiarizedTurn>& turns);

    /// The speakers in order of first appearance.
    static std::vector<std::string> orderedSpeakers(const std::vector<DiarizedTurn>& turns);

    std::function<bool()> isCancelled;
};

}  // namespace ReelCore
