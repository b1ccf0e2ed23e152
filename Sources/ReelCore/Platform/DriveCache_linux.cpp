#include "ReelCore/Platform/DriveCache.h"
#include "ReelCore/Platform/MountTable.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>

namespace ReelCore {

namespace {

using Magic = std::uint32_t;

Magic fileSystemOf(int descriptor) {
    struct statfs status {};
    if (::fstatfs(descriptor, &status) != 0) throwSystemError();
    return static_cast<Magic>(status.f_type);
}

bool isOneOf(Magic fileSystem, std::initializer_list<Magic> magics) {
    return std::ranges::find(magics, fileSystem) != magics.end();
}

/// A program, another computer or a cache of their own answers for the files.
constexpr Magic zfs = 0x2fc12fc1;
constexpr Magic sharedFolders = 0x786f4256;
constexpr std::initializer_list<Magic> answeredFromMemory{FUSE_SUPER_MAGIC,
                                                          NFS_SUPER_MAGIC,
                                                          SMB_SUPER_MAGIC,
                                                          CIFS_SUPER_MAGIC,
                                                          SMB2_SUPER_MAGIC,
                                                          V9FS_MAGIC,
                                                          AFS_FS_MAGIC,
                                                          CEPH_SUPER_MAGIC,
                                                          CODA_SUPER_MAGIC,
                                                          ECRYPTFS_SUPER_MAGIC,
                                                          zfs,
                                                          sharedFolders};

/// The block device that a program serves the file system from; absent where there is none or this
/// process may not open it.
std::optional<File> openDeviceBelow(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || major(status.st_dev) == 0) return std::nullopt;
    const std::string number = fmt::format("{}:{}", major(status.st_dev), minor(status.st_dev));
    std::vector<URL> nodes{"/dev/block/" + number};
    for (const Mount& mount : mountTable()) {
        if (mount.device == number) nodes.emplace_back(mount.source);
    }
    for (const URL& node : nodes) {
        try {
            return File::openBlockDevice(node, status.st_dev);
        } catch (const SystemError&) {
            // The next name, if any, may lead to it.
        }
    }
    return std::nullopt;
}

/// False for files whose data goes through the journal or is kept beside the name.
bool isReadDirectly(const File& file) {
    struct statx status {};
    const int answer = ::statx(file.descriptor(), "", AT_EMPTY_PATH, STATX_DIOALIGN, &status);
    return answer == 0 && (status.stx_mask & STATX_DIOALIGN) != 0 && status.stx_dio_mem_align > 0;
}

}  // namespace

// On these two it is known, by changing bytes on the device below, that waiting for a file's pages
// is enough to have a direct read meet the drive. Elsewhere the file is flushed.
DriveCache::DriveCache(int descriptor)
    : commitCanWait_(isOneOf(fileSystemOf(descriptor), {EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC})) {
    if (!isOneOf(fileSystemOf(descriptor), answeredFromMemory)) return;
    deviceBelow_ = openDeviceBelow(descriptor);
    canBePassed_ = deviceBelow_.has_value();
}

void DriveCache::pass(File& file) const {
    if (!commitCanWait_ || !isReadDirectly(file) || !file.finishWriteback(0, 0)) {
        file.flush();
        file.dropFromCache(0, 0);
    }
    if (!deviceBelow_) return;
    deviceBelow_->flush();
    deviceBelow_->dropFromCache(0, 0);
}

}  // namespace ReelCore
