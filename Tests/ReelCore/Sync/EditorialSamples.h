#pragma once

#include "ReelCore/Sync/SyncTypes.h"

namespace TestSupport {

/// A clip without a start timecode, in HD.
inline ReelCore::VideoClip picture(const ReelCore::URL& url, double duration,
                                   ReelCore::FrameRate rate = ReelCore::FrameRate::fps25) {
    ReelCore::VideoClip clip;
    clip.url = url;
    clip.duration = duration;
    clip.frameRate = rate;
    clip.width = 1920;
    clip.height = 1080;
    return clip;
}

inline ReelCore::AudioClip sound(const ReelCore::URL& url, double duration) {
    ReelCore::AudioClip clip;
    clip.url = url;
    clip.duration = duration;
    clip.sampleRate = 48000;
    return clip;
}

/// A clip whose whole length one recording covers.
inline ReelCore::SyncGroup pair(const ReelCore::VideoClip& video, const ReelCore::AudioClip& audio,
                                double audioOffset = 0.0) {
    return {video, {{audio, audioOffset, 1.0}}};
}

}  // namespace TestSupport
