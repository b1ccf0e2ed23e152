#include "ReelCore/Platform/HeldFolder.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <utility>

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace fs = std::filesystem;

TEST(HeldFolder, StillThere_UntilItIsMovedAway) {
    TemporaryFolder folder;
    fs::create_directory(folder.path() / "reel");
    const HeldFolder held(folder.path() / "reel");
    EXPECT_TRUE(held.isStillThere());

    fs::rename(folder.path() / "reel", folder.path() / "elsewhere");
    EXPECT_FALSE(held.isStillThere());

    fs::create_directory(folder.path() / "reel");
    EXPECT_FALSE(held.isStillThere()) << "another folder of that name";

    fs::remove(folder.path() / "reel");
    fs::rename(folder.path() / "elsewhere", folder.path() / "reel");
    EXPECT_TRUE(held.isStillThere());
}

TEST(HeldFolder, StillThere_MovedObject_GoesOn) {
    TemporaryFolder folder;
    HeldFolder first(folder.path());

    HeldFolder second(std::move(first));
    EXPECT_TRUE(second.isStillThere());

    HeldFolder third("/");
    third = std::move(second);
    EXPECT_TRUE(third.isStillThere());
}

TEST(HeldFolder, Hold_MissingFolderOrFile_IsRefused) {
    TemporaryFolder folder;
    writeFile(folder.path() / "file", "");

    EXPECT_THROW(HeldFolder(folder.path() / "gone"), SystemError);
    EXPECT_THROW(HeldFolder(folder.path() / "file"), SystemError);
}

TEST(HeldFolder, StillThere_DriveHasGone_IsFalseAlsoIfTheFolderBelowLooksTheSame) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount drive("ext4", 8);
    const URL reel = drive.path() / "reel";
    fs::create_directory(reel);
    const HeldFolder held(reel);

    drive.vanish();
    EXPECT_FALSE(held.isStillThere());

    fs::create_directory(reel);
    EXPECT_FALSE(held.isStillThere());
}

TEST(HeldFolder, Hold_FolderOnADrive_KeepsTheDriveFromBeingUnmounted) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 8);
    const HeldFolder held(drive.path());

    EXPECT_NE(runTool("umount", {drive.path().native()}).status, 0);
    EXPECT_TRUE(held.isStillThere());
}

TEST(HeldFolder, Below_LinkOnTheWay_IsRefusedWhereverItLeads) {
    TemporaryFolder folder;
    fs::create_directories(folder.path() / "a/b");
    fs::create_symlink("a", folder.path() / "link");
    const HeldFolder held(folder.path());

    EXPECT_EQ(held.below("a/b", MissingFolders::refuse).identity(),
              HeldFolder(folder.path() / "a/b").identity());
    EXPECT_EQ(held.below("", MissingFolders::refuse).identity(), held.identity());
    EXPECT_THROW(held.below("link", MissingFolders::refuse), SystemError);
    EXPECT_THROW(held.below("link/b", MissingFolders::make), SystemError);
    EXPECT_THROW(held.below("a/gone", MissingFolders::refuse), SystemError);
}

TEST(HeldFolder, Below_MissingFolders_AreMadeInTheFolderThatIsHeld) {
    TemporaryFolder folder;
    fs::create_directory(folder.path() / "reel");
    const HeldFolder held(folder.path() / "reel");
    fs::rename(folder.path() / "reel", folder.path() / "moved");
    fs::create_directory(folder.path() / "reel");

    held.below("x/y", MissingFolders::make);

    EXPECT_TRUE(fs::is_directory(folder.path() / "moved/x/y"));
    EXPECT_TRUE(fs::is_empty(folder.path() / "reel"));
}

TEST(HeldFolder, Find_TellsAnEntryAndNotWhatALinkLeadsTo) {
    TemporaryFolder folder;
    writeFile(folder.path() / "file", "");
    fs::create_symlink("file", folder.path() / "link");
    const HeldFolder held(folder.path());

    ASSERT_TRUE(held.find("file"));
    EXPECT_EQ(held.find("file")->identity, FileSystem::identity(folder.path() / "file"));
    ASSERT_TRUE(held.find("link"));
    EXPECT_NE(held.find("link")->identity, held.find("file")->identity);
    EXPECT_FALSE(held.find("gone"));
}

TEST(HeldFolder, Lock_IsForOneHolderAndGoesWithIt) {
    TemporaryFolder folder;
    const HeldFolder second(folder.path());
    {
        const HeldFolder first(folder.path());
        EXPECT_TRUE(first.lock(FolderLock::alone));
        EXPECT_TRUE(first.lock(FolderLock::alone)) << "its own";
        EXPECT_FALSE(second.lock(FolderLock::alone));
        EXPECT_FALSE(second.lock(FolderLock::shared));
    }
    EXPECT_TRUE(second.lock(FolderLock::alone));
}
