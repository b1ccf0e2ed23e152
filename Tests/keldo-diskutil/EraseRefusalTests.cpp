#include "ErasableCard.h"
#include "ReelCore/Platform/MountTable.h"
#include "Support/LoopMount.h"
#include "Support/SystemServices.h"
#include "Support/Tool.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace keldo_diskutil {

namespace {

using ReelCore::URL;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using TestSupport::LoopDevice;
using TestSupport::outputOf;
using TestSupport::readTree;
using TestSupport::runTool;
using TestSupport::SystemServices;
using TestSupport::TemporaryFolder;

/// Where the bus can't be reached for one test: whatever is refused there was refused without it.
class BusOutOfReach {
public:
    BusOutOfReach() { ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/socket", 1); }
    ~BusOutOfReach() { ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }
    BusOutOfReach(const BusOutOfReach&) = delete;
    BusOutOfReach& operator=(const BusOutOfReach&) = delete;
};

class EraseRefusal : public testing::Test {
protected:
    void SetUp() override {
        const std::string reason = SystemServices::missing();
        if (!reason.empty()) GTEST_SKIP() << reason;
    }

    URL mountPoint() const { return folder_.path() / "card"; }
    URL elsewhere() const { return folder_.path() / "elsewhere"; }

    /// Asks for the erase and returns the refusal, having seen that nothing changed.
    std::string refusalOf(const LoopDevice& card, const URL& path,
                          FileSystem fileSystem = FileSystem::exFAT) const {
        const std::string before = card.checksum();
        const auto places = card.mountPoints();

        std::string said = failureOf(path, "A001", fileSystem);

        EXPECT_EQ(card.checksum(), before);
        EXPECT_EQ(card.mountPoints(), places);
        EXPECT_EQ(readTree(places.front()), cardFiles());
        return said;
    }

private:
    TemporaryFolder folder_;
};

std::string refusal(const std::string& reason) {
    return "Nothing was erased: " + reason + "\n";
}

TEST_F(EraseRefusal, WrongArguments_TellTheRightOnes) {
    const std::string tool =
        std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() /
        "libexec/keldobay/diskutil";
    const std::vector<std::vector<std::string>> wrong{
        {},
        {"eraseVolume"},
        {"eraseVolume", "ExFAT", "A001"},
        {"eraseVolume", "ExFAT", "A001", "/mnt", "more"},
        {"eraseDisk", "ExFAT", "A001", "/mnt"}};

    for (const auto& arguments : wrong) {
        const auto outcome = runTool(tool, arguments);

        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output,
                  refusal("the arguments are: eraseVolume <ExFAT | \"MS-DOS FAT32\"> <new name> "
                          "<mount point>."));
    }
}

TEST_F(EraseRefusal, PathThatIsMissing_SaysSo) {
    EXPECT_EQ(failureOf("/no/such/card"), refusal("/no/such/card: No such file or directory."));
}

TEST_F(EraseRefusal, FolderThatIsNoMountPoint_NamesTheVolumeItLiesOn) {
    const TemporaryFolder folder;
    const auto mount = ReelCore::mountOf(folder.path(), ReelCore::mountTable());

    EXPECT_EQ(failureOf(folder.path()),
              refusal(folder.path().native() +
                      " is not a mount point; it lies on the volume mounted at " +
                      mount->mountPoint.native() + "."));
}

TEST_F(EraseRefusal, FolderInsideTheCard_NamesTheCard) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint());
    const URL inside = mountPoint() / "PRIVATE";

    EXPECT_EQ(refusalOf(card, inside),
              refusal(inside.native() + " is not a mount point; it lies on the volume mounted at " +
                      mountPoint().native() + "."));
}

TEST_F(EraseRefusal, MemoryFileSystem_IsNoDisk) {
    const SystemServices services;
    std::filesystem::create_directories(mountPoint());
    outputOf("mount", {"-t", "tmpfs", "tmpfs", mountPoint().native()});
    TestSupport::writeTree(mountPoint(), cardFiles());

    EXPECT_EQ(failureOf(mountPoint()),
              refusal(mountPoint().native() + " is not on a disk of its own (file system "
                                              "tmpfs)."));
    EXPECT_EQ(readTree(mountPoint()), cardFiles());
    outputOf("umount", {mountPoint().native()});
}

TEST_F(EraseRefusal, SystemDisk_IsRefusedBeforeAnyoneIsAsked) {
    const BusOutOfReach noBus;
    const auto root = ReelCore::mountOf("/", ReelCore::mountTable());
    if (root->device.starts_with("0:")) GTEST_SKIP() << "the system runs from no disk here";

    EXPECT_THAT(failureOf("/"), StartsWith("Nothing was erased: / is on the system disk /dev/"));
}

TEST_F(EraseRefusal, DiskThatCarriesASystemFolder_IsRefusedBeforeAnyoneIsAsked) {
    const SystemServices services;
    const LoopDevice disk(cardFiles(), 16);
    disk.mountAt("/opt");
    const BusOutOfReach noBus;

    EXPECT_EQ(refusalOf(disk, "/opt"),
              refusal("/opt is on the system disk " + disk.node().native() +
                      ", which this computer runs from."));
    outputOf("umount", {"/opt"});
}

TEST_F(EraseRefusal, BusyCard_SaysThatAProgramStillUsesIt) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint());
    SystemServices::settle();
    const std::ifstream player(mountPoint() / "PRIVATE/M4ROOT/CLIP/C0001.MP4");

    EXPECT_EQ(refusalOf(card, mountPoint()),
              refusal("a program still uses " + mountPoint().native() +
                      ". Close what is open there and try again."));
}

TEST_F(EraseRefusal, FileSystemsOfAnotherSystem_CanNotBeMade) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint());

    for (const FileSystem fileSystem : {FileSystem::apfs, FileSystem::hfs}) {
        EXPECT_EQ(
            refusalOf(card, mountPoint(), fileSystem),
            refusal("this computer cannot make the file system " +
                    std::string(rawValue(fileSystem)) + "; it can make ExFAT and MS-DOS FAT32."));
    }
}

TEST_F(EraseRefusal, ToolThatIsMissing_NamesThePackage) {
    const SystemServices services(
        {.programs = {{"mkfs.exfat", std::nullopt}, {"mkfs.vfat", std::nullopt}}});
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint());
    SystemServices::settle();

    EXPECT_EQ(refusalOf(card, mountPoint()),
              refusal("mkfs.exfat is missing, which makes ExFAT. Install the package "
                      "exfatprogs."));
    EXPECT_EQ(refusalOf(card, mountPoint(), FileSystem::fat32),
              refusal("mkfs.vfat is missing, which makes MS-DOS FAT32. Install the package "
                      "dosfstools."));
}

TEST_F(EraseRefusal, CardMountedReadOnly_SaysSo) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint(), "ro");

    EXPECT_EQ(refusalOf(card, mountPoint()),
              refusal(mountPoint().native() + " is mounted read-only."));
}

TEST_F(EraseRefusal, PathThatIsNotUTF8_IsToldWithReplacements) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    const URL odd = mountPoint() / "A\xFF";
    card.mountAt(odd, "ro");

    EXPECT_EQ(refusalOf(card, odd),
              refusal(mountPoint().native() + "/A\uFFFD is mounted read-only."));
}

TEST_F(EraseRefusal, CardWithItsLockSet_SaysSo) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16, LoopDevice::Writing::refused);
    card.mountAt(mountPoint(), "ro");

    EXPECT_EQ(
        refusalOf(card, mountPoint()),
        refusal(mountPoint().native() + " is write-protected. Check the lock switch of the card."));
}

TEST_F(EraseRefusal, CardMountedTwice_NamesBothPlaces) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint());
    card.mountAt(elsewhere());

    EXPECT_EQ(refusalOf(card, mountPoint()),
              refusal(card.node().native() + " is mounted at more than one place: " +
                      mountPoint().native() + ", " + elsewhere().native() + "."));
}

TEST_F(EraseRefusal, OneFolderOfAVolume_IsNotTheVolume) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(elsewhere());
    std::filesystem::create_directories(mountPoint());
    outputOf("mount", {"--bind", elsewhere() / "PRIVATE", mountPoint().native()});
    outputOf("umount", {elsewhere().native()});
    const std::string before = card.checksum();

    EXPECT_EQ(failureOf(mountPoint()),
              refusal(mountPoint().native() + " shows only the folder /PRIVATE of its volume."));
    EXPECT_EQ(card.checksum(), before);
    EXPECT_THAT(card.mountPoints(), ElementsAre(mountPoint()));
}

TEST_F(EraseRefusal, VolumeMountedInsideTheCard_IsNamed) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint());
    const URL inside = mountPoint() / "PRIVATE/M4ROOT/SUB";
    std::filesystem::create_directories(inside);
    outputOf("mount", {"-t", "tmpfs", "tmpfs", inside.native()});

    EXPECT_EQ(refusalOf(card, mountPoint()),
              refusal("another volume is mounted inside it, at " + inside.native() + "."));
    outputOf("umount", {inside.native()});
}

TEST_F(EraseRefusal, HiddenCard_IsNotTakenForWhatHidesIt) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(elsewhere() / "card");
    outputOf("mount", {"-t", "tmpfs", "tmpfs", elsewhere().native()});
    std::filesystem::create_directories(elsewhere() / "card");
    const std::string before = card.checksum();

    EXPECT_EQ(failureOf(elsewhere() / "card"),
              refusal((elsewhere() / "card").native() +
                      " is not a mount point; it lies on the volume mounted at " +
                      elsewhere().native() + "."));
    EXPECT_EQ(card.checksum(), before);
    outputOf("umount", {elsewhere().native()});
}

TEST_F(EraseRefusal, DiskServiceOutOfReach_SaysSo) {
    const SystemServices services;
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint());
    const BusOutOfReach noBus;

    const std::string said = refusalOf(card, mountPoint());

    EXPECT_THAT(said,
                StartsWith("Nothing was erased: the disk service UDisks2 can't be reached ("));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1);
}

TEST_F(EraseRefusal, BusWithoutTheDiskService_SaysSo) {
    const SystemServices services({.diskService = {}});
    const LoopDevice card(cardFiles(), 16);
    card.mountAt(mountPoint());

    const std::string said = refusalOf(card, mountPoint());

    EXPECT_THAT(said,
                StartsWith("Nothing was erased: the disk service UDisks2 can't be reached ("));
    EXPECT_THAT(said, HasSubstr("org.freedesktop.UDisks2"));
}

}  // namespace

}  // namespace keldo_diskutil
