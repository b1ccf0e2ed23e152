#include "ReelCore/Models/UniquePath.h"

#include "Support/FolderTree.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using TestSupport::TemporaryFolder;
using TestSupport::writeTree;

TEST(UniqueOutputURL, FreeName_IsKept) {
    const TemporaryFolder folder;

    EXPECT_EQ(uniqueOutputURL(folder.path() / "clip.mov"), folder.path() / "clip.mov");
}

TEST(UniqueOutputURL, TakenName_GetsTheFirstFreeNumberFromTwo) {
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"clip.mov", ""}});
    EXPECT_EQ(uniqueOutputURL(folder.path() / "clip.mov"), folder.path() / "clip 2.mov");

    writeTree(folder.path(), {{"clip 2.mov", ""}, {"clip 4.mov", ""}});
    EXPECT_EQ(uniqueOutputURL(folder.path() / "clip.mov"), folder.path() / "clip 3.mov");
}

TEST(UniqueOutputURL, NumberedNameThatIsTaken_IsItselfTheStem) {
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"clip 2.mov", ""}});

    EXPECT_EQ(uniqueOutputURL(folder.path() / "clip 2.mov"), folder.path() / "clip 2 2.mov");
}

TEST(UniqueOutputURL, OnlyTheLastExtension_StandsBehindTheNumber) {
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"clip.tar.gz", ""}, {"clip", ""}, {".clip", ""}});

    EXPECT_EQ(uniqueOutputURL(folder.path() / "clip.tar.gz"), folder.path() / "clip.tar 2.gz");
    EXPECT_EQ(uniqueOutputURL(folder.path() / "clip"), folder.path() / "clip 2");
    EXPECT_EQ(uniqueOutputURL(folder.path() / ".clip"), folder.path() / ".clip 2");
}

TEST(UniqueOutputURL, FoldersAndDanglingLinks_AreInTheWayAsWell) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "clip.mov");
    std::filesystem::create_symlink("nowhere", folder.path() / "clip 2.mov");

    EXPECT_EQ(uniqueOutputURL(folder.path() / "clip.mov"), folder.path() / "clip 3.mov");
}

TEST(UniqueOutputURL, MissingFolder_IsNotMade) {
    const TemporaryFolder folder;
    const URL url = folder.path() / "missing/clip.mov";

    EXPECT_EQ(uniqueOutputURL(url), url);
    EXPECT_FALSE(std::filesystem::exists(url.parent_path()));
}

}  // namespace
