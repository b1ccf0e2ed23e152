#pragma once

#include "ReelCore/Platform/Date.h"
#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

/// The file system that a folder or file lies on, and its number there.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;

    bool operator==(const FileIdentity&) const = default;
};

/// Small questions and orders to the file system. Paths may be relative to the working directory.
/// Failures are SystemErrors with the path.
struct FileSystem {
    /// True if a folder stands at `path`, also through links.
    static bool isFolder(const URL& path);

    /// True if anything at all stands at `path`, a dangling link included.
    static bool exists(const URL& path);

    /// True if a file or anything else stands where `path` leads, through links.
    static bool leadsSomewhere(const URL& path);

    /// True if a pipe, a socket or a device stands where `path` leads: it may keep who reads it
    /// waiting for ever.
    static bool isPipeOrDevice(const URL& path);

    /// True if a regular file that this process may execute stands where `path` leads.
    static bool isExecutable(const URL& path);

    /// The names in a folder, in no order, without "." and "..". Where the system allows it, the
    /// folder's access time is left alone.
    static std::vector<std::string> names(const URL& folder);

    /// Makes a folder with its intermediates; one that is there already is fine.
    static void createFolders(const URL& folder);

    /// Tells one folder or file from another, whatever their paths; for what is missing, nothing.
    static std::optional<FileIdentity> identity(const URL& path);

    /// The size in bytes of the regular file that a path leads to; absent for what is none.
    static std::optional<std::int64_t> sizeOf(const URL& path);

    /// Sets the modification date to the nanosecond, and leaves the access date.
    static void setModificationDate(const URL& path, Date date);

    /// The path as seen from the root of all folders.
    static URL absolute(const URL& path);

    /// The path made absolute, without "." and ".." parts and without a slash at its end; links
    /// are not resolved.
    static URL standardised(const URL& path);
};

}  // namespace ReelCore
