#include "keldo-diskutil/BlockDevice.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"

#include <fstream>

#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace keldo_diskutil {

namespace {

using ReelCore::FileSystem;
using ReelCore::URL;

std::string numbers(dev_t device) {
    return fmt::format("{}:{}", major(device), minor(device));
}

std::string firstLine(const URL& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

}  // namespace

std::optional<URL> DeviceTree::node(const std::string& device) const {
    std::ifstream facts(folder(device) / "uevent");
    const std::string key = "DEVNAME=";
    for (std::string line; std::getline(facts, line);) {
        if (line.starts_with(key)) return URL("/dev") / line.substr(key.size());
    }
    return std::nullopt;
}

URL DeviceTree::disk(const std::string& device) const {
    const URL own = std::filesystem::canonical(folder(device));
    return FileSystem::exists(own / "partition") ? own.parent_path() : own;
}

std::set<std::string> DeviceTree::wholeDisks(const std::string& device) const {
    if (device.empty() || !FileSystem::exists(folder(device))) return {};
    const URL disk = this->disk(device);
    std::set<std::string> disks;
    if (const std::string own = firstLine(disk / "dev"); !own.empty()) disks.insert(own);
    if (!FileSystem::isFolder(disk / "slaves")) return disks;
    for (const std::string& slave : FileSystem::names(disk / "slaves")) {
        disks.merge(wholeDisks(firstLine(disk / "slaves" / slave / "dev")));
    }
    return disks;
}

bool DeviceTree::isReadOnly(const std::string& device) const {
    return firstLine(folder(device) / "ro") == "1";
}

std::set<std::string> DeviceTree::devicesOfSharedFileSystem(const std::string& device) const {
    const URL all = root_ / "fs/btrfs";
    if (!FileSystem::isFolder(all)) return {};
    for (const std::string& one : FileSystem::names(all)) {
        const URL links = all / one / "devices";
        if (!FileSystem::isFolder(links)) continue;
        std::set<std::string> devices;
        for (const std::string& name : FileSystem::names(links)) {
            devices.insert(firstLine(links / name / "dev"));
        }
        if (devices.contains(device)) return devices;
    }
    return {};
}

std::optional<std::string> deviceOfNode(const URL& node) {
    struct stat facts {};
    if (::stat(node.c_str(), &facts) != 0 || !S_ISBLK(facts.st_mode)) return std::nullopt;
    return numbers(facts.st_rdev);
}

std::string deviceOfFile(const URL& path) {
    struct stat facts {};
    if (::stat(path.c_str(), &facts) != 0) ReelCore::throwSystemError(path);
    return numbers(facts.st_dev);
}

}  // namespace keldo_diskutil
