#pragma once

#include "Support/FolderTree.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TestSupport {

/// A disk of its own: an image file behind a loop device, with an ext4 file system that holds
/// `content`. Unlike a LoopMount it outlives its unmounting, as a card in a reader does.
///
/// Needs root (see LoopMount::isAvailable). Unmounted everywhere and gone with the object.
class LoopDevice {
public:
    enum class Writing { allowed, refused };

    LoopDevice(const FolderTree& content, std::int64_t mebibytes,
               Writing writing = Writing::allowed);
    ~LoopDevice();

    LoopDevice(const LoopDevice&) = delete;
    LoopDevice& operator=(const LoopDevice&) = delete;

    /// The device node.
    const ReelCore::URL& node() const { return node_; }

    /// The file that the device's bytes are in.
    ReelCore::URL image() const { return folder_.path() / "image"; }

    /// Mounts the device; the folder is made where it is missing.
    void mountAt(const ReelCore::URL& mountPoint, const std::string& options = "noatime") const;

    /// Where the device is mounted now, by whomever.
    std::vector<ReelCore::URL> mountPoints() const;

    /// A checksum of all that stands on the device.
    std::string checksum() const;

private:
    TemporaryFolder folder_;
    ReelCore::URL node_;
};

}  // namespace TestSupport
