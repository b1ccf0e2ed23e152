#pragma once

#include "ReelCore/Platform/URL.h"

namespace ReelCore {

/// True if `path` is the folder `folder` or lies below it on the disk, whatever way leads there:
/// through links, through another spelling where case does not matter, through a second mount of
/// the same file system, or through a folder that is mounted elsewhere once more. Parts of `path`
/// that don't exist yet count as what making them would give. File systems that pass another one
/// through under their own name (FUSE mirrors, network mounts of this computer) can't be seen
/// through.
bool liesWithin(const URL& path, const URL& folder);

}  // namespace ReelCore
