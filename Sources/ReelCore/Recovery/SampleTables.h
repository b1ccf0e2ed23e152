#pragma once

#include "ReelCore/Recovery/MdatIndex.h"
#include "ReelCore/Recovery/TrackInfo.h"

#include <cstdint>

namespace ReelCore {

/// Replaces all tables of a track's "stbl" but its sample descriptions by those of an index: of its
/// frames for a video track, else of its sound. The media stands in the file from `mdatFileOffset`
/// on. Throws OutOfRange where a number, but for offsets, takes more than 32 bits.
void rebuildSampleTables(MP4Box& stbl, const TrackInfo& info, const MdatIndex& index,
                         std::int64_t mdatFileOffset);

}  // namespace ReelCore
