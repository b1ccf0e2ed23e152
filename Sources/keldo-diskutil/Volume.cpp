#include "keldo-diskutil/Volume.h"

#include "ReelCore/Platform/FileSystem.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

namespace keldo_diskutil {

namespace {

using ReelCore::Mount;
using ReelCore::URL;

constexpr std::array<std::string_view, 9> systemFolders{
    "/", "/boot", "/boot/efi", "/efi", "/usr", "/var", "/home", "/etc", "/opt"};

/// File systems over several devices have no number of their own; the source is one of theirs.
std::string deviceOf(const Mount& mount) {
    if (!mount.device.starts_with("0:")) return mount.device;
    return deviceOfNode(mount.source).value_or(mount.device);
}

URL resolved(const URL& path) {
    std::error_code failure;
    URL whole = std::filesystem::canonical(path, failure);
    if (failure) throw Refusal(fmt::format("{}: {}.", path.native(), failure.message()));
    return whole;
}

Mount mountAt(const URL& path, const std::vector<Mount>& table) {
    const auto mount = ReelCore::mountOf(path, table);
    if (!mount) throw Refusal(path.native() + " is not a mount point.");
    if (mount->mountPoint != path) {
        throw Refusal(fmt::format("{} is not a mount point; it lies on the volume mounted at {}.",
                                  path.native(), mount->mountPoint.native()));
    }
    return *mount;
}

void refuseUnlessWholeAndAlone(const Mount& mount, const std::vector<Mount>& table) {
    std::string places;
    std::size_t count = 0;
    for (const Mount& other : table) {
        if (other.device == mount.device) {
            places += (count++ == 0 ? "" : ", ") + other.mountPoint.native();
        } else if (other.mountPoint != mount.mountPoint &&
                   ReelCore::hasPathPrefix(other.mountPoint, mount.mountPoint)) {
            throw Refusal(fmt::format("another volume is mounted inside it, at {}.",
                                      other.mountPoint.native()));
        }
    }
    if (count > 1) {
        throw Refusal(
            fmt::format("{} is mounted at more than one place: {}.", mount.source, places));
    }
    if (mount.root != "/") {
        throw Refusal(fmt::format("{} shows only the folder {} of its volume.",
                                  mount.mountPoint.native(), mount.root.native()));
    }
}

void refuseSystemDisk(const Mount& mount, const Machine& machine) {
    const auto system = systemDisks(machine);
    for (const std::string& disk : machine.devices.wholeDisks(deviceOf(mount))) {
        if (!system.contains(disk)) continue;
        throw Refusal(fmt::format("{} is on the system disk {}, which this computer runs from.",
                                  mount.mountPoint.native(),
                                  machine.devices.node(disk).value_or(disk).native()));
    }
}

void refuseWriteProtected(const Mount& mount, const DeviceTree& devices) {
    if (devices.isReadOnly(mount.device)) {
        throw Refusal(fmt::format("{} is write-protected. Check the lock switch of the card.",
                                  mount.mountPoint.native()));
    }
    if (mount.readOnly) {
        throw Refusal(mount.mountPoint.native() + " is mounted read-only.");
    }
}

}  // namespace

Machine Machine::current() {
    std::ifstream file("/proc/swaps");
    std::ostringstream swaps;
    swaps << file.rdbuf();
    return {ReelCore::mountTable(), swaps.str(), DeviceTree()};
}

std::set<std::string> systemDisks(const Machine& machine) {
    std::set<std::string> disks;
    for (const Mount& mount : machine.mounts) {
        if (std::ranges::find(systemFolders, mount.mountPoint.native()) == systemFolders.end()) {
            continue;
        }
        disks.merge(machine.devices.wholeDisks(deviceOf(mount)));
    }
    std::istringstream swaps(machine.swaps);
    for (std::string line; std::getline(swaps, line);) {
        const URL swap = line.substr(0, line.find_first_of(" \t"));
        const auto mount = ReelCore::mountOf(swap, machine.mounts);
        const auto device = deviceOfNode(swap);
        if (device) {
            disks.merge(machine.devices.wholeDisks(*device));
        } else if (mount) {
            disks.merge(machine.devices.wholeDisks(deviceOf(*mount)));
        }
    }
    return disks;
}

Volume volumeToErase(const URL& path, const Machine& machine) {
    const URL place = resolved(path);
    const Mount mount = mountAt(place, machine.mounts);
    refuseSystemDisk(mount, machine);
    const auto node = machine.devices.node(mount.device);
    if (!node) {
        throw Refusal(fmt::format("{} is not on a disk of its own (file system {}).",
                                  place.native(), mount.fileSystem));
    }
    if (deviceOfFile(place) != mount.device) {
        throw Refusal(fmt::format("another volume hides the one mounted at {}.", place.native()));
    }
    refuseWriteProtected(mount, machine.devices);
    refuseUnlessWholeAndAlone(mount, machine.mounts);
    return {place, mount.device, *node};
}

}  // namespace keldo_diskutil
