#pragma once

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/MountTable.h"
#include "ReelCore/Platform/URL.h"
#include "keldo-diskutil/BlockDevice.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace keldo_diskutil {

/// Why nothing was erased, as one line for people. Thrown only while the volume is untouched.
class Refusal : public ReelCore::Error {
public:
    explicit Refusal(const std::string& reason) : Error("Nothing was erased: " + reason) {}
};

/// What decides whether a volume may be erased, as the kernel tells it.
struct Machine {
    std::vector<ReelCore::Mount> mounts;
    std::string swaps;  ///< The text of /proc/swaps.
    DeviceTree devices;

    static Machine current();
};

/// A mounted volume on a block device that holds nothing of the system's own.
struct Volume {
    ReelCore::URL mountPoint;  ///< With all links resolved.
    std::string device;        ///< "major:minor".
    ReelCore::URL node;        ///< The device's node below /dev.
    /// Absent where a program serves the volume (FUSE): the kernel then knows only that program.
    std::optional<std::string> fileSystem;
};

/// True for the file systems that cameras, recorders and shuttle drives carry, by the names that
/// the kernel and the disk service have for them.
bool isOfACard(const std::string& fileSystem);

/// The refusal of all others.
Refusal unknownFileSystem(const ReelCore::URL& mountPoint, const std::string& fileSystem);

/// The volume that is mounted at `path`. Throws a Refusal for all but a writable volume that is
/// mounted whole, once, with no other volume inside, on a block device of its own whose disks
/// carry no part of the running system, and with a file system that cards have, as far as the
/// kernel knows it.
Volume volumeToErase(const ReelCore::URL& path, const Machine& machine);

/// The physical disks that carry the system: its root, its folders with all that is mounted below
/// them, and its swap space. Where the root leads to no disk, as on a live system, that is every
/// disk but those mounted where cards are. The volume mounted at `card` counts only if it is one of
/// the system's folders itself. Throws a Refusal where no such disk is found.
std::set<std::string> systemDisks(const Machine& machine, const ReelCore::URL& card);

}  // namespace keldo_diskutil
