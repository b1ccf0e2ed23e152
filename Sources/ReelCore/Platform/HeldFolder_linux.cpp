#include "ReelCore/Platform/HeldFolder.h"
#include "ReelCore/Platform/SystemError.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ReelCore {

HeldFolder::HeldFolder(const URL& path) : path_(path), descriptor_(-1) {
    do {
        descriptor_ = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    } while (descriptor_ < 0 && errno == EINTR);
    if (descriptor_ < 0) throwSystemError(path);
}

HeldFolder::HeldFolder(HeldFolder&& other) noexcept
    : path_(std::move(other.path_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

HeldFolder& HeldFolder::operator=(HeldFolder&& other) noexcept {
    std::swap(path_, other.path_);
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

HeldFolder::~HeldFolder() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

void HeldFolder::flushFileSystem() const {
    if (::syncfs(descriptor_) != 0) throwSystemError(path_);
}

bool HeldFolder::isStillThere() const {
    struct stat held {};
    struct stat found {};
    return ::fstat(descriptor_, &held) == 0 && ::stat(path_.c_str(), &found) == 0 &&
           held.st_dev == found.st_dev && held.st_ino == found.st_ino;
}

}  // namespace ReelCore
