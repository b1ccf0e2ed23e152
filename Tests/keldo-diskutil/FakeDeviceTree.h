#pragma once

#include "Support/FolderTree.h"

#include <filesystem>
#include <string>
#include <vector>

namespace keldo_diskutil {

/// A device tree as the kernel lays it out, for disks that a test machine has not.
class FakeDeviceTree {
public:
    const ReelCore::URL& path() const { return folder_.path(); }

    void addDisk(const std::string& name, const std::string& device,
                 const std::vector<std::string>& slaves = {}) {
        add("devices/" + name, name, device);
        for (const std::string& slave : slaves) {
            const auto link = path() / "devices" / name / "slaves" / slave;
            std::filesystem::create_directories(link.parent_path());
            std::filesystem::create_directory_symlink(
                std::filesystem::canonical(path() / "class" / slave), link);
        }
    }

    void addPartition(const std::string& disk, const std::string& name, const std::string& device) {
        add("devices/" + disk + "/" + name, name, device);
        TestSupport::writeFile(path() / "devices" / disk / name / "partition", "1\n");
    }

    /// As btrfs shows itself; devices by their names.
    void addSharedFileSystem(const std::string& uuid, const std::vector<std::string>& devices) {
        std::filesystem::create_directories(path() / "fs/btrfs" / uuid / "devices");
        for (const std::string& device : devices) {
            std::filesystem::create_directory_symlink(
                std::filesystem::canonical(path() / "class" / device),
                path() / "fs/btrfs" / uuid / "devices" / device);
        }
    }

private:
    void add(const std::string& place, const std::string& name, const std::string& device) {
        TestSupport::writeTree(path() / place, {{"dev", device + "\n"},
                                                {"uevent", "DEVNAME=" + name + "\n"},
                                                {"ro", "0\n"},
                                                {"size", "4096\n"},
                                                {"diskseq", "7\n"}});
        link(place, "dev/block/" + device);
        link(place, "class/" + name);
    }

    void link(const std::string& place, const std::string& from) {
        std::filesystem::create_directories((path() / from).parent_path());
        std::filesystem::create_directory_symlink(path() / place, path() / from);
    }

    TestSupport::TemporaryFolder folder_;
};

}  // namespace keldo_diskutil
