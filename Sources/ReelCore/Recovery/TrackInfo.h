#pragma once

#include "ReelCore/Recovery/MP4Box.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ReelCore {

/// What a track of a reference clip tells (ISO/IEC 14496-12 and the QuickTime file format).
struct TrackInfo {
    std::shared_ptr<MP4Box> trak;     ///< The node of the tree itself, to be edited in place.
    std::string kind;                 ///< "vide" for pictures, "soun" for sound.
    std::string format;               ///< Of the first sample description.
    std::uint32_t mdhdTimescale = 0;  ///< Units in a second.
    std::uint32_t sttsDelta = 1;      ///< Units that a sample lasts.
    std::int64_t bytesPerFrame = 0;   ///< Of each sample; 0 where they differ.
};

/// The tracks of a "moov" in their order. One that lacks its handler, media header, sample table or
/// sample description is passed over.
std::vector<TrackInfo> describe(const MP4Box& moov);

/// A big-endian number in a payload; 0 where the payload does not hold it whole.
std::uint32_t numberAt(const MP4Box::Bytes& payload, std::size_t offset);

/// The version that a payload begins with; 0 for an empty one.
std::uint8_t versionOf(const MP4Box::Bytes& payload);

}  // namespace ReelCore
