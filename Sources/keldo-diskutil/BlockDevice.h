#pragma once

#include "ReelCore/Platform/URL.h"

#include <optional>
#include <set>
#include <string>

namespace keldo_diskutil {

/// What the kernel's device tree tells of block devices. A device is named by its numbers,
/// "major:minor", as the mount table does. For what is no block device every answer is empty.
class DeviceTree {
public:
    explicit DeviceTree(ReelCore::URL root = "/sys") : root_(std::move(root)) {}

    /// The device's node below /dev; absent where there is no such block device.
    std::optional<ReelCore::URL> node(const std::string& device) const;

    /// The physical disks that the device lies on: of a partition the disk, of a device that is
    /// made of others (LVM, RAID, encryption) the disks of them all. The device's own disk counts
    /// in any case. A loop device is a disk of its own, wherever its file lies.
    std::set<std::string> wholeDisks(const std::string& device) const;

    /// The devices that share one file system with this one, itself among them; empty where the
    /// kernel knows of no such file system.
    std::set<std::string> devicesOfSharedFileSystem(const std::string& device) const;

    /// True if the device takes no writes, such as a card with its lock switch set.
    bool isReadOnly(const std::string& device) const;

private:
    ReelCore::URL folder(const std::string& device) const { return root_ / "dev/block" / device; }

    /// The folder of the device, of a partition that of its disk.
    ReelCore::URL disk(const std::string& device) const;

    ReelCore::URL root_;
};

/// The numbers of a block device's node; absent where `node` is none.
std::optional<std::string> deviceOfNode(const ReelCore::URL& node);

/// The numbers of the file system that `path` lies on.
std::string deviceOfFile(const ReelCore::URL& path);

}  // namespace keldo_diskutil
