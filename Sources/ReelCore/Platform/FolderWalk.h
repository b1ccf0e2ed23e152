#pragma once

#include "ReelCore/Platform/Date.h"
#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ReelCore {

/// A regular file that a walk has met.
struct WalkedFile {
    std::string relativePath;  ///< Below the walk's root, with "/" between the parts.
    std::int64_t size;         ///< In bytes.
    std::optional<Date> modificationDate;
};

/// The folders that a walk met but could not read, and so passed over with all below them.
struct UnreadFolders {
    std::int64_t count = 0;
    std::string first;  ///< Path of the first one below the walk's root; empty if there is none.

    bool operator==(const UnreadFolders&) const = default;
};

/// Visits every regular file below `root`, hidden ones included, in the order in which the file
/// system lists them. Links, pipes, sockets and devices are passed over and never opened; so is a
/// folder that can't be read, and anything, with all below it, whose name `isIgnored` tells.
/// Folders are only read: where the system allows it, not even their access times change.
///
/// What was passed over unread; nothing, with nothing visited, if `root` can't be opened. Throws
/// SystemError if the attributes of any entry can't be read, if the listing of a folder breaks off,
/// or if this process has no means left to read a folder, `root` included
/// (SystemError::isOwnLimit). Synchronous; memory grows with the number of folders, not of files.
std::optional<UnreadFolders> walkFolder(const URL& root,
                                        const std::function<bool(std::string_view name)>& isIgnored,
                                        const std::function<void(WalkedFile)>& visit);

/// Visits the path of every regular file, every folder and every link below `root`, hidden ones
/// included, in the order of their paths. Links are told of, also those that lead nowhere, but not
/// followed; pipes, sockets and devices, and links to such, are passed over, since who opens one
/// may wait for ever. What can't be read is passed over as well: an entry's attributes, a folder,
/// the rest of a listing that breaks off. False, with nothing visited, if `root` can't be opened;
/// throws only what `visit` throws.
bool walkEntries(const URL& root, const std::function<void(const URL&)>& visit);

/// Visits the path of everything below a root that may be failing, of which all that can be listed
/// counts: pipes and devices are told of as well, and entries whose attributes can't be read. Where
/// a listing breaks off or a folder can't be read, the walk goes on with the rest; it throws only
/// what `visit` throws. Links are not followed. Anything, with all below it, whose name `isIgnored`
/// tells is passed over. In the order of the paths; false if `root` can't be opened.
bool walkReadableEntries(const URL& root,
                         const std::function<bool(std::string_view name)>& isIgnored,
                         const std::function<void(const URL&)>& visit);

}  // namespace ReelCore
