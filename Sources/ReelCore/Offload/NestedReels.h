#pragma once

#include "ReelCore/Models/MediaFile.h"
#include "ReelCore/Offload/ReelFolder.h"

#include <string>
#include <vector>

namespace ReelCore {

/// Two reel folders may lie one inside the other, as long as no path of the card leads to the same
/// place from both. Where one does, a copy for the inner reel or its hash list `listName` would
/// replace a proved copy of the outer one: then OffloadError::DestinationNotWritable is thrown for
/// the inner destination. The very same folder twice is fine. Makes nothing.
void requireNoClash(const std::vector<ReelFolder>& reels, const std::vector<MediaFile>& files,
                    const std::string& listName);

}  // namespace ReelCore
