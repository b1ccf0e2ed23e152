#pragma once

#include "ReelCore/Platform/Date.h"
#include "ReelCore/Platform/FileStamp.h"
#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

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

    /// Makes the names in a folder durable on their device. Does nothing where the file system
    /// knows no such order, or where the folder may be written to but not be listed.
    static void flushFolder(const URL& folder);

    /// Tells one folder or file from another, whatever their paths; for what is missing, nothing.
    static std::optional<FileIdentity> identity(const URL& path);

    static std::optional<FileIdentity> identity(int descriptor);

    /// The stamp of the regular file that stands at `path` itself; a link is not followed. Absent
    /// for what is no regular file or can't be looked at.
    static std::optional<FileStamp> stamp(const URL& path);

    /// The same for an open file.
    static std::optional<FileStamp> stamp(int descriptor);

    /// True if the file system that an open file or folder lies on numbers its files anew whenever
    /// it likes, so that one file may have two identities at two times.
    static bool numbersFilesAnew(int descriptor);

    /// The size in bytes of the regular file that a path leads to; absent for what is none.
    static std::optional<std::int64_t> sizeOf(const URL& path);

    /// Removes a file that is still the one meant and still empty; a failure is ignored.
    static void removeIfEmpty(const URL& path, const FileIdentity& meant);

    /// Sets the modification date to the nanosecond, and leaves the access date.
    static void setModificationDate(const URL& path, Date date);

    /// The path as seen from the root of all folders.
    static URL absolute(const URL& path);

    /// The path made absolute, without "." and ".." parts and without a slash at its end; links
    /// are not resolved.
    static URL standardised(const URL& path);
};

}  // namespace ReelCore
