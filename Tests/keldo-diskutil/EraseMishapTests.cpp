#include "ErasableCard.h"
#include "Support/SystemServices.h"
#include "Support/Tool.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace keldo_diskutil {

namespace {

using ReelCore::URL;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using TestSupport::LoopDevice;
using TestSupport::outputOf;
using TestSupport::readFile;
using TestSupport::readTree;
using TestSupport::SystemServices;
using TestSupport::TemporaryFolder;

const std::string failed = "org.freedesktop.UDisks2.Error.Failed";
const std::string busy = "org.freedesktop.UDisks2.Error.DeviceBusy";
const std::string alreadyMounted = "org.freedesktop.UDisks2.Error.AlreadyMounted";
const std::string dismissed = "org.freedesktop.UDisks2.Error.NotAuthorizedDismissed";
const std::string forbidden = "org.freedesktop.UDisks2.Error.OptionNotPermitted";

/// What goes wrong between the calls of an erase.
class EraseMishap : public testing::Test {
protected:
    void SetUp() override {
        const std::string reason = SystemServices::missing();
        if (!reason.empty()) GTEST_SKIP() << reason;
    }

    /// A card in the running services, whose device stands in the file node().
    std::unique_ptr<LoopDevice> insertCard() const {
        auto card = std::make_unique<LoopDevice>(cardFiles(), 16);
        TestSupport::writeFile(node(), card->node().native());
        card->mountAt(mountPoint());
        SystemServices::settle();
        return card;
    }

    URL mountPoint() const { return folder_.path() / "card"; }

    /// Services with a disk service that fails as told ("Method=error"), the card mounted.
    std::unique_ptr<SystemServices> servicesThatAnswer(const std::vector<std::string>& errors) {
        card_ = std::make_unique<LoopDevice>(cardFiles(), 16);
        TestSupport::writeFile(log(), "");
        std::vector<std::string> command{KELDO_FAKEDISKSERVICE, log().native(), name(), "/media/A"};
        command.insert(command.end(), errors.begin(), errors.end());
        SystemServices::Setup setup;
        setup.diskService = command;
        auto services = std::make_unique<SystemServices>(setup);
        card_->mountAt(mountPoint());
        return services;
    }

    /// The card of that disk service.
    const LoopDevice& card() const { return *card_; }
    std::string name() const { return card_->node().native(); }

    /// The calls that were to change something, a line each.
    std::string calls() const { return readFile(log()); }

    /// An image of another card, and the lines of a script that put it into the reader.
    URL otherCard() const {
        URL image = folder_.path() / "other";
        TestSupport::writeFile(image, "");
        std::filesystem::resize_file(image, 16U << 20U);
        outputOf("mkfs.ext4", {"-q", image.native()});
        return image;
    }
    std::string swapScript(const URL& image) const {
        // udev may still look at the card, which keeps it in its reader for a moment.
        return "node=$(cat " + node().native() + ")\nlosetup -d $node\n" +
               "for try in $(seq 200); do losetup $node " + image.native() +
               " && break; sleep 0.05; done\n";
    }

    /// Lines of a script that put the other disk in the place where the card is mounted.
    std::string replaceScript(const LoopDevice& other) const {
        return "umount -l " + mountPoint().native() + " && mount " + other.node().native() + " " +
               mountPoint().native();
    }

    /// A file that names the device of the card in the reader.
    URL node() const { return folder_.path() / "node"; }

private:
    URL log() const { return folder_.path() / "calls"; }

    TemporaryFolder folder_;
    std::unique_ptr<LoopDevice> card_;
};

TEST_F(EraseMishap, CardChangedOnceItIsUnmounted_NeitherIsTouched) {
    const URL other = otherCard();
    const std::string before = readFile(other);
    const SystemServices services(
        {.programs = {{"umount.ext4", "umount -i \"$1\"\n" + swapScript(other)}}});
    const auto card = insertCard();

    const std::string said = failureOf(mountPoint());

    EXPECT_EQ(said,
              "Nothing was erased: the card was taken out or changed before its erase began. What "
              "is in the reader now was left alone.\n");
    EXPECT_EQ(outputOf("losetup", {"-n", "-O", "BACK-FILE", card->node().native()}),
              other.native() + "\n");
    outputOf("losetup", {"-d", card->node().native()});
    EXPECT_EQ(readFile(other) == before, true);
    EXPECT_THAT(outputOf("blkid", {"-p", card->image().native()}), HasSubstr("ext4"));
}

TEST_F(EraseMishap, CardChangedBetweenTheTwoTries_OtherCardIsLeftAlone) {
    const URL other = otherCard();
    const std::string before = readFile(other);
    const SystemServices services(
        {.locale = "C", .programs = {{"mkfs.exfat", swapScript(other) + "exit 1\n"}}});
    const auto card = insertCard();

    const std::string said = failureOf(mountPoint(), "Zoë");

    EXPECT_THAT(said, StartsWith("The erase failed. The state of the volume is unknown; it is no "
                                 "longer in its reader. ("));
    EXPECT_EQ(outputOf("losetup", {"-n", "-O", "BACK-FILE", card->node().native()}),
              other.native() + "\n");
    outputOf("losetup", {"-d", card->node().native()});
    EXPECT_EQ(readFile(other) == before, true);
}

const std::string changed =
    "Nothing was erased: the card was taken out or changed before its erase began. What is in the "
    "reader now was left alone.\n";

TEST_F(EraseMishap, OtherCardMountedThereAfterTheLook_NeitherIsTouched) {
    const auto services = servicesThatAnswer({});
    const LoopDevice other(cardFiles(), 16);
    ReelCore::HeldCard held(mountPoint());
    outputOf("sh", {"-c", replaceScript(other)});

    const std::string said = failureOf(mountPoint(), "A001", FileSystem::exFAT, std::move(held));

    EXPECT_EQ(said, changed);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(other.mountPoints(), std::vector<URL>{mountPoint()});
    EXPECT_EQ(readTree(mountPoint()), cardFiles());
}

TEST_F(EraseMishap, OtherMediumInTheSameDriveAfterTheLook_IsLeftAlone) {
    const auto services = servicesThatAnswer({});
    const ReelCore::HeldCard held(mountPoint());
    ReelCore::Medium other = held.medium();
    other.sequence += "0";

    const std::string said =
        failureOf(mountPoint(), "A001", FileSystem::exFAT,
                  ReelCore::HeldCard(::dup(held.descriptor()), std::move(other)));

    EXPECT_EQ(said, changed);
    EXPECT_THAT(calls(), IsEmpty());
}

class CardReplacedWhileTheServiceIsAsked : public EraseMishap,
                                           public testing::WithParamInterface<const char*> {};

TEST_P(CardReplacedWhileTheServiceIsAsked, NeitherIsTouched) {
    const LoopDevice other(cardFiles(), 16);
    const auto services =
        servicesThatAnswer({std::string(GetParam()) + "=!" + replaceScript(other)});

    EXPECT_EQ(failureOf(mountPoint()), changed);
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(other.mountPoints(), std::vector<URL>{mountPoint()});
    EXPECT_EQ(readTree(mountPoint()), cardFiles());
}

INSTANTIATE_TEST_SUITE_P(Calls, CardReplacedWhileTheServiceIsAsked,
                         testing::Values("Version", "CanFormat", "ResolveDevice", "DeviceNumber",
                                         "IdUUID"));

TEST_F(EraseMishap, VolumeServedByAProgramWithAFileSystemOfNoCard_IsRefused) {
    if (!TestSupport::hasTool("mount.exfat-fuse")) GTEST_SKIP() << "needs exfat-fuse";
    const auto services = servicesThatAnswer({});
    outputOf("umount", {mountPoint().native()});
    outputOf("mkfs.exfat", {name()});
    outputOf("mount.exfat-fuse", {name(), mountPoint().native()});

    EXPECT_EQ(
        failureOf(mountPoint()),
        "Nothing was erased: " + mountPoint().native() +
            " has the file system of no interest, which cameras, recorders and shuttle "
            "drives do not use. If it is to go all the same, erase it with a disk program.\n");
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_EQ(card().mountPoints(), std::vector<URL>{mountPoint()});
}

TEST_F(EraseMishap, DesktopMountsTheNewVolumeFirst_TellsWhere) {
    if (!TestSupport::hasTool("mount.exfat-fuse")) GTEST_SKIP() << "needs exfat-fuse";
    const TemporaryFolder tools;
    const URL real = tools.path() / "mkfs.exfat";
    std::filesystem::copy_file("/usr/sbin/mkfs.exfat", real);
    const SystemServices services(
        {.programs = {{"mkfs.exfat", real.native() + " \"$@\" || exit 1\nmkdir /media/first\n" +
                                         "exec mount.exfat-fuse $(cat " + node().native() +
                                         ") /media/first\n"}}});
    const auto card = insertCard();

    const std::string said = erase(mountPoint(), "A001");

    EXPECT_EQ(said, card->node().native() +
                        " is erased as ExFAT, named \"A001\".\nIt is mounted at /media/first.\n");
}

TEST_F(EraseMishap, ServiceSaysAlreadyMounted_TellsWhere) {
    const auto services = servicesThatAnswer({"Mount=" + alreadyMounted});

    const std::string said = erase(mountPoint(), "A001");

    EXPECT_THAT(said, HasSubstr("\nIt is mounted at /media/A.\n"));
}

TEST_F(EraseMishap, PasswordDialogClosed_MountsAgainAndTriesNothingElse) {
    const auto services = servicesThatAnswer({"Format=" + dismissed});

    const std::string said = failureOf(mountPoint(), "Zoë");

    EXPECT_EQ(said, "Nothing was erased: erasing " + mountPoint().native() +
                        " is not allowed (as the test wants it); it is mounted at /media/A.\n");
    EXPECT_EQ(calls(), "Unmount\nFormat Zoë\nMount\n");
}

TEST_F(EraseMishap, VolumeInUseAtTheErase_IsNotTriedTwice) {
    const auto services = servicesThatAnswer({"Format=" + busy});

    const std::string said = failureOf(mountPoint(), "Zoë");

    EXPECT_EQ(said,
              "The erase failed. The state of the volume is unknown; it is mounted at "
              "/media/A. (as the test wants it)\n");
    EXPECT_EQ(calls(), "Unmount\nFormat Zoë\nMount\n");
}

TEST_F(EraseMishap, ProgramThatCanNotWriteTheLabel_GetsAPlainOne) {
    const auto services = servicesThatAnswer({"Format=" + failed});

    failureOf(mountPoint(), "Zoë");

    EXPECT_EQ(calls(), "Unmount\nFormat Zoë\nFormat Zo_\nMount\n");
}

TEST_F(EraseMishap, MountThatIsNotAllowed_IsNoMissingDriver) {
    const auto services = servicesThatAnswer({"Mount=" + forbidden});

    EXPECT_EQ(failureOf(mountPoint()),
              name() +
                  " is erased as ExFAT, named \"A001\".\nThe volume is erased, but it can't be "
                  "mounted again: as the test wants it. Check it before you use it.\n");
}

TEST_F(EraseMishap, VersionThatCanNotBeRead_IsLeftOut) {
    const auto services = servicesThatAnswer({"IdVersion=" + failed});

    EXPECT_EQ(erase(mountPoint(), "A001", FileSystem::fat32),
              name() + " is erased as MS-DOS FAT32, named \"A001\".\nIt is mounted at /media/A.\n");
}

class EraseAnsweredStrangely : public EraseMishap,
                               public testing::WithParamInterface<const char*> {};

TEST_P(EraseAnsweredStrangely, BeforeTheUnmount_NothingIsErased) {
    const auto services = servicesThatAnswer({std::string(GetParam()) + "=form"});

    EXPECT_THAT(failureOf(mountPoint()), StartsWith("Nothing was erased: "));
    EXPECT_EQ(card().mountPoints(), std::vector<URL>{mountPoint()});
}

INSTANTIATE_TEST_SUITE_P(Answers, EraseAnsweredStrangely,
                         testing::Values("Version", "CanFormat", "ResolveDevice", "DeviceNumber",
                                         "IdUUID"));

}  // namespace

}  // namespace keldo_diskutil
