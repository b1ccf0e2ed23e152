#include "ReelCore/Platform/FileLocation.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/LoopMount.h"

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

bool liesWithin(const URL& path, const URL& folder) {
    return FileLocation(path).pathWithin(FileLocation(folder)).has_value();
}

class FileLocationTest : public testing::Test {
protected:
    FileLocationTest() {
        std::filesystem::create_directories(at("card/DCIM"));
        std::filesystem::create_directories(at("drive"));
    }

    URL at(const std::string& name) const { return URL(folder_.path().native() + "/" + name); }
    bool inCard(const std::string& name) const { return liesWithin(at(name), at("card")); }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(FileLocationTest, Within_TheFolderItselfAndAllBelow) {
    EXPECT_TRUE(inCard("card"));
    EXPECT_TRUE(inCard("card/"));
    EXPECT_TRUE(inCard("card//."));
    EXPECT_TRUE(inCard("card/DCIM"));
    EXPECT_TRUE(inCard("card/not/there/yet"));
    EXPECT_TRUE(liesWithin(at("card"), at("card/")));
}

TEST_F(FileLocationTest, PathWithin_TellsTheWayFromTheFolder) {
    std::filesystem::create_symlink("../card", at("drive/toCard"));
    const FileLocation card(at("card"));

    EXPECT_EQ(FileLocation(at("card/")).pathWithin(card), URL("."));
    EXPECT_EQ(FileLocation(at("drive/toCard/DCIM/new/")).pathWithin(card), URL("DCIM/new"));
    EXPECT_EQ(FileLocation(at("drive")).pathWithin(card), std::nullopt);
}

TEST_F(FileLocationTest, RelativePath_WithoutAWorkingDirectory_IsTheSystemsError) {
    const int status = statusOfForked([&] {
        std::filesystem::create_directory(at("gone"));
        std::filesystem::current_path(at("gone"));
        std::filesystem::remove(at("gone"));
        try {
            FileLocation("drive");
            return 1;
        } catch (const SystemError&) {
            return 0;
        }
    });

    EXPECT_EQ(status, 0);
}

TEST_F(FileLocationTest, Outside_ParentsNeighboursAndNamesThatBeginAlike) {
    EXPECT_FALSE(inCard(""));
    EXPECT_FALSE(inCard("drive"));
    EXPECT_FALSE(inCard("card2"));
    EXPECT_FALSE(inCard("drive/card"));
    EXPECT_FALSE(inCard("card/../drive"));
    EXPECT_FALSE(inCard("card/DCIM/../../new"));
}

TEST_F(FileLocationTest, Within_ByDotsFromAnotherFolder) {
    EXPECT_TRUE(inCard("drive/../card/new"));
    EXPECT_TRUE(inCard("new/../card"));
    EXPECT_TRUE(inCard("new/folder/../../card/DCIM"));
}

TEST_F(FileLocationTest, Within_ByALink) {
    std::filesystem::create_symlink("../card", at("drive/toCard"));
    std::filesystem::create_symlink("../card/DCIM", at("drive/toFolder"));
    std::filesystem::create_symlink("drive", at("toDrive"));

    EXPECT_TRUE(inCard("drive/toCard"));
    EXPECT_TRUE(inCard("drive/toCard/new/folder"));
    EXPECT_TRUE(inCard("drive/toFolder/new"));
    EXPECT_TRUE(inCard("toDrive/toCard"));
    EXPECT_FALSE(inCard("toDrive/new"));
}

TEST_F(FileLocationTest, Within_ByDotsThroughAFolderStillToBeMadeAndThenALink) {
    std::filesystem::create_symlink("../card", at("drive/toCard"));

    EXPECT_TRUE(inCard("drive/new/../toCard/reel"));
}

TEST_F(FileLocationTest, Within_TheFolderIsGivenByALink) {
    std::filesystem::create_symlink("card", at("cardLink"));

    EXPECT_TRUE(liesWithin(at("card/DCIM"), at("cardLink")));
    EXPECT_TRUE(liesWithin(at("cardLink/DCIM"), at("card")));
}

TEST_F(FileLocationTest, Within_RelativePaths_GoFromTheWorkingDirectory) {
    const URL before = std::filesystem::current_path();
    std::filesystem::current_path(at("card"));

    const bool within = liesWithin("DCIM", at("card")) && liesWithin(at("card/DCIM"), ".");
    const bool outside = liesWithin("../drive", at("card"));

    std::filesystem::current_path(before);
    EXPECT_TRUE(within);
    EXPECT_FALSE(outside);
}

TEST_F(FileLocationTest, Within_TheRootOfAllFolders_IsEverything) {
    EXPECT_TRUE(liesWithin(at("drive"), "/"));
    EXPECT_FALSE(liesWithin("/", at("card")));
}

TEST_F(FileLocationTest, Within_ByAMountOfTheFolderElsewhere) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const BindMount mount(at("card"), at("drive/mirror"));

    EXPECT_TRUE(inCard("drive/mirror"));
    EXPECT_TRUE(inCard("drive/mirror/new/reel"));
    EXPECT_FALSE(inCard("drive/other"));
}

TEST_F(FileLocationTest, Within_ByAMountOfAFolderInsideElsewhere) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const BindMount mount(at("card/DCIM"), at("drive/a b\tmirror"));

    EXPECT_TRUE(inCard("drive/a b\tmirror"));
    EXPECT_TRUE(inCard("drive/a b\tmirror/new"));
}

TEST_F(FileLocationTest, Outside_ByAMountOfTheParentElsewhere_UnlessItLeadsIn) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    TemporaryFolder elsewhere;
    const BindMount mount(at(""), elsewhere.path() / "all");

    EXPECT_FALSE(liesWithin(elsewhere.path() / "all/drive", at("card")));
    EXPECT_TRUE(liesWithin(elsewhere.path() / "all/card/new", at("card")));
}

TEST_F(FileLocationTest, Outside_ByAMountThatALaterOneHides) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    std::filesystem::create_directory(at("other"));
    const BindMount hidden(at("card"), at("drive/mirror"));
    const BindMount onTop(at("other"), at("drive"));
    std::filesystem::create_directory(at("other/mirror"));

    EXPECT_FALSE(inCard("drive/mirror"));
}

TEST_F(FileLocationTest, Within_ByASecondMountOfTheSameDevice) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount card("ext4", 8);
    std::filesystem::create_directories(card.path() / "DCIM");
    card.mountAgainAt(at("again"));

    EXPECT_TRUE(liesWithin(at("again"), card.path()));
    EXPECT_TRUE(liesWithin(at("again/DCIM/new"), card.path()));
    EXPECT_TRUE(liesWithin(at("again/DCIM"), card.path() / "DCIM"));
    EXPECT_FALSE(liesWithin(at("again/reel"), card.path() / "DCIM"));
}

TEST_F(FileLocationTest, Outside_AnotherDriveWithTheSameFolders) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount card("ext4", 8);
    const LoopMount drive("ext4", 8);
    std::filesystem::create_directories(card.path() / "DCIM");
    std::filesystem::create_directories(drive.path() / "DCIM");

    EXPECT_FALSE(liesWithin(drive.path() / "DCIM", card.path()));
    EXPECT_FALSE(liesWithin(drive.path() / "DCIM", card.path() / "DCIM"));
}

TEST_F(FileLocationTest, Within_ByAnotherSpellingWhereCaseDoesNotMatter) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const FaultyFileSystem drive(at("back"), at("mount"), {.ignoreCase = true});
    std::filesystem::create_directories(drive.path() / "card");

    EXPECT_TRUE(liesWithin(drive.path() / "CARD", drive.path() / "card"));
    EXPECT_TRUE(liesWithin(drive.path() / "Card/new", drive.path() / "card"));
    EXPECT_FALSE(liesWithin(drive.path() / "new", drive.path() / "card"));
}
