#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcribe/FrameRate.h"
#include "ReelCore/Transcribe/Timecode.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ReelCore {

/// One file of a sound recorder. Times are seconds.
struct AudioClip {
    URL url;
    double startSeconds = 0.0;  ///< Since midnight; 0 where the file does not tell.
    double duration = 0.0;
    double sampleRate = 0.0;  ///< In Hz.
    std::optional<std::string> scene;
    std::optional<std::string> take;
    std::optional<std::string> tape;
    std::optional<std::string> note;
    std::vector<std::string> trackNames;

    bool operator==(const AudioClip&) const = default;

    std::string name() const { return lastPathComponent(url); }
    double endSeconds() const { return startSeconds + duration; }
};

/// A recording that many matches name and that is held once for all of them: copies share it. It is
/// never changed, so any number of threads may read it. Equal where the recordings are.
class SharedAudioClip {
public:
    SharedAudioClip(AudioClip clip = {})
        : clip_(std::make_shared<const AudioClip>(std::move(clip))) {}

    const AudioClip& operator*() const { return *clip_; }
    const AudioClip* operator->() const { return clip_.get(); }

    bool operator==(const SharedAudioClip& other) const {
        return clip_ == other.clip_ || *clip_ == *other.clip_;
    }

private:
    std::shared_ptr<const AudioClip> clip_;
};

/// One clip of a camera. Times are seconds.
struct VideoClip {
    URL url;
    double startSeconds = 0.0;  ///< Since midnight; 0 where the clip has no start timecode.
    double duration = 0.0;      ///< 0 where it can't be learned.
    FrameRate frameRate = FrameRate::fps24;
    std::optional<Timecode> startTimecode;
    std::int64_t width = 0;  ///< In pixels.
    std::int64_t height = 0;

    bool operator==(const VideoClip&) const = default;

    std::string name() const { return lastPathComponent(url); }
    double endSeconds() const { return startSeconds + duration; }
};

/// A camera clip with the recordings that overlap it.
struct SyncGroup {
    struct Match {
        SharedAudioClip clip;
        /// Where in the recording the picture's first frame falls, in seconds: negative where the
        /// camera rolled first.
        double audioOffset = 0.0;
        double coverage = 0.0;  ///< The share of the picture's length that is covered, 0 to 1.

        bool operator==(const Match&) const = default;
    };

    VideoClip video;
    std::vector<Match> audio;  ///< Best first.

    bool operator==(const SyncGroup&) const = default;

    bool isSynced() const { return !audio.empty(); }

    /// The match of the highest coverage, the first of those that share it; absent where there
    /// is none.
    std::optional<Match> best() const;
};

struct SyncResult {
    std::vector<SyncGroup> groups;          ///< One a video.
    std::vector<AudioClip> unmatchedAudio;  ///< What overlaps no video.

    bool operator==(const SyncResult&) const = default;

    /// The rate in which a timeline of the groups is counted: that of the first clip, 24 where
    /// there is none or its rate can't be counted in.
    FrameRate timelineRate() const;

    /// The number of groups with sound.
    std::int64_t syncedCount() const;
};

}  // namespace ReelCore
