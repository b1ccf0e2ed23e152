#include "ReelCore/Offload/ReelFolder.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/LoopMount.h"

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace fs = std::filesystem;

namespace {

class ReelFolderTest : public testing::Test {
protected:
    ReelFolderTest() { fs::create_directories(at("card/DCIM")); }

    URL at(const std::string& name) const { return folder_.path() / name; }
    ReelFolder on(const URL& drive, const std::string& name) const {
        return ReelFolder(FileLocation(at("card")), drive, name);
    }
    ReelFolder reel(const std::string& name) const { return on(at("drive"), name); }

private:
    TemporaryFolder folder_;
};

bool isRefused(const ReelFolder& reel) {
    try {
        reel.requireOutsideSource();
        return false;
    } catch (const OffloadError& error) {
        const auto* refusal = error.get<OffloadError::DestinationNotWritable>();
        return refusal && refusal->destination == reel.destination();
    }
}

}  // namespace

TEST_F(ReelFolderTest, Path_ReelNameIsAppendedExactlyAsItIs) {
    const std::string drive = at("drive").native();

    EXPECT_EQ(reel("A001").path().native(), drive + "/A001");
    EXPECT_EQ(reel("day 1/A001").path().native(), drive + "/day 1/A001");
    EXPECT_EQ(reel(" A 1 ").path().native(), drive + "/ A 1 ");
    EXPECT_EQ(reel("/A001").path().native(), drive + "//A001") << "still below the drive";
    EXPECT_EQ(reel("..").path().native(), drive + "/..");
}

TEST_F(ReelFolderTest, Path_DriveWithASlashAtItsEnd_GetsNoSecondOne) {
    EXPECT_EQ(on("/media/drive/", "A001").path().native(), "/media/drive/A001");
    EXPECT_EQ(on("/", "A001").path().native(), "/A001");
    EXPECT_EQ(on("drive", "A001").path().native(), "drive/A001");
}

TEST_F(ReelFolderTest, Path_NoDrive_IsRefusedAndNotTakenForTheRoot) {
    EXPECT_THROW(on("", "A001"), OffloadError);
}

TEST_F(ReelFolderTest, RequireOutsideSource_RelativeDriveWithoutAWorkingDirectory_IsRefused) {
    const int status = statusOfForked([&] {
        fs::create_directory(at("gone"));
        fs::current_path(at("gone"));
        fs::remove(at("gone"));
        return isRefused(on("drive", "A001")) ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(ReelFolderTest, Create_MakesIntermediates_AndTakesWhatIsThere) {
    reel("day/A001").create();
    writeFile(at("drive/day/A001/old"), "stays");
    reel("day/A001").create();

    EXPECT_EQ(readTree(at("drive")), (FolderTree{{"day/A001/old", "stays"}}));
}

TEST_F(ReelFolderTest, Create_FileInTheWay_NamesTheDriveNotTheReel) {
    writeFile(at("drive/A001"), "");
    try {
        reel("A001").create();
        FAIL() << "no error";
    } catch (const OffloadError& error) {
        EXPECT_EQ(error.description(), "Destination is not writable: " + at("drive").native());
    }
}

TEST_F(ReelFolderTest, RequireOutsideSource_LooksAtTheReelNotAtTheDrive) {
    EXPECT_FALSE(isRefused(reel("A001")));
    EXPECT_TRUE(isRefused(reel("../card")));
    EXPECT_TRUE(isRefused(reel("../card/new")));
    EXPECT_FALSE(isRefused(reel("../card2")));
    EXPECT_FALSE(isRefused(on(at("card"), "../A001")));
    EXPECT_TRUE(isRefused(on(at("card"), "A001")));
}

TEST_F(ReelFolderTest, TargetFor_KeepsTheCardsFoldersAndNames) {
    EXPECT_EQ(reel("A001").targetFor("DCIM/100/\xff.MOV").native(),
              at("drive").native() + "/A001/DCIM/100/\xff.MOV");
}

TEST_F(ReelFolderTest, ParentFor_MakesTheFolderOfTheTarget) {
    ReelFolder folder = reel("A001");
    folder.create();

    folder.parentFor("DCIM/100/A.MOV");
    folder.parentFor("B.MOV");

    EXPECT_TRUE(fs::is_directory(at("drive/A001/DCIM/100")));
}

TEST_F(ReelFolderTest, ParentFor_FolderVanishesBetweenTwoFiles_IsMadeAgain) {
    ReelFolder folder = reel("A001");
    folder.create();
    folder.parentFor("DCIM/A.MOV");
    fs::remove(at("drive/A001/DCIM"));

    folder.parentFor("DCIM/B.MOV");

    EXPECT_TRUE(fs::is_directory(at("drive/A001/DCIM")));
}

TEST_F(ReelFolderTest, ParentFor_FolderIsReplacedByALinkIntoTheSource_IsRefused) {
    ReelFolder folder = reel("A001");
    folder.create();
    folder.parentFor("DCIM/A.MOV");
    fs::remove(at("drive/A001/DCIM"));
    fs::create_symlink(at("card/DCIM"), at("drive/A001/DCIM"));

    EXPECT_THROW(folder.parentFor("DCIM/B.MOV"), OffloadError);
}

TEST_F(ReelFolderTest, ParentFor_LinkThatLeadsIntoTheSource_IsRefused) {
    ReelFolder folder = reel("A001");
    folder.create();
    fs::create_symlink(at("card/DCIM"), at("drive/A001/DCIM"));

    EXPECT_THROW(folder.parentFor("DCIM/new/A.MOV"), OffloadError);
    EXPECT_TRUE(fs::is_empty(at("card/DCIM")));
}

TEST_F(ReelFolderTest, ParentFor_LinkToAnotherFolder_IsRefusedAndNotFollowed) {
    ReelFolder folder = reel("A001");
    folder.create();
    fs::create_directories(at("elsewhere"));
    fs::create_symlink(at("elsewhere"), at("drive/A001/DCIM"));

    EXPECT_THROW(folder.parentFor("DCIM/A.MOV"), SystemError);
    EXPECT_THROW(folder.parentFor("DCIM/new/A.MOV"), SystemError);
    EXPECT_TRUE(fs::is_empty(at("elsewhere")));
}

TEST_F(ReelFolderTest, Create_ReelIsALinkToAnotherFolder_IsRefused) {
    fs::create_directories(at("elsewhere"));
    fs::create_directories(at("drive"));
    fs::create_symlink(at("elsewhere"), at("drive/A001"));

    EXPECT_THROW(reel("A001").create(), OffloadError);
    EXPECT_THROW(reel("A001/new").create(), OffloadError);
    EXPECT_TRUE(fs::is_empty(at("elsewhere")));
}

TEST_F(ReelFolderTest, Lock_AnotherHasIt_IsRefusedWithTheReasonUntilThatOneIsGone) {
    ReelFolder second = reel("A001");
    {
        ReelFolder first = reel("A001");
        first.create();
        first.lock();
        second.create();
        try {
            second.lock();
            FAIL() << "no error";
        } catch (const OffloadError& error) {
            const auto* refusal = error.get<OffloadError::DestinationNotWritable>();
            ASSERT_TRUE(refusal);
            EXPECT_EQ(refusal->destination, at("drive"));
            EXPECT_EQ(refusal->reason, "Another offload is writing into this reel folder.");
        }
        ReelFolder other = reel("A002");
        other.create();
        other.lock();
    }
    second.lock();
}

TEST_F(ReelFolderTest, ParentFor_FileInTheWay_IsTheSystemsError) {
    ReelFolder folder = reel("A001");
    folder.create();
    writeFile(at("drive/A001/DCIM"), "");

    EXPECT_THROW(folder.parentFor("DCIM/A.MOV"), SystemError);
}

TEST_F(ReelFolderTest, ParentFor_AnotherFolderStandsThere_SaysThatTheDriveHasGone) {
    ReelFolder folder = reel("A001");
    folder.create();
    fs::rename(at("drive"), at("gone"));
    fs::create_directories(at("drive/A001"));
    const URL target = folder.targetFor("DCIM/A.MOV");

    EXPECT_FALSE(folder.isStillThere());
    try {
        folder.parentFor("DCIM/A.MOV");
        FAIL() << "no error";
    } catch (const OffloadError& error) {
        EXPECT_EQ(error.description(),
                  "Failed writing to " + target.native() + ": the drive is no longer there");
    }
    EXPECT_TRUE(fs::is_empty(at("drive/A001")));
}
