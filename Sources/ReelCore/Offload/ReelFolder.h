#pragma once

#include "ReelCore/Platform/FileLocation.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/HeldFolder.h"
#include "ReelCore/Platform/URL.h"

#include <optional>
#include <string>

namespace ReelCore {

/// The folder that one run fills on one destination. It sees to it that no copy can land in the
/// source, or on another disk after the drive has gone. Used by one thread for one run.
class ReelFolder {
public:
    /// Only forms the path: the reel name is appended exactly as it is. Throws
    /// OffloadError::DestinationNotWritable if there is no destination path to append it to.
    ReelFolder(const FileLocation& source, const URL& destination, const std::string& reelName);

    const URL& destination() const { return destination_; }
    const URL& path() const { return path_; }

    /// Throws OffloadError::DestinationNotWritable if the folder lies in the source or is it, or if
    /// that can't be told.
    void requireOutsideSource() const;

    /// Makes the folder with its intermediates, and holds it from then on, so that its drive is not
    /// unmounted by mistake. Throws OffloadError::DestinationNotWritable.
    void create();

    /// True if the path still leads to the folder that was created; false once its drive has gone.
    bool isStillThere() const;

    /// Makes all that was copied durable, names and dates included. Throws
    /// OffloadError::WriteFailed if anything written to the drive since `create` was lost.
    void flush() const;

    URL targetFor(const std::string& relativePath) const;

    /// Makes the folder that `target` goes to, also if it was there before and is gone. Throws
    /// SystemError if it can't be made, OffloadError::DestinationNotWritable if it lies in the
    /// source, and OffloadError::WriteFailed if this reel folder is no longer the one that was
    /// created.
    void prepareParent(const URL& target);

private:
    bool liesInSource(const URL& path) const;

    FileLocation source_;
    URL destination_;
    URL path_;
    std::optional<HeldFolder> held_;
    URL preparedParent_;
    std::optional<FileIdentity> preparedIdentity_;
};

}  // namespace ReelCore
