#pragma once

#include "ReelCore/Sync/SyncTypes.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace ReelCore {

/// Finds which sound recordings belong to which camera clips, by time of day alone: they belong
/// together where their intervals on the clock overlap. Nothing wraps at midnight. No state; any
/// thread. What reads clips runs ffprobe, six or seven times a clip and one run after the other,
/// and blocks for as long.
struct Synchronizer {
    struct FrameSize {
        std::int64_t width = 0;
        std::int64_t height = 0;

        bool operator==(const FrameSize&) const = default;
    };

    /// Lower-case file extensions.
    static constexpr std::array<std::string_view, 8> videoExtensions{"mov", "mp4", "mxf", "m4v",
                                                                     "avi", "mts", "r3d", "braw"};
    static constexpr std::array<std::string_view, 2> audioExtensions{"wav", "bwf"};

    /// Reads every clip and recording below a folder and matches those that overlap by half a
    /// second or more. What can't be read, file or folder, is left out without a word; a folder
    /// that is missing has nothing in it. No failure of a file or a folder ends the scan.
    static SyncResult scan(const URL& directory);

    /// Throws what AudioExtractor::probe throws. A clip whose length can't be learned has the
    /// duration 0.
    static VideoClip readVideo(const URL& url);

    /// Throws what BWFReader::read throws.
    static AudioClip readAudio(const URL& url);

    /// Matches each video with every recording that overlaps it by at least `minOverlap` seconds.
    /// Groups come in the order of the videos; in each, matches by coverage, then in the order of
    /// the audios.
    static SyncResult match(std::span<const VideoClip> videos, std::span<const AudioClip> audios,
                            double minOverlap);

    /// The time of day that the label tells: labels count as seconds of the clock whatever the
    /// rate, and hours above 23 as they are.
    static double secondsOfDay(const Timecode& timecode);

    /// The frame size of a clip in pixels; 1920 by 1080 where it can't be learned.
    static FrameSize dimensions(const URL& url);
};

}  // namespace ReelCore
