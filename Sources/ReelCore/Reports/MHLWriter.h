#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>

namespace ReelCore {

struct OffloadResult;

/// Writes a media hash list (MHL version 1.1), so that a drive carries its own proof: anyone can
/// check the files later without this system. The list states what the source held, whether or
/// not a copy was verified.
struct MHLWriter {
    std::string toolName;
    std::string toolVersion;

    bool operator==(const MHLWriter&) const = default;

    /// The reel name with each "/" as "_", and ".mhl".
    static std::string listName(std::string reelName);

    /// Writes the list of `result` into `folder`, which is the reel folder of one destination, and
    /// returns where it stands: under its `listName`. A file of that name is replaced. The list's
    /// bytes and the folder's entry for it are on the device when this returns. Throws SystemError
    /// where the list could not be written whole; what there is of it is then removed, as far as
    /// the drive still lets it.
    URL write(const OffloadResult& result, const URL& folder) const;
};

}  // namespace ReelCore
