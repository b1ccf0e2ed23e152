#include "ReelCore/CardFormat/EraseCheck.h"

#include "ReelCore/Offload/OffloadEngine.h"
#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/FileSystem.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <gtest/gtest.h>

using ReelCore::EraseCheck;
using ReelCore::FileSystem;
using ReelCore::OffloadResult;
using ReelCore::URL;
using TestSupport::writeFile;

namespace {

class EraseCheckTests : public testing::Test {
protected:
    EraseCheckTests() {
        TestSupport::writeTree(card(), {{"CLIP/A.MXF", "picture"}, {"CLIP/A.XML", "<a/>"}});
    }

    URL card() const { return folder_.path() / "card"; }
    URL drive(const char* name) const { return folder_.path() / name; }

    OffloadResult offloadTo(const std::vector<URL>& drives) const {
        ReelCore::OffloadEngine engine(4096, [] { return false; });
        return engine.run({card(), drives, ReelCore::HashAlgorithm::xxhash64, "A001"},
                          [](const auto&) {});
    }

    OffloadResult offload() const { return offloadTo({drive("one"), drive("two")}); }

    TestSupport::TemporaryFolder folder_;
};

std::optional<std::string> objection(const OffloadResult& result) {
    return EraseCheck::look(result).objection;
}

/// Other bytes in the place of a copy, with its size and date.
void replaceUnseen(const URL& copy) {
    const auto date = std::filesystem::last_write_time(copy);
    const std::string bytes = TestSupport::readFile(copy);
    writeFile(copy.native() + ".new", std::string(bytes.size(), 'x'));
    std::filesystem::rename(copy.native() + ".new", copy);
    std::filesystem::last_write_time(copy, date);
}

const std::string otherCopy = "A verified copy is no longer the file that was verified: ";
const std::string otherFiles = "The files on the card are not the ones that were verified.";

/// A disk with exFAT that a program serves.
class ExFATDrive {
public:
    explicit ExFATDrive(const URL& mountPoint) : mountPoint_(mountPoint) {
        std::filesystem::create_directories(mountPoint);
        writeFile(image(), "");
        std::filesystem::resize_file(image(), 16U << 20U);
        TestSupport::outputOf("mkfs.exfat", {image().native()});
        node_ = TestSupport::outputOf("losetup", {"--find", "--show", image().native()});
        node_.erase(node_.find('\n'));
    }
    ~ExFATDrive() {
        TestSupport::runTool("umount", {mountPoint_.native()});
        TestSupport::runTool("losetup", {"-d", node_});
    }
    ExFATDrive(const ExFATDrive&) = delete;
    ExFATDrive& operator=(const ExFATDrive&) = delete;

    void mount() const { TestSupport::outputOf("mount.exfat-fuse", {node_, mountPoint_.native()}); }
    void unmount() const { TestSupport::outputOf("umount", {mountPoint_.native()}); }

private:
    URL image() const { return folder_.path() / "image"; }

    TestSupport::TemporaryFolder folder_;
    URL mountPoint_;
    std::string node_;
};

}  // namespace

TEST_F(EraseCheckTests, CardAndCopiesAsProved_NoObjection) {
    EXPECT_EQ(objection(offload()), std::nullopt);
}

TEST_F(EraseCheckTests, FileAddedToTheCard_IsAnObjection) {
    const auto result = offload();
    writeFile(card() / "CLIP/B.MXF", "a take of just now");
    EXPECT_EQ(objection(result), otherFiles);
}

TEST_F(EraseCheckTests, FileOnTheCardChangedInPlace_IsAnObjection) {
    const auto result = offload();
    writeFile(card() / "CLIP/A.MXF", "picturE");
    EXPECT_EQ(objection(result), otherFiles);
}

TEST_F(EraseCheckTests, OtherCardInItsPlace_IsAnObjection) {
    const auto result = offload();
    std::filesystem::remove_all(card());
    TestSupport::writeTree(card(), {{"CLIP/A.MXF", "picture"}, {"CLIP/A.XML", "<a/>"}});
    EXPECT_EQ(objection(result), otherFiles);
}

TEST_F(EraseCheckTests, CardGone_FailsAsTheScanDoes) {
    const auto result = offload();
    std::filesystem::remove_all(card());
    EXPECT_THROW(objection(result), ReelCore::OffloadError);
}

TEST_F(EraseCheckTests, DriveTakenAway_IsAnObjectionThatNamesTheCopy) {
    const auto result = offload();
    std::filesystem::rename(drive("two"), drive("elsewhere"));
    EXPECT_EQ(objection(result),
              "A verified copy is no longer there: " + (drive("two") / "A001/CLIP/A.MXF").native());
}

TEST_F(EraseCheckTests, CopyCutShort_IsAnObjectionThatNamesIt) {
    const auto result = offload();
    std::filesystem::resize_file(drive("one") / "A001/CLIP/A.XML", 1);
    EXPECT_EQ(objection(result), otherCopy + (drive("one") / "A001/CLIP/A.XML").native());
}

TEST_F(EraseCheckTests, SameFolderAsTwoDrives_IsAnObjection) {
    std::filesystem::create_directories(drive("one"));
    std::filesystem::create_symlink(drive("one"), drive("link"));
    const auto result = offloadTo({drive("one"), drive("link")});
    EXPECT_EQ(objection(result),
              "Two of the drives are one and the same folder, so there is only one copy.");
}

TEST_F(EraseCheckTests, CopyReplacedByOneOfItsSizeAndDate_IsAnObjectionThatNamesIt) {
    const auto result = offload();
    const URL copy = drive("two") / "A001/CLIP/A.MXF";
    replaceUnseen(copy);
    EXPECT_EQ(objection(result), otherCopy + copy.native());
}

TEST_F(EraseCheckTests, CopyWrittenToInPlace_IsAnObjectionThatNamesIt) {
    const auto result = offload();
    const URL copy = drive("two") / "A001/CLIP/A.MXF";
    const auto date = std::filesystem::last_write_time(copy);
    TestSupport::outputOf("sh", {"-c", "printf PICTURE > \"$1\"", "sh", copy.native()});
    std::filesystem::last_write_time(copy, date + std::chrono::nanoseconds(1));
    EXPECT_EQ(objection(result), otherCopy + copy.native());
}

TEST_F(EraseCheckTests, LinkInThePlaceOfACopy_IsAnObjectionThatNamesIt) {
    const auto result = offload();
    const URL copy = drive("two") / "A001/CLIP/A.MXF";
    std::filesystem::rename(copy, drive("two") / "moved");
    std::filesystem::create_symlink(drive("two") / "moved", copy);
    EXPECT_EQ(objection(result), "A verified copy is no longer there: " + copy.native());
}

TEST_F(EraseCheckTests, CopyWithoutAProof_IsAnObjectionThatNamesIt) {
    auto result = offload();
    result.files[1].destinations[0].proved.reset();
    EXPECT_EQ(objection(result),
              "A copy has not been proved: " + result.files[1].destinations[0].writtenURL.native());
}

TEST_F(EraseCheckTests, FolderUnreadWhenTheCardWasCopied_IsAnObjectionThatNamesIt) {
    auto result = offload();
    result.unreadFolders = {1, "CLIP/BAD"};
    EXPECT_EQ(
        objection(result),
        "The folder CLIP/BAD on the card could not be read when it was copied, so nobody knows "
        "what is in it.");
    result.unreadFolders = {3, "CLIP/BAD"};
    EXPECT_EQ(objection(result),
              "3 folders on the card could not be read when it was copied, so nobody knows what is "
              "in them. The first of them is CLIP/BAD.");
}

TEST_F(EraseCheckTests, FolderThatCanNotBeReadNow_IsAnObjectionThatNamesIt) {
    if (!TestSupport::FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    std::filesystem::create_directories(card() / "CLIP/BAD");
    auto result = offload();
    result.request.source = drive("reader");
    std::filesystem::create_directories(drive("reader"));
    const TestSupport::FaultyFileSystem reader(card(), drive("reader"), {.failListingOf = "BAD"});
    EXPECT_EQ(objection(result),
              "The folder CLIP/BAD on the card can't be read, so nobody knows what is in it.");
}

TEST_F(EraseCheckTests, CopiesAreLookedAtFirst) {
    const auto result = offload();
    std::filesystem::remove_all(card());
    std::filesystem::remove(drive("one") / "A001/CLIP/A.MXF");
    EXPECT_EQ(objection(result),
              "A verified copy is no longer there: " + (drive("one") / "A001/CLIP/A.MXF").native());
}

TEST_F(EraseCheckTests, CardIsHeldBeyondTheLook) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    std::filesystem::remove_all(card());
    const TestSupport::LoopMount reader("ext4", 16);
    TestSupport::writeTree(reader.path(), {{"CLIP/A.MXF", "picture"}});
    const TestSupport::BindMount mounted(reader.path(), card());
    const auto result = offload();

    auto finding = EraseCheck::look(result);

    ASSERT_TRUE(finding.card);
    EXPECT_NE(TestSupport::runTool("umount", {card().native()}).status, 0);
    finding.card.reset();
    EXPECT_EQ(TestSupport::runTool("umount", {card().native()}).status, 0);
}

TEST_F(EraseCheckTests, FileSystemThatForgetsItsNumbers_IsTakenAtSizeAndDate) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    if (!TestSupport::hasTool("mount.exfat-fuse")) GTEST_SKIP() << "needs exfat-fuse";
    const ExFATDrive shuttle(drive("two"));
    shuttle.mount();
    const auto result = offload();
    const URL copy = drive("two") / "A001/CLIP/A.MXF";
    const auto before = FileSystem::identity(copy);

    shuttle.unmount();
    shuttle.mount();
    TestSupport::outputOf("ls", {"-lR", drive("two").native()});

    ASSERT_NE(FileSystem::identity(copy), before) << "this one remembers";
    EXPECT_EQ(objection(result), std::nullopt);
    TestSupport::outputOf("touch", {"-d", "2020-01-01", copy.native()});
    EXPECT_EQ(objection(result), otherCopy + copy.native());
}
