#pragma once

#include "ReelCore/Recovery/MdatIndex.h"
#include "ReelCore/Recovery/TrackInfo.h"

#include <cstdint>

namespace ReelCore {

/// Replaces all tables of a track's "stbl" but its sample descriptions by those of an index: of its
/// frames for a video track, else of its sound. The media stands in the file from `mdatFileOffset`
/// on. A number of more than 32 bits, but for offsets, is a fatal fault.
void rebuildSampleTables(MP4Box& stbl, const TrackInfo& info, const MdatIndex& index,
                         std::int64_t mdatFileOffset);

}  // namespace ReelCore
