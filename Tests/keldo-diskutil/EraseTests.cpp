#include "ErasableCard.h"
#include "Support/SystemServices.h"
#include "Support/Tool.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace keldo_diskutil {

namespace {

using ReelCore::URL;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using TestSupport::FolderTree;
using TestSupport::LoopDevice;
using TestSupport::outputOf;
using TestSupport::readTree;
using TestSupport::SystemServices;
using TestSupport::TemporaryFolder;

using Programs = decltype(SystemServices::Setup::programs);

/// Lets the fuse driver stand in for a kernel that knows exFAT.
const Programs exFATDriver{{"mount.exfat", "exec /usr/sbin/mount.exfat-fuse \"$@\""}};

std::string factOf(const LoopDevice& device, const std::string& name) {
    std::string value =
        outputOf("blkid", {"-p", "-o", "value", "-s", name, device.node().native()});
    return value.substr(0, value.find('\n'));
}

class Erase : public testing::Test {
protected:
    void SetUp() override {
        const std::string reason = SystemServices::missing();
        if (!reason.empty()) GTEST_SKIP() << reason;
    }

    URL mountPoint() const { return folder_.path() / "card"; }

    /// A card of its own in the running services, mounted at mountPoint().
    std::unique_ptr<LoopDevice> insertCard(std::int64_t mebibytes = 16) const {
        auto card = std::make_unique<LoopDevice>(cardFiles(), mebibytes);
        card->mountAt(mountPoint());
        SystemServices::settle();
        return card;
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Erase, ExFATWithoutADriver_IsErasedAndSaysThatItStaysUnmounted) {
    if (TestSupport::readFile("/proc/filesystems").find("\texfat\n") != std::string::npos) {
        GTEST_SKIP() << "this kernel can mount exFAT";
    }
    const SystemServices services({.programs = {{"mount.exfat", std::nullopt}}});
    const auto card = insertCard();
    ASSERT_EQ(readTree(mountPoint()), cardFiles());

    const std::string said = erase(mountPoint(), "A001");

    EXPECT_EQ(said, card->node().native() +
                        " is erased as ExFAT, named \"A001\".\n"
                        "The card is erased. This computer can't mount ExFAT, so it stays "
                        "unmounted.\n");
    EXPECT_EQ(factOf(*card, "TYPE"), "exfat");
    EXPECT_EQ(factOf(*card, "LABEL"), "A001");
    EXPECT_THAT(card->mountPoints(), IsEmpty());
    EXPECT_THAT(readTree(mountPoint()), IsEmpty());
}

TEST_F(Erase, ExFATWithADriver_IsMountedAgainEmptyAndWritable) {
    if (!TestSupport::hasTool("mount.exfat-fuse")) GTEST_SKIP() << "needs exfat-fuse";
    const SystemServices services({.programs = exFATDriver});
    const auto card = insertCard();

    const std::string said = erase(mountPoint(), "A002");

    ASSERT_EQ(card->mountPoints().size(), 1U);
    const URL place = card->mountPoints().front();
    EXPECT_EQ(said, card->node().native() +
                        " is erased as ExFAT, named \"A002\".\nIt is mounted at " + place.native() +
                        ".\n");
    EXPECT_EQ(place.filename(), "A002");
    EXPECT_THAT(readTree(place), IsEmpty());
    TestSupport::writeFile(place / "C0001.MP4", "new take");
    EXPECT_EQ(readTree(place), (FolderTree{{"C0001.MP4", "new take"}}));
}

TEST_F(Erase, MountedExFATCard_CanBeErasedOnceMore) {
    if (!TestSupport::hasTool("mount.exfat-fuse")) GTEST_SKIP() << "needs exfat-fuse";
    const SystemServices services({.programs = exFATDriver});
    const auto card = insertCard();
    erase(mountPoint(), "FIRST");
    ASSERT_EQ(card->mountPoints().size(), 1U);
    const URL first = card->mountPoints().front();
    TestSupport::writeFile(first / "C0001.MP4", "take");

    erase(first, "SECOND");

    ASSERT_EQ(card->mountPoints().size(), 1U);
    EXPECT_EQ(card->mountPoints().front().filename(), "SECOND");
    EXPECT_THAT(readTree(card->mountPoints().front()), IsEmpty());
}

TEST_F(Erase, CardThatWasHandedOver_IsLetGoAndErased) {
    const SystemServices services;
    const auto card = insertCard();
    ReelCore::HeldCard held(mountPoint());

    const std::string said = erase(mountPoint(), "A001", FileSystem::fat32, std::move(held));

    EXPECT_THAT(said, StartsWith(card->node().native() + " is erased as MS-DOS FAT32"));
    EXPECT_EQ(factOf(*card, "TYPE"), "vfat");
}

TEST_F(Erase, FAT32_IsMadeWithALabelInCapitals) {
    const SystemServices services;
    const auto card = insertCard(600);

    const std::string said = erase(mountPoint(), "a001", FileSystem::fat32);

    EXPECT_THAT(said, StartsWith(card->node().native() +
                                 " is erased as MS-DOS FAT32, named \"A001\".\n"
                                 "The name \"a001\" does not fit MS-DOS FAT32: it became "
                                 "\"A001\".\n"));
    EXPECT_EQ(factOf(*card, "TYPE"), "vfat");
    EXPECT_EQ(factOf(*card, "VERSION"), "FAT32");
    EXPECT_EQ(factOf(*card, "LABEL"), "A001");
}

TEST_F(Erase, FAT32OnATinyCard_SaysWhatItBecame) {
    const SystemServices services;
    const auto card = insertCard(32);

    const std::string said = erase(mountPoint(), "A001", FileSystem::fat32);

    EXPECT_EQ(factOf(*card, "VERSION"), "FAT16");
    EXPECT_THAT(said, HasSubstr("\nIt is too small for FAT32 and became FAT16.\n"));
}

TEST_F(Erase, LongReelName_IsCutAndBothNamesAreTold) {
    const SystemServices services;
    const auto card = insertCard();

    const std::string said = erase(mountPoint(), "A001_C003_1121XK_2026-11-21");

    EXPECT_THAT(said, HasSubstr("\nThe name \"A001_C003_1121XK_2026-11-21\" does not fit ExFAT: it "
                                "became \"A001_C003_1\".\n"));
    EXPECT_EQ(factOf(*card, "LABEL"), "A001_C003_1");
}

TEST_F(Erase, NameBeyondASCII_IsKeptOnExFAT) {
    const SystemServices services;
    const auto card = insertCard();

    erase(mountPoint(), "Zoë 🎬");

    EXPECT_EQ(outputOf("blkid", {"-p", "-o", "udev", card->node().native()})
                      .find("ID_FS_LABEL_ENC=Zoë\\x20🎬\n") != std::string::npos,
              true);
}

TEST_F(Erase, NameBeyondASCIIWhereTheServiceHasNoUnicode_IsErasedUnderAPlainName) {
    const SystemServices services({.locale = "C"});
    const auto card = insertCard();

    const std::string said = erase(mountPoint(), "Zoë 1");

    EXPECT_EQ(factOf(*card, "TYPE"), "exfat");
    EXPECT_EQ(factOf(*card, "LABEL"), "Zo_ 1");
    EXPECT_THAT(said, HasSubstr("\nThe name \"Zoë 1\" does not fit ExFAT: it became \"Zo_ 1\".\n"));
}

/// Names that a file system, a command line or a person's terminal could stumble over.
const std::vector<std::string> oddNames{"",
                                        "   ",
                                        "-n",
                                        "--help",
                                        "$(id)",
                                        "o'clock \"x\"",
                                        "*?.,;:/\\|+=<>[]",
                                        "\x01\x7F\n\t",
                                        "\xFF\xFE",
                                        "ÄÖÜäöüßéèêàç",
                                        "𝄞𝄞𝄞𝄞𝄞𝄞",
                                        "👨‍👩‍👧‍👦👨‍👩‍👧‍👦",
                                        "NO NAME",
                                        " lead",
                                        ".",
                                        "..",
                                        "%s`~^&{}()@!#"};

TEST_F(Erase, OddNames_GoThroughOnExFAT) {
    const SystemServices services;
    for (const std::string& name : oddNames) {
        SCOPED_TRACE(name);
        const auto card = insertCard();

        EXPECT_NO_THROW(erase(mountPoint(), name));

        EXPECT_EQ(factOf(*card, "TYPE"), "exfat");
    }
}

TEST_F(Erase, OddNames_GoThroughOnFAT32) {
    const SystemServices services;
    for (const std::string& name : oddNames) {
        SCOPED_TRACE(name);
        const auto card = insertCard(32);

        EXPECT_NO_THROW(erase(mountPoint(), name, FileSystem::fat32));

        EXPECT_EQ(factOf(*card, "TYPE"), "vfat");
    }
}

TEST_F(Erase, MakingTheFileSystemFails_SaysThatTheStateIsUnknown) {
    const SystemServices services(
        {.programs = {{"mkfs.exfat", "echo the card gave up >&2\nexit 1\n"}}});
    const auto card = insertCard();

    const std::string said = failureOf(mountPoint());

    EXPECT_THAT(said, StartsWith("The erase failed. The state of the volume is unknown; it can't "
                                 "be mounted again. ("));
    EXPECT_THAT(said, HasSubstr("the card gave up"));
    EXPECT_THAT(card->mountPoints(), IsEmpty());
}

TEST_F(Erase, MountingTheNewVolumeFails_SaysThatItIsErasedButNotWell) {
    const SystemServices services({.programs = {{"mount.exfat", "exit 32\n"}}});
    const auto card = insertCard();

    const std::string said = failureOf(mountPoint());

    EXPECT_THAT(said, HasSubstr("The volume is erased, but it can't be mounted again: "));
    EXPECT_THAT(said, HasSubstr("Check it before you use it."));
    EXPECT_EQ(factOf(*card, "TYPE"), "exfat");
}

}  // namespace

}  // namespace keldo_diskutil
