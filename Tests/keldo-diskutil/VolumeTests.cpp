#include "keldo-diskutil/Volume.h"

#include "FakeDeviceTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace keldo_diskutil {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::TemporaryFolder;

ReelCore::Mount mounted(const std::string& device, const ReelCore::URL& mountPoint) {
    return {mountPoint, "/", device, "/dev/some", "ext4", false};
}

/// A computer that runs from sda1; sdb is a second disk with two partitions.
class VolumeToErase : public testing::Test {
protected:
    VolumeToErase() {
        tree.addDisk("sda", "8:0");
        tree.addPartition("sda", "sda1", "8:1");
        tree.addPartition("sda", "sda2", "8:2");
        tree.addDisk("sdb", "8:16");
        tree.addPartition("sdb", "sdb1", "8:17");
        tree.addPartition("sdb", "sdb2", "8:18");
        machine.mounts = {mounted("8:1", "/")};
    }

    std::string refusal() {
        try {
            volumeToErase(place.path(), machine);
        } catch (const Refusal& error) {
            return error.description();
        }
        return "";
    }

    std::string systemDiskRefusal(const std::string& node) const {
        return "Nothing was erased: " + place.path().native() + " is on the system disk " + node +
               ", which this computer runs from.";
    }

    TemporaryFolder place;
    FakeDeviceTree tree;
    Machine machine{{}, "Filename\tType\tSize\tUsed\tPriority\n", DeviceTree(tree.path())};
};

TEST_F(VolumeToErase, OtherPartitionOfTheSystemDisk_IsRefused) {
    machine.mounts.push_back(mounted("8:2", place.path()));

    EXPECT_EQ(refusal(), systemDiskRefusal("/dev/sda"));
}

class VolumeBesideASystemFolder : public VolumeToErase,
                                  public testing::WithParamInterface<const char*> {};

TEST_P(VolumeBesideASystemFolder, IsRefused) {
    machine.mounts.push_back(mounted("8:17", GetParam()));
    machine.mounts.push_back(mounted("8:18", place.path()));

    EXPECT_EQ(refusal(), systemDiskRefusal("/dev/sdb"));
}

INSTANTIATE_TEST_SUITE_P(Folders, VolumeBesideASystemFolder,
                         testing::Values("/boot", "/boot/efi", "/efi", "/usr", "/var", "/home",
                                         "/etc", "/opt"));

TEST_F(VolumeToErase, DiskBelowTheSystemsLogicalVolume_IsRefused) {
    tree.addDisk("dm-0", "253:0", {"sdb1"});
    machine.mounts = {mounted("253:0", "/"), mounted("8:18", place.path())};

    EXPECT_EQ(refusal(), systemDiskRefusal("/dev/sdb"));
}

TEST_F(VolumeToErase, LogicalVolumeOnTheSystemsDisk_IsRefused) {
    tree.addDisk("dm-0", "253:0", {"sda2"});
    machine.mounts.push_back(mounted("253:0", place.path()));

    EXPECT_EQ(refusal(), systemDiskRefusal("/dev/sda"));
}

TEST_F(VolumeToErase, OtherDisk_IsTaken) {
    const std::string device = deviceOfFile(place.path());
    tree.addDisk("sdc", device);
    machine.mounts.push_back(mounted(device, place.path()));

    const Volume volume = volumeToErase(place.path(), machine);

    EXPECT_EQ(volume.mountPoint, place.path());
    EXPECT_EQ(volume.device, device);
    EXPECT_EQ(volume.node, "/dev/sdc");
}

TEST_F(VolumeToErase, LinkToTheMountPoint_IsFollowed) {
    const std::string device = deviceOfFile(place.path());
    tree.addDisk("sdc", device);
    machine.mounts.push_back(mounted(device, place.path()));
    const TemporaryFolder folder;
    std::filesystem::create_directory_symlink(place.path(), folder.path() / "card");

    EXPECT_EQ(volumeToErase(folder.path() / "card", machine).mountPoint, place.path());
}

TEST_F(VolumeToErase, MountTableThatCanNotBeRead_IsRefused) {
    machine.mounts.clear();

    EXPECT_EQ(refusal(), "Nothing was erased: " + place.path().native() + " is not a mount point.");
}

TEST(SystemDisks, SwapFile_MakesItsDiskOneOfTheSystems) {
    FakeDeviceTree tree;
    tree.addDisk("sdb", "8:16");
    const Machine machine{{mounted("8:16", "/mnt/scratch")},
                          "Filename\tType\tSize\tUsed\tPriority\n"
                          "/mnt/scratch/swapfile    file\t1024\t0\t-2\n",
                          DeviceTree(tree.path())};

    EXPECT_THAT(systemDisks(machine), ElementsAre("8:16"));
}

TEST(SystemDisks, DataDisk_IsNone) {
    FakeDeviceTree tree;
    tree.addDisk("sdb", "8:16");
    const Machine machine{{mounted("8:16", "/mnt/scratch")}, "", DeviceTree(tree.path())};

    EXPECT_THAT(systemDisks(machine), IsEmpty());
}

}  // namespace

}  // namespace keldo_diskutil
