#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace keldo_diskutil {

/// Erases a mounted volume: unmounts it, makes a new file system, and mounts it again. The
/// arguments are "eraseVolume", the name of the file system, the new name, and the mount point.
/// What was done is told on `lines`. A card that was handed over to this program on its standard
/// input is the only one that is erased; otherwise it is the one that stands at the mount point
/// now.
///
/// Throws a Refusal while nothing is changed, ReelCore::Error with one line when it fails later.
/// A computer that can make the file system but has no driver to mount it is no failure.
void erase(const std::vector<std::string>& arguments, std::ostream& lines);

}  // namespace keldo_diskutil
