#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/HeldCard.h"
#include "ReelCore/Platform/SystemError.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace ReelCore {

namespace {

std::string firstLine(const URL& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

std::string numbers(dev_t device) {
    return fmt::format("{}:{}", major(device), minor(device));
}

Medium mediumBelow(const URL& path) {
    struct stat facts {};
    if (::stat(path.c_str(), &facts) != 0) throwSystemError(path);
    return Medium::of(facts.st_dev);
}

int hold(const URL& path) {
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) throwSystemError(path);
    return descriptor;
}

}  // namespace

Medium Medium::of(const std::string& device, const URL& deviceTree) {
    std::error_code failure;
    const URL own = std::filesystem::canonical(deviceTree / "dev/block" / device, failure);
    if (failure) return {device, {}, {}};
    const URL disk = FileSystem::exists(own / "partition") ? own.parent_path() : own;
    return {device, firstLine(own / "size"), firstLine(disk / "diskseq")};
}

Medium Medium::of(std::uint64_t device) {
    return of(numbers(device));
}

HeldCard::HeldCard(const URL& path) : medium_(mediumBelow(path)), descriptor_(hold(path)) {}

HeldCard::HeldCard(int descriptor, Medium medium)
    : medium_(std::move(medium)), descriptor_(descriptor) {}

HeldCard::HeldCard(HeldCard&& other) noexcept
    : medium_(std::move(other.medium_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

HeldCard& HeldCard::operator=(HeldCard&& other) noexcept {
    std::swap(medium_, other.medium_);
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

HeldCard::~HeldCard() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

bool HeldCard::isAt(const URL& path) const {
    struct stat held {};
    struct stat found {};
    if (::fstat(descriptor_, &held) != 0 || ::stat(path.c_str(), &found) != 0) return false;
    return held.st_dev == found.st_dev && held.st_ino == found.st_ino &&
           Medium::of(found.st_dev) == medium_;
}

}  // namespace ReelCore
