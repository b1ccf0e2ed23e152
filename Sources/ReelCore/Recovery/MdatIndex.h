#pragma once

#include <cstdint>
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

}  // namespace ReelCore
