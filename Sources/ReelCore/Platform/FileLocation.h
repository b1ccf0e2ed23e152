#pragma once

#include "ReelCore/Platform/URL.h"

#include <optional>
#include <string>

namespace ReelCore {

/// Where a path leads on the disk now, whatever way leads there: through links, through another
/// spelling where case does not matter, through a second mount of the same file system, or through
/// a folder that is mounted elsewhere once more. Parts that don't exist yet count as what making
/// them would give. File systems that pass another one through under their own name (FUSE mirrors,
/// network mounts of this computer) can't be seen through. A value; any thread.
class FileLocation {
public:
    /// Throws SystemError if `path` is relative and there is no working directory.
    explicit FileLocation(const URL& path);

    /// The way here from `folder`: "." if this is that folder, a relative path if it lies below,
    /// otherwise nothing.
    std::optional<URL> pathWithin(const FileLocation& folder) const;

private:
    URL path_;            ///< With all links resolved.
    std::string device_;  ///< Of the file system; empty where it is not known.
    URL pathInFileSystem_;
};

}  // namespace ReelCore
