#pragma once

#include "ReelCore/Platform/File.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ReelCore {

/// Where frames and sound stand in the media of a clip. Offsets are bytes from the first byte of
/// the media.
struct MdatIndex {
    struct VideoSample {
        std::int64_t offset = 0;
        std::int64_t size = 0;

        bool operator==(const VideoSample&) const = default;
    };
    struct AudioChunk {
        std::int64_t offset = 0;
        std::int64_t bytes = 0;

        bool operator==(const AudioChunk&) const = default;
    };

    std::vector<VideoSample> videoSamples;  ///< In file order.
    std::vector<AudioChunk> audioChunks;    ///< In file order.
    std::int64_t referencedEnd = 0;         ///< The end of the last indexed byte.

    bool operator==(const MdatIndex&) const = default;
};

/// Finds the ProRes frames (SMPTE RDD 36) in media by their own tag and takes what lies between
/// them for sound of `bytesPerAudioFrame` bytes a sample; of 0, there is none. A frame that runs
/// over the end of the media ends the index: one that follows a frame, and one that follows sound
/// unless a whole frame stands behind it, which tells that sound only looked like one.
MdatIndex indexMdat(std::span<const std::byte> mdat, std::int64_t bytesPerAudioFrame);

/// The same for `length` bytes of a file from `offset` on, of which only the frames' heads and what
/// lies between them are read. Throws SystemError where they can't be.
MdatIndex indexMdat(const File& file, std::int64_t offset, std::int64_t length,
                    std::int64_t bytesPerAudioFrame);

}  // namespace ReelCore
