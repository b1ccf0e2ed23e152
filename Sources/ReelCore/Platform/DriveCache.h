#pragma once

#include "ReelCore/Platform/File.h"

#include <optional>

namespace ReelCore {

/// The memory that stands between the files of one file system and its drive: the operating
/// system's file cache, and for a drive that a program serves (FUSE) that of the block device below
/// it. Made once for each drive, from anything open on it. Movable; any thread.
class DriveCache {
public:
    /// Throws SystemError if the file system can't be asked what it is.
    explicit DriveCache(int descriptor);

    /// False if reads may be answered from memory whatever is let go of: a program or another
    /// computer serves the files, and this process may not, or can't, empty what they remember.
    bool canBePassed() const { return canBePassed_; }

    /// Sees to it that the next reads of `file` meet the drive, as far as this process can: waits
    /// until all that was written to the file is on the drive, and lets go of its cached pages.
    /// Whether its name and size are durable is left to a flush of the file system, where the file
    /// system lets that wait. Throws SystemError if something written did not reach the drive.
    void pass(File& file) const;

private:
    bool commitCanWait_;
    bool canBePassed_ = true;
    std::optional<File> deviceBelow_;
};

}  // namespace ReelCore
