#include "Support/LoopDevice.h"

#include "ReelCore/Platform/MountTable.h"
#include "Support/Tool.h"

#include <filesystem>

#include <unistd.h>

namespace TestSupport {

using ReelCore::URL;

LoopDevice::LoopDevice(const FolderTree& content, std::int64_t mebibytes, Writing writing) {
    writeTree(folder_.path() / "content", content);
    writeFile(image(), "");
    std::filesystem::resize_file(image(), static_cast<std::uintmax_t>(mebibytes) << 20U);
    // Nothing is left for the kernel to write later on its own account.
    outputOf("mkfs.ext4", {"-q", "-E", "lazy_itable_init=0,lazy_journal_init=0", "-d",
                           folder_.path() / "content", image().native()});
    // The kernel then drops what partitions a disk before it has left on the node.
    std::vector<std::string> arguments{"--find", "--show", "--partscan", image().native()};
    if (writing == Writing::refused) arguments.emplace_back("--read-only");
    std::string node = outputOf("losetup", arguments);
    node.erase(node.find('\n'));
    node_ = node;
}

LoopDevice::~LoopDevice() {
    for (const URL& place : mountPoints()) runTool("umount", {"-l", place.native()});
    runTool("losetup", {"-d", node_.native()});
}

void LoopDevice::mountAt(const URL& mountPoint, const std::string& options) const {
    std::filesystem::create_directories(mountPoint);
    outputOf("mount", {"-o", options, node_.native(), mountPoint.native()});
}

std::vector<URL> LoopDevice::mountPoints() const {
    std::vector<URL> places;
    for (const ReelCore::Mount& mount : ReelCore::mountTable()) {
        if (mount.source == node_) places.push_back(mount.mountPoint);
    }
    return places;
}

std::string LoopDevice::checksum() const {
    ::sync();
    return outputOf("sha256sum", {image().native()});
}

}  // namespace TestSupport
