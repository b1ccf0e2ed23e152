#pragma once

#include "ReelCore/Offload/HeldTree.h"
#include "ReelCore/Platform/DriveCache.h"
#include "ReelCore/Platform/FileLocation.h"
#include "ReelCore/Platform/URL.h"

#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

/// The folder that one run fills on one destination. It sees to it that no copy can land in the
/// source, outside this folder, or on another disk after the drive has gone. Used by one thread for
/// one run.
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
    /// unmounted by mistake. Links are followed up to the destination, not behind it. What the
    /// drive lost before is asked for and forgotten. Throws OffloadError::DestinationNotWritable.
    void create();

    /// Keeps other runs out of the folder, and from making one of those that it lies in their reel
    /// folder, for as long as this object lives. Throws OffloadError::DestinationNotWritable if one
    /// is there.
    void lock();

    /// Of the folder, once it is created.
    const FileIdentity& identity() const { return tree_->root().identity(); }

    /// True if the path still leads to the folder that was created; false once its drive has gone.
    bool isStillThere() const;

    /// Makes all that was copied durable, names and dates included. Throws SystemError if anything
    /// written to the drive since `create` was lost.
    void flush() const;

    URL targetFor(const std::string& relativePath) const;

    /// The folder that the copy of `relativePath` goes to, made where it is missing, also if it was
    /// there before and is gone. Throws SystemError if it can't be made, as where a link stands in
    /// its way; OffloadError::DestinationNotWritable if it lies in the source; and
    /// OffloadError::WriteFailed if this reel folder is no longer the one that was created.
    const HeldFolder& parentFor(const std::string& relativePath);

    /// True if the entry of a folder of this reel was made since `create` by what is known of its
    /// file system, whose numbers do not tell.
    bool wasMadeHere(const HeldFolder::Entry& entry) const;

    /// True where one file may have two numbers at two times.
    bool numbersFilesAnew() const { return numbersDoNotLastSince_.has_value(); }

    /// What stands between the copies and their drive.
    const DriveCache& cache() const { return *cache_; }

private:
    bool liesInSource(const URL& path) const;

    FileLocation source_;
    URL destination_;
    std::string reelName_;
    URL path_;
    std::optional<HeldTree> tree_;
    std::vector<HeldFolder> above_;  ///< What the folder lies in, locked with others.
    std::optional<DriveCache> cache_;
    std::optional<Date> numbersDoNotLastSince_;
};

}  // namespace ReelCore
