#include "ReelCore/Platform/MountTable.h"

#include "Support/FolderTree.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

Mount parsed(const std::string& line) {
    const auto table = parseMountTable(line);
    if (table.size() != 1) throw std::logic_error("not one mount: " + line);
    return table.front();
}

Mount at(const URL& mountPoint, const std::string& device) {
    Mount mount;
    mount.mountPoint = mountPoint;
    mount.device = device;
    return mount;
}

TEST(ParseMountTable, Line_GivesEveryField) {
    const Mount mount = parsed(
        "36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 shared:2 - ext3 /dev/root rw,errors=continue");

    EXPECT_EQ(mount.id, 36U);
    EXPECT_EQ(mount.device, "98:0");
    EXPECT_EQ(mount.root, "/mnt1");
    EXPECT_EQ(mount.mountPoint, "/mnt2");
    EXPECT_EQ(mount.fileSystem, "ext3");
    EXPECT_EQ(mount.source, "/dev/root");
    EXPECT_FALSE(mount.readOnly);
}

TEST(ParseMountTable, LineWithoutOptionalFields_IsRead) {
    EXPECT_EQ(parsed("36 35 8:1 / /a rw - vfat /dev/sda1 rw").fileSystem, "vfat");
}

TEST(ParseMountTable, EitherOptionList_CanMakeItReadOnly) {
    EXPECT_TRUE(parsed("36 35 8:1 / /a ro,nosuid - ext4 /dev/sda1 rw").readOnly);
    EXPECT_TRUE(parsed("36 35 8:1 / /a rw - ext4 /dev/sda1 noload,ro").readOnly);
    EXPECT_FALSE(parsed("36 35 8:1 / /a rw - ext4 /dev/sda1 rw,errors=remount-ro").readOnly);
}

TEST(ParseMountTable, EscapedBytes_AreGivenBack) {
    const Mount mount =
        parsed(R"(36 35 8:1 / /media/A\040001\011\012\134040 rw - ext4 /dev/a\040b rw)");

    EXPECT_EQ(mount.mountPoint, "/media/A 001\t\n\\040");
    EXPECT_EQ(mount.source, "/dev/a b");
}

TEST(ParseMountTable, BackslashThatIsNoEscape_Stands) {
    EXPECT_EQ(parsed(R"(36 35 8:1 / /a\9\04 rw - ext4 x rw)").mountPoint, R"(/a\9\04)");
}

TEST(ParseMountTable, EmptySource_MovesNoOtherField) {
    const Mount mount = parsed("36 35 0:40 / /a rw - tmpfs  ro,size=4k");

    EXPECT_EQ(mount.source, "");
    EXPECT_TRUE(mount.readOnly);
}

TEST(ParseMountTable, MountPointNamedLikeTheSeparator_IsNotTakenForIt) {
    EXPECT_EQ(parsed("36 35 8:1 / - rw - ext4 /dev/sda1 rw").mountPoint, "-");
}

TEST(ParseMountTable, LinesOfAnotherForm_ArePassedOver) {
    const auto table = parseMountTable(
        "\n36 35\n36 35 8:1 / /a rw ext4 /dev/sda1 rw\n36 35 8:1 / /b rw - ext4\n"
        "36 35 8:1 / /c rw - ext4 /dev/sda1 rw");

    ASSERT_EQ(table.size(), 1U);
    EXPECT_EQ(table[0].mountPoint, "/c");
}

TEST(ParseMountTable, NoText_IsAnEmptyTable) {
    EXPECT_TRUE(parseMountTable("").empty());
}

TEST(MountOf, DeepestMountPoint_Wins) {
    const std::vector<Mount> table{at("/media/card", "8:17"), at("/", "8:1"), at("/media", "8:2")};

    EXPECT_EQ(mountOf("/media/card/DCIM", table)->device, "8:17");
    EXPECT_EQ(mountOf("/media/card", table)->device, "8:17");
    EXPECT_EQ(mountOf("/media/other", table)->device, "8:2");
    EXPECT_EQ(mountOf("/etc", table)->device, "8:1");
    EXPECT_EQ(mountOf("/", table)->device, "8:1");
}

TEST(MountOf, SameMountPoint_TheLaterHidesTheEarlier) {
    const std::vector<Mount> table{at("/", "8:1"), at("/a", "8:2"), at("/a", "8:3")};

    EXPECT_EQ(mountOf("/a/x", table)->device, "8:3");
}

TEST(MountOf, NameThatOnlyBeginsAlike_IsAnotherFolder) {
    const std::vector<Mount> table{at("/", "8:1"), at("/media/card", "8:17")};

    EXPECT_EQ(mountOf("/media/card2/DCIM", table)->device, "8:1");
}

TEST(MountOf, EmptyTable_HasNone) {
    EXPECT_EQ(mountOf("/a", {}), std::nullopt);
}

TEST(HasPathPrefix, GoesByWholeParts) {
    EXPECT_TRUE(hasPathPrefix("/a/b", "/a"));
    EXPECT_TRUE(hasPathPrefix("/a", "/a"));
    EXPECT_TRUE(hasPathPrefix("/a", "/"));
    EXPECT_FALSE(hasPathPrefix("/ab", "/a"));
    EXPECT_FALSE(hasPathPrefix("/a", "/a/b"));
}

TEST(MountTable, RealDrive_IsListedWithItsDeviceUntilItIsUnmounted) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    URL place;
    {
        TestSupport::LoopMount drive("ext4", 8);
        place = drive.path();

        const auto mount = mountOf(place, mountTable());

        ASSERT_TRUE(mount);
        EXPECT_EQ(mount->mountPoint, place);
        EXPECT_EQ(mount->fileSystem, "ext4");
        EXPECT_EQ(mount->root, "/");
        EXPECT_FALSE(mount->readOnly);
        EXPECT_EQ(TestSupport::outputOf("mountpoint", {"-d", place.native()}),
                  mount->device + "\n");
        drive.makeReadOnly();
        EXPECT_TRUE(mountOf(place, mountTable())->readOnly);
    }
    EXPECT_NE(mountOf(place, mountTable())->mountPoint, place);
}

TEST(MountTable, NameWithBlanksAndBackslash_ComesBackWhole) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const TestSupport::TemporaryFolder folder;
    const URL place = folder.path() / "A 001\\040\t#1";
    const TestSupport::BindMount mount(folder.path(), place);

    EXPECT_EQ(mountOf(place, mountTable())->mountPoint, place);
}

}  // namespace

}  // namespace ReelCore
