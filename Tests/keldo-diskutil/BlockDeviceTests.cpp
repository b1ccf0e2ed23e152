#include "keldo-diskutil/BlockDevice.h"

#include "FakeDeviceTree.h"
#include "ReelCore/Platform/HeldCard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace keldo_diskutil {

namespace {

using ReelCore::Medium;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(DeviceTree, WholeDisk_IsItself) {
    FakeDeviceTree fake;
    fake.addDisk("sdb", "8:16");

    EXPECT_THAT(DeviceTree(fake.path()).wholeDisks("8:16"), ElementsAre("8:16"));
}

TEST(DeviceTree, Partition_LiesOnItsDisk) {
    FakeDeviceTree fake;
    fake.addDisk("sdb", "8:16");
    fake.addPartition("sdb", "sdb1", "8:17");

    EXPECT_THAT(DeviceTree(fake.path()).wholeDisks("8:17"), ElementsAre("8:16"));
}

TEST(DeviceTree, EncryptedVolumeOnMirroredPartitions_LiesOnBothDisks) {
    FakeDeviceTree fake;
    fake.addDisk("sda", "8:0");
    fake.addPartition("sda", "sda1", "8:1");
    fake.addDisk("sdb", "8:16");
    fake.addPartition("sdb", "sdb1", "8:17");
    fake.addDisk("md0", "9:0", {"sda1", "sdb1"});
    fake.addPartition("md0", "md0p1", "259:0");
    fake.addDisk("dm-0", "253:0", {"md0p1"});

    EXPECT_THAT(DeviceTree(fake.path()).wholeDisks("253:0"),
                ElementsAre("253:0", "8:0", "8:16", "9:0"));
}

TEST(DeviceTree, NoBlockDevice_HasNoDiskNoNodeAndNoLock) {
    const FakeDeviceTree fake;
    const DeviceTree devices(fake.path());

    EXPECT_THAT(devices.wholeDisks("0:21"), IsEmpty());
    EXPECT_EQ(devices.node("0:21"), std::nullopt);
    EXPECT_FALSE(devices.isReadOnly("0:21"));
}

TEST(DeviceTree, Node_IsTheKernelsNameBelowDev) {
    FakeDeviceTree fake;
    fake.addDisk("mmcblk0", "179:0");
    fake.addPartition("mmcblk0", "mmcblk0p1", "179:1");

    EXPECT_EQ(DeviceTree(fake.path()).node("179:1"), "/dev/mmcblk0p1");
}

TEST(DeviceTree, LockSwitch_IsSeen) {
    FakeDeviceTree fake;
    fake.addDisk("sdb", "8:16");
    TestSupport::writeFile(fake.path() / "devices/sdb/ro", "1\n");

    EXPECT_TRUE(DeviceTree(fake.path()).isReadOnly("8:16"));
}

TEST(MediumOfADevice, Partition_IsItsSizeAndItsDisksSequence) {
    FakeDeviceTree fake;
    fake.addDisk("sdb", "8:16");
    fake.addPartition("sdb", "sdb1", "8:17");
    TestSupport::writeFile(fake.path() / "devices/sdb/sdb1/size", "2048\n");

    EXPECT_EQ(Medium::of("8:17", fake.path()), (Medium{"8:17", "2048", "7"}));
}

TEST(MediumOfADevice, KernelThatCountsNoMedia_TellsThemBySizeAlone) {
    FakeDeviceTree fake;
    fake.addDisk("sdb", "8:16");
    std::filesystem::remove(fake.path() / "devices/sdb/diskseq");

    EXPECT_EQ(Medium::of("8:16", fake.path()), (Medium{"8:16", "4096", ""}));
}

TEST(MediumOfADevice, DriveThatIsGone_IsNoMedium) {
    FakeDeviceTree fake;
    fake.addDisk("sdb", "8:16");

    EXPECT_EQ(Medium::of("8:32", fake.path()), (Medium{"8:32", "", ""}));
}

TEST(DeviceTree, FileSystemOverSeveralDisks_IsKnownFromEachOfThem) {
    FakeDeviceTree fake;
    fake.addDisk("sda", "8:0");
    fake.addPartition("sda", "sda2", "8:2");
    fake.addDisk("sdb", "8:16");
    fake.addDisk("sdc", "8:32");
    fake.addSharedFileSystem("0c1f", {"sda2", "sdb"});
    fake.addSharedFileSystem("features", {});
    const DeviceTree devices(fake.path());

    EXPECT_THAT(devices.devicesOfSharedFileSystem("8:2"), ElementsAre("8:16", "8:2"));
    EXPECT_THAT(devices.devicesOfSharedFileSystem("8:16"), ElementsAre("8:16", "8:2"));
    EXPECT_THAT(devices.devicesOfSharedFileSystem("8:32"), IsEmpty());
}

TEST(DeviceOfNode, WhatIsNoBlockDevice_HasNone) {
    EXPECT_EQ(deviceOfNode("/dev/null"), std::nullopt);
    EXPECT_EQ(deviceOfNode("/no/such/node"), std::nullopt);
    EXPECT_EQ(deviceOfNode("tmpfs"), std::nullopt);
}

}  // namespace

}  // namespace keldo_diskutil
