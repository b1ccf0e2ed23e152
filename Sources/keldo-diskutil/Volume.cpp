#include "keldo-diskutil/Volume.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <regex>
#include <span>
#include <sstream>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

namespace keldo_diskutil {

namespace {

using ReelCore::Mount;
using ReelCore::URL;

constexpr std::array systemFolders{"/boot", "/efi",  "/etc", "/home", "/nix",
                                   "/opt",  "/root", "/srv", "/usr",  "/var"};
constexpr std::array foldersForCards{"/media", "/mnt", "/run/media"};

constexpr std::array<std::string_view, 13> fileSystemsOfCards{
    "apfs",  "exfat", "ext2",  "ext3", "ext4", "hfs", "hfsplus",
    "msdos", "ntfs",  "ntfs3", "udf",  "vfat", "xfs"};

bool isBelowAny(const URL& path, std::span<const char* const> folders) {
    return std::ranges::any_of(
        folders, [&](const char* folder) { return ReelCore::hasPathPrefix(path, folder); });
}

/// File systems over several devices have no number of their own; the source is one of theirs.
std::string deviceOf(const Mount& mount) {
    if (!mount.device.starts_with("0:")) return mount.device;
    return deviceOfNode(mount.source).value_or(mount.device);
}

std::set<std::string> disksOf(const Mount& mount, const DeviceTree& tree) {
    const std::string device = deviceOf(mount);
    std::set<std::string> disks = tree.wholeDisks(device);
    for (const std::string& other : tree.devicesOfSharedFileSystem(device)) {
        disks.merge(tree.wholeDisks(other));
    }
    return disks;
}

bool isServedByAProgram(const std::string& fileSystem) {
    return fileSystem == "fuseblk" || fileSystem.starts_with("fuseblk.");
}

/// /proc/swaps writes blanks, tabs, line feeds and backslashes as "\" and three octal digits.
std::string unescaped(const std::string& field) {
    static const std::regex escape(R"(\\([0-7]{3}))");
    std::string text;
    auto rest = field.begin();
    for (std::sregex_iterator match(field.begin(), field.end(), escape), none; match != none;
         ++match) {
        text.append(rest, (*match)[0].first);
        text += static_cast<char>(std::stoi((*match)[1], nullptr, 8));
        rest = (*match)[0].second;
    }
    return text.append(rest, field.end());
}

std::set<std::string> swapDisks(const Machine& machine) {
    std::set<std::string> disks;
    std::istringstream swaps(machine.swaps);
    for (std::string line; std::getline(swaps, line);) {
        const URL swap = unescaped(line.substr(0, line.find_first_of(" \t")));
        const auto mount = ReelCore::mountOf(swap, machine.mounts);
        if (const auto device = deviceOfNode(swap)) {
            disks.merge(machine.devices.wholeDisks(*device));
        } else if (mount) {
            disks.merge(disksOf(*mount, machine.devices));
        }
    }
    return disks;
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
    const auto system = systemDisks(machine, mount.mountPoint);
    for (const std::string& disk : disksOf(mount, machine.devices)) {
        if (!system.contains(disk)) continue;
        throw Refusal(fmt::format("{} is on the system disk {}, which this computer runs from.",
                                  mount.mountPoint.native(),
                                  machine.devices.node(disk).value_or(disk).native()));
    }
}

void refuseUnknownFileSystem(const Mount& mount) {
    if (isServedByAProgram(mount.fileSystem) || isOfACard(mount.fileSystem)) return;
    throw unknownFileSystem(mount.mountPoint, mount.fileSystem);
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

Volume checked(const URL& path, const Machine& machine) {
    if (machine.mounts.empty()) throw Refusal("the table of mounted volumes can't be read.");
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
    refuseUnknownFileSystem(mount);
    refuseWriteProtected(mount, machine.devices);
    refuseUnlessWholeAndAlone(mount, machine.mounts);
    if (isServedByAProgram(mount.fileSystem)) return {place, mount.device, *node, std::nullopt};
    return {place, mount.device, *node, mount.fileSystem};
}

}  // namespace

Machine Machine::current() {
    std::ifstream file("/proc/swaps");
    std::ostringstream swaps;
    swaps << file.rdbuf();
    return {ReelCore::mountTable(), swaps.str(), DeviceTree()};
}

bool isOfACard(const std::string& fileSystem) {
    return std::ranges::find(fileSystemsOfCards, fileSystem) != fileSystemsOfCards.end();
}

Refusal unknownFileSystem(const URL& mountPoint, const std::string& fileSystem) {
    return Refusal(fmt::format(
        "{} has {}, which cameras, recorders and shuttle drives do not use. If it is to go all the "
        "same, erase it with a disk program.",
        mountPoint.native(),
        fileSystem.empty() ? "a file system without a name" : "the file system " + fileSystem));
}

std::set<std::string> systemDisks(const Machine& machine, const URL& card) {
    const auto disksAt = [&](const auto& isWanted) {
        std::set<std::string> disks;
        for (const Mount& mount : machine.mounts) {
            if (isWanted(mount.mountPoint)) {
                disks.merge(disksOf(mount, machine.devices));
            }
        }
        return disks;
    };
    const auto root = disksAt([](const URL& place) { return place == "/"; });
    auto disks = disksAt([&](const URL& place) {
        const bool isFolder = std::ranges::find(systemFolders, place) != systemFolders.end();
        if (isFolder || place == card) return isFolder;
        if (root.empty()) return !isBelowAny(place, foldersForCards);
        return isBelowAny(place, systemFolders);
    });
    disks.insert(root.begin(), root.end());
    if (disks.empty()) {
        throw Refusal("it can't be told which disk this computer runs from.");
    }
    disks.merge(swapDisks(machine));
    return disks;
}

Volume volumeToErase(const URL& path, const Machine& machine) {
    try {
        return checked(path, machine);
    } catch (const ReelCore::SystemError& error) {
        throw Refusal(error.description() + ".");
    } catch (const std::filesystem::filesystem_error& error) {
        throw Refusal(fmt::format("{}: {}.", error.path1().native(), error.code().message()));
    }
}

}  // namespace keldo_diskutil
