#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Transcribe/FrameRate.h"
#include "ReelCore/Transcribe/Timecode.h"
#include "ReelCore/Transcribe/TranscriptTypes.h"

#include <cstdint>
#include <optional>

namespace ReelCore {

/// What a clip contains, and its sound as the WAV that speech recognition wants: mono, 16 kHz, 16
/// bits. Each operation runs ffprobe or ffmpeg and blocks the calling thread until that has ended;
/// none can be cancelled. Any thread. Throws TranscribeError::FFmpegNotFound where the tool is
/// missing, SystemError where it can't be started.
struct AudioExtractor {
    struct ClipInfo {
        FrameRate frameRate = FrameRate::fps24;
        std::optional<Timecode> startTimecode;  ///< The video stream's, else the container's.
        std::int64_t audioChannels = 0;         ///< Of the first audio stream; 0 if there is none.
        std::int64_t audioStreams = 0;

        bool operator==(const ClipInfo&) const = default;
    };

    FFmpegLocator ff;

    /// A file that ffprobe can't read has 24 frames a second and nothing else. A timecode that
    /// can't be counted, by its fields or by the rate, is none.
    ClipInfo probe(const URL& url) const;

    /// Writes the sound of one speaker to "spk_NAME.wav" in `directory`, which must be there: a
    /// downmix of the track's own file, or its channel of the first audio stream of `input`, or a
    /// downmix of that. Of several audio streams a downmix takes the one that ffmpeg prefers.
    /// Returns where.
    /// Throws TranscribeError::ExtractionFailed with the end of what ffmpeg said.
    URL extract(const SpeakerTrack& track, const URL& input, const URL& directory) const;

    /// Writes a downmix of the audio stream of `input` that ffmpeg prefers to "mix.wav" in
    /// `directory`, which is made. Returns where. Throws as `extract` does.
    URL extractMix(const URL& input, const URL& directory) const;
};

}  // namespace ReelCore
