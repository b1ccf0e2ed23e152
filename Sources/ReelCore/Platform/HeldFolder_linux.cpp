#include "ReelCore/Platform/HeldFolder.h"
#include "ReelCore/Platform/SystemError.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace ReelCore {

namespace {

int openFolderAt(int parent, const URL& path, int links) {
    int descriptor = -1;
    do {
        descriptor = ::openat(parent, path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | links);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

int openOrMakeFolderAt(int parent, const URL& name, MissingFolders missing) {
    const int descriptor = openFolderAt(parent, name, O_NOFOLLOW);
    if (descriptor >= 0 || errno != ENOENT || missing == MissingFolders::refuse) return descriptor;
    if (::mkdirat(parent, name.c_str(), 0777) != 0 && errno != EEXIST) return -1;
    return openFolderAt(parent, name, O_NOFOLLOW);
}

}  // namespace

HeldFolder::HeldFolder(URL path, int descriptor) : path_(std::move(path)), descriptor_(descriptor) {
    struct stat status {};
    if (descriptor_ >= 0 && ::fstat(descriptor_, &status) != 0) {
        const int code = errno;
        ::close(std::exchange(descriptor_, -1));
        errno = code;
    }
    if (descriptor_ < 0) throwSystemError(path_);
    identity_ = {status.st_dev, status.st_ino};
}

HeldFolder::HeldFolder(const URL& path) : HeldFolder(path, openFolderAt(AT_FDCWD, path, 0)) {}

HeldFolder HeldFolder::below(const URL& way, MissingFolders missing) const {
    HeldFolder folder(path_, ::fcntl(descriptor_, F_DUPFD_CLOEXEC, 0));
    for (const URL& name : way) {
        if (name.empty()) continue;
        folder =
            HeldFolder(folder.path_ / name, openOrMakeFolderAt(folder.descriptor_, name, missing));
    }
    return folder;
}

HeldFolder::HeldFolder(HeldFolder&& other) noexcept
    : path_(std::move(other.path_)),
      descriptor_(std::exchange(other.descriptor_, -1)),
      identity_(other.identity_) {}

HeldFolder& HeldFolder::operator=(HeldFolder&& other) noexcept {
    std::swap(path_, other.path_);
    std::swap(descriptor_, other.descriptor_);
    std::swap(identity_, other.identity_);
    return *this;
}

HeldFolder::~HeldFolder() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

bool HeldFolder::isStillThere() const {
    struct stat found {};
    return ::stat(path_.c_str(), &found) == 0 &&
           identity_ == FileIdentity{found.st_dev, found.st_ino};
}

std::optional<HeldFolder::Entry> HeldFolder::find(const URL& name) const {
    struct statx found {};
    const auto wanted = STATX_INO | STATX_BTIME;
    if (::statx(descriptor_, name.c_str(), AT_SYMLINK_NOFOLLOW, wanted, &found) != 0) {
        if (errno == ENOENT) return std::nullopt;
        throwSystemError(path_ / name);
    }
    Entry entry{{::makedev(found.stx_dev_major, found.stx_dev_minor), found.stx_ino}, {}};
    if ((found.stx_mask & STATX_BTIME) != 0) {
        entry.born = Date(std::chrono::seconds(found.stx_btime.tv_sec) +
                          std::chrono::nanoseconds(found.stx_btime.tv_nsec));
    }
    return entry;
}

void HeldFolder::setModificationDate(const URL& name, Date date) const {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    const timespec times[2] = {{0, UTIME_OMIT},
                               {seconds.time_since_epoch().count(), (date - seconds).count()}};
    if (::utimensat(descriptor_, name.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0) {
        throwSystemError(path_ / name);
    }
}

bool HeldFolder::lock(FolderLock lock) const {
    const int kind = lock == FolderLock::alone ? LOCK_EX : LOCK_SH;
    while (::flock(descriptor_, kind | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) return false;
        if (errno != EINTR) return true;
    }
    return true;
}

void HeldFolder::flushFileSystem() const {
    if (::syncfs(descriptor_) != 0) throwSystemError(path_);
}

}  // namespace ReelCore
