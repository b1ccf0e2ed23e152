#include "ReelCore/Platform/FileSystem.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace ReelCore {

bool FileSystem::numbersFilesAnew(int descriptor) {
    struct statfs status {};
    return ::fstatfs(descriptor, &status) == 0 &&
           (status.f_type == MSDOS_SUPER_MAGIC || status.f_type == EXFAT_SUPER_MAGIC ||
            status.f_type == FUSE_SUPER_MAGIC);
}

std::optional<FileStamp> FileSystem::stamp(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    if (!numbersFilesAnew(descriptor)) {
        return FileStamp{status.st_ino, status.st_size, status.st_mtim.tv_sec,
                         status.st_mtim.tv_nsec};
    }
    const auto evenSecond = status.st_mtim.tv_sec - (status.st_mtim.tv_sec & 1);
    return FileStamp{std::nullopt, status.st_size, evenSecond, 0};
}

std::optional<FileStamp> FileSystem::stamp(const URL& path) {
    const int descriptor = ::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return std::nullopt;
    const auto found = stamp(descriptor);
    ::close(descriptor);
    return found;
}

}  // namespace ReelCore
