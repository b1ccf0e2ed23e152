#include "keldo-diskutil/Volume.h"

#include "FakeDeviceTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace keldo_diskutil {

namespace {

using testing::ElementsAre;
using TestSupport::TemporaryFolder;

ReelCore::Mount mounted(const std::string& device, const ReelCore::URL& mountPoint,
                        const std::string& fileSystem = "ext4") {
    return {mountPoint, "/", device, "/dev/some", fileSystem, false};
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
                                         "/etc", "/opt", "/srv", "/root", "/nix/store",
                                         "/var/lib/docker", "/home/dit", "/opt/tools"));

class VolumeBesideACard : public VolumeToErase, public testing::WithParamInterface<const char*> {};

TEST_P(VolumeBesideACard, IsTaken) {
    const std::string device = deviceOfFile(place.path());
    tree.addPartition("sdb", "sdb3", device);
    machine.mounts.push_back(mounted("8:17", GetParam()));
    machine.mounts.push_back(mounted(device, place.path()));

    EXPECT_EQ(refusal(), "");
}

INSTANTIATE_TEST_SUITE_P(Folders, VolumeBesideACard,
                         testing::Values("/media/dit/A001", "/run/media/dit/A001", "/mnt", "/mnt/a",
                                         "/variable", "/homes"));

TEST_F(VolumeToErase, DeviceTreeThatCanNotBeRead_IsARefusal) {
    std::filesystem::create_directory_symlink("/no/such/place", tree.path() / "dev/block/8:32");
    machine.mounts.push_back(mounted("8:32", place.path()));

    EXPECT_THAT(refusal(), testing::StartsWith("Nothing was erased: "));
    EXPECT_THAT(refusal(), testing::HasSubstr("No such file or directory"));
}

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

class VolumeOfACard : public VolumeToErase, public testing::WithParamInterface<const char*> {};

TEST_P(VolumeOfACard, IsTaken) {
    const std::string device = deviceOfFile(place.path());
    tree.addDisk("sdc", device);
    machine.mounts.push_back(mounted(device, place.path(), GetParam()));

    EXPECT_EQ(volumeToErase(place.path(), machine).fileSystem, GetParam());
}

INSTANTIATE_TEST_SUITE_P(FileSystems, VolumeOfACard,
                         testing::Values("exfat", "vfat", "msdos", "ntfs", "ntfs3", "udf", "hfs",
                                         "hfsplus", "apfs", "ext2", "ext3", "ext4", "xfs"));

class VolumeOfNoCard : public VolumeToErase, public testing::WithParamInterface<const char*> {};

TEST_P(VolumeOfNoCard, IsRefusedByItsName) {
    const std::string device = deviceOfFile(place.path());
    tree.addDisk("sdc", device);
    machine.mounts.push_back(mounted(device, place.path(), GetParam()));

    EXPECT_EQ(refusal(), "Nothing was erased: " + place.path().native() + " has the file system " +
                             GetParam() +
                             ", which cameras, recorders and shuttle drives do not use. If it is "
                             "to go all the same, erase it with a disk program.");
}

INSTANTIATE_TEST_SUITE_P(FileSystems, VolumeOfNoCard,
                         testing::Values("btrfs", "squashfs", "iso9660", "erofs", "f2fs", "ext5",
                                         "EXFAT", "fuse", "fuseblkx"));

class VolumeServedByAProgram : public VolumeToErase,
                               public testing::WithParamInterface<const char*> {};

TEST_P(VolumeServedByAProgram, IsLeftToTheDiskServiceToName) {
    const std::string device = deviceOfFile(place.path());
    tree.addDisk("sdc", device);
    machine.mounts.push_back(mounted(device, place.path(), GetParam()));

    EXPECT_EQ(volumeToErase(place.path(), machine).fileSystem, std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(FileSystems, VolumeServedByAProgram,
                         testing::Values("fuseblk", "fuseblk.exfat"));

TEST_F(VolumeToErase, DiskOfARootOnSeveralDisks_IsRefused) {
    tree.addDisk("sdc", "8:32");
    tree.addSharedFileSystem("0c1f", {"sda1", "sdb1"});
    machine.mounts.push_back(mounted("8:18", place.path()));

    EXPECT_EQ(refusal(), systemDiskRefusal("/dev/sdb"));
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

    EXPECT_EQ(refusal(), "Nothing was erased: the table of mounted volumes can't be read.");
}

/// A computer with three disks; the card is mounted at /media/card.
class SystemDisks : public testing::Test {
protected:
    SystemDisks() {
        tree.addDisk("sda", "8:0");
        tree.addDisk("sdb", "8:16");
        tree.addDisk("sdc", "8:32");
    }

    std::set<std::string> disks(const std::vector<ReelCore::Mount>& mounts,
                                const std::string& swaps = "",
                                const ReelCore::URL& card = "/media/card") const {
        return systemDisks({mounts, swaps, DeviceTree(tree.path())}, card);
    }

    FakeDeviceTree tree;
    const ReelCore::Mount overlay = mounted("0:30", "/");
};

TEST_F(SystemDisks, SwapFile_MakesItsDiskOneOfTheSystems) {
    EXPECT_THAT(disks({mounted("8:0", "/"), mounted("8:16", "/mnt/scratch")},
                      "Filename\tType\tSize\tUsed\tPriority\n"
                      "/mnt/scratch/swapfile    file\t1024\t0\t-2\n"),
                ElementsAre("8:0", "8:16"));
}

TEST_F(SystemDisks, SwapFileWithABlankInItsName_IsFound) {
    EXPECT_THAT(disks({mounted("8:0", "/"), mounted("8:16", "/mnt/my disk")},
                      "/mnt/my\\040disk/swap\\134file file\t1024\t0\t-2\n"),
                ElementsAre("8:0", "8:16"));
}

TEST_F(SystemDisks, RootOnSeveralDisks_MakesThemAllTheSystems) {
    tree.addSharedFileSystem("0c1f", {"sda", "sdb"});

    EXPECT_THAT(disks({mounted("8:0", "/")}), ElementsAre("8:0", "8:16"));
}

TEST_F(SystemDisks, SwapFileOnSeveralDisks_MakesThemAllTheSystems) {
    tree.addSharedFileSystem("0c1f", {"sdb", "sdc"});

    EXPECT_THAT(disks({mounted("8:0", "/"), mounted("8:16", "/mnt/scratch")},
                      "/mnt/scratch/swapfile file\t1024\t0\t-2\n"),
                ElementsAre("8:0", "8:16", "8:32"));
}

TEST_F(SystemDisks, DataDisk_IsNone) {
    EXPECT_THAT(disks({mounted("8:0", "/"), mounted("8:16", "/mnt/scratch")}), ElementsAre("8:0"));
}

TEST_F(SystemDisks, RootThatLeadsToNoDisk_MakesEveryDiskMountedElsewhereTheSystems) {
    EXPECT_THAT(disks({overlay, mounted("8:0", "/cdrom"), mounted("8:16", "/media/card"),
                       mounted("8:32", "/media/drive")}),
                ElementsAre("8:0"));
}

TEST_F(SystemDisks, NoDiskKnown_IsARefusal) {
    EXPECT_THROW(disks({overlay, mounted("8:16", "/media/card")}), Refusal);
    EXPECT_THROW(disks({overlay, mounted("8:16", "/data")}, "", "/data"), Refusal);
}

TEST_F(SystemDisks, CardMountedInAHomeFolder_IsNone) {
    EXPECT_THAT(
        disks({mounted("8:0", "/"), mounted("8:16", "/home/dit/card")}, "", "/home/dit/card"),
        ElementsAre("8:0"));
}

TEST_F(SystemDisks, VolumeThatIsASystemFolder_CountsAlsoWhereItIsTheOneToErase) {
    EXPECT_THAT(disks({mounted("8:0", "/"), mounted("8:16", "/opt")}, "", "/opt"),
                ElementsAre("8:0", "8:16"));
}

TEST_F(SystemDisks, DeviceWithoutNumbers_IsLeftOut) {
    TestSupport::writeFile(tree.path() / "devices/sdb/dev", "");

    EXPECT_THAT(disks({mounted("8:0", "/"), mounted("8:16", "/usr")}), ElementsAre("8:0"));
}

}  // namespace

}  // namespace keldo_diskutil
