#pragma once

#include "Support/FolderTree.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TestSupport {

/// A small drive: a file-system image of its own that is mounted by loop. The image stays open to
/// the test, so that bytes can change below the mounted file system, as on a failing device.
///
/// Needs root. Mounted by the constructor (throws std::runtime_error with what the tools say);
/// unmounted, with loop device and image gone, by the destructor.
class LoopMount {
public:
    /// `fileSystem` is "ext4", "xfs" (of which the smallest is 300 MiB; images are sparse), or
    /// "ntfs", which a program serves over the block device.
    /// `options` are those of mount(8).
    LoopMount(const std::string& fileSystem, std::int64_t mebibytes,
              const std::string& options = "rw");
    ~LoopMount();

    LoopMount(const LoopMount&) = delete;
    LoopMount& operator=(const LoopMount&) = delete;

    /// The mount point.
    const ReelCore::URL& path() const { return path_; }
    const ReelCore::URL& image() const { return image_; }

    void makeReadOnly();

    /// Takes the drive out of the tree at once, open files or not; the empty folder stays.
    void vanish();

    /// Mounts the same device at a second place, as long as this object lives.
    void mountAgainAt(const ReelCore::URL& mountPoint);

    /// Flushes the drive, then flips one bit of the file's byte `at` in the image. The mounted
    /// file system and its cache learn nothing of it.
    void flipBitBelow(const ReelCore::URL& file, std::int64_t at);

    /// True where this machine lets this user mount images.
    static bool isAvailable();

private:
    TemporaryFolder folder_;
    ReelCore::URL image_;
    ReelCore::URL path_;
    std::vector<ReelCore::URL> mountPoints_;
};

/// One folder mounted at a second place. Needs root.
class BindMount {
public:
    BindMount(const ReelCore::URL& folder, const ReelCore::URL& mountPoint);
    ~BindMount();

    BindMount(const BindMount&) = delete;
    BindMount& operator=(const BindMount&) = delete;

private:
    ReelCore::URL mountPoint_;
};

}  // namespace TestSupport
