#include "Support/LoopMount.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/Tool.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace TestSupport {

namespace {

using ReelCore::URL;

class Descriptor {
public:
    Descriptor(const URL& path, int flags) : number_(::open(path.c_str(), flags | O_CLOEXEC)) {
        if (number_ < 0) ReelCore::throwSystemError(path);
    }
    ~Descriptor() { ::close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return number_; }

private:
    int number_;
};

/// Where the bytes that stand in a file around `at` are found in the image: for a file system that
/// does not tell. They must be there once only.
std::int64_t offsetInImage(const URL& image, const URL& file, std::int64_t at) {
    constexpr std::size_t length = 64;
    const std::string content = readFile(file);
    const std::string device = readFile(image);
    const auto begin = std::min(static_cast<std::size_t>(at), content.size() - length);
    const std::string wanted = content.substr(begin, length);
    const auto found = device.find(wanted);
    if (found == std::string::npos || device.find(wanted, found + 1) != std::string::npos) {
        throw std::runtime_error("not once in the image: " + file.native());
    }
    return static_cast<std::int64_t>(found - begin) + at;
}

/// Where a file's byte stands on the device, with everything written there before.
std::int64_t deviceOffset(const URL& image, const URL& file, std::int64_t at) {
    const Descriptor open(file, O_RDONLY);
    if (::fsync(open.number()) != 0) ReelCore::throwSystemError(file);
    if (::syncfs(open.number()) != 0) ReelCore::throwSystemError(file);
    alignas(fiemap) std::array<std::byte, sizeof(fiemap) + sizeof(fiemap_extent)> memory{};
    auto* map = reinterpret_cast<fiemap*>(memory.data());
    map->fm_start = static_cast<std::uint64_t>(at);
    map->fm_length = 1;
    map->fm_flags = FIEMAP_FLAG_SYNC;
    map->fm_extent_count = 1;
    if (::ioctl(open.number(), FS_IOC_FIEMAP, map) != 0) return offsetInImage(image, file, at);
    if (map->fm_mapped_extents != 1) throw std::runtime_error("no extent: " + file.native());
    const fiemap_extent& extent = map->fm_extents[0];
    return static_cast<std::int64_t>(extent.fe_physical - extent.fe_logical) + at;
}

void unmount(const URL& mountPoint) {
    if (runTool("umount", {mountPoint.native()}).status == 0) return;
    runTool("umount", {"-l", mountPoint.native()});
}

}  // namespace

LoopMount::LoopMount(const std::string& fileSystem, std::int64_t mebibytes,
                     const std::string& options)
    : image_(folder_.path() / "image"), path_(folder_.path() / "drive"), mountPoints_{path_} {
    writeFile(image_, "");
    std::filesystem::resize_file(image_, static_cast<std::uintmax_t>(mebibytes) << 20U);
    std::filesystem::create_directory(path_);
    std::vector<std::string> making{"-q", image_.native()};
    if (fileSystem == "ntfs") making.insert(making.begin(), {"-F", "-f"});
    outputOf("mkfs." + fileSystem, making);
    outputOf("mount", {"-o", "loop," + options, image_.native(), path_.native()});
}

LoopMount::~LoopMount() {
    for (const URL& mountPoint : mountPoints_) unmount(mountPoint);
}

void LoopMount::makeReadOnly() {
    outputOf("mount", {"-o", "remount,ro", path_.native()});
}

void LoopMount::vanish() {
    outputOf("umount", {"-l", path_.native()});
}

void LoopMount::mountAgainAt(const URL& mountPoint) {
    std::string device = outputOf("findmnt", {"-n", "-o", "SOURCE", path_.native()});
    device.erase(device.find('\n'));
    std::filesystem::create_directories(mountPoint);
    outputOf("mount", {device, mountPoint.native()});
    mountPoints_.push_back(mountPoint);
}

void LoopMount::flipBitBelow(const URL& file, std::int64_t at) {
    const std::int64_t offset = deviceOffset(image_, file, at);
    const Descriptor device(image_, O_RDWR);
    std::byte byte{};
    if (::pread(device.number(), &byte, 1, offset) != 1) ReelCore::throwSystemError(image_);
    byte ^= std::byte{1};
    if (::pwrite(device.number(), &byte, 1, offset) != 1) ReelCore::throwSystemError(image_);
}

bool LoopMount::isAvailable() {
    return ::geteuid() == 0 && ::access("/dev/loop-control", R_OK | W_OK) == 0;
}

BindMount::BindMount(const URL& folder, const URL& mountPoint) : mountPoint_(mountPoint) {
    std::filesystem::create_directories(mountPoint);
    outputOf("mount", {"--bind", folder.native(), mountPoint.native()});
}

BindMount::~BindMount() {
    unmount(mountPoint_);
}

}  // namespace TestSupport
