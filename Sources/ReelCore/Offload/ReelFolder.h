#pragma once

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/URL.h"

#include <string>

namespace ReelCore {

/// The folder that one run fills on one destination. It sees to it that no copy can land in the
/// source, or on another disk after the drive has gone. Used by one thread for one run.
class ReelFolder {
public:
    /// Only forms the path: the reel name is appended exactly as it is.
    ReelFolder(const URL& source, const URL& destination, const std::string& reelName);

    const URL& destination() const { return destination_; }
    const URL& path() const { return path_; }

    /// Throws OffloadError::DestinationNotWritable if the folder lies in the source or is it.
    void requireOutsideSource() const;

    /// Makes the folder with its intermediates. Throws OffloadError::DestinationNotWritable.
    void create();

    URL targetFor(const std::string& relativePath) const;

    /// Makes the folder that `target` goes to. Throws SystemError if it can't be made,
    /// OffloadError::DestinationNotWritable if it lies in the source, and
    /// OffloadError::WriteFailed if this reel folder is no longer the one that was created.
    void prepareParent(const URL& target);

private:
    URL source_;
    URL destination_;
    URL path_;
    std::optional<FileIdentity> identity_;
    URL preparedParent_;
};

}  // namespace ReelCore
