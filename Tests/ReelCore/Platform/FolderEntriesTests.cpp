// The walk that tells of files, folders and links alike.

#include "ReelCore/Platform/FolderWalk.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/Snapshot.h"

#include <cerrno>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

/// Paths below the root, in the order visited.
using Paths = std::vector<std::string>;

std::optional<Paths> entriesOf(const URL& root) {
    Paths paths;
    const bool opened = walkEntries(
        root, [&](const URL& entry) { paths.push_back(entry.lexically_relative(root).native()); });
    if (!opened) return std::nullopt;
    return paths;
}

class FolderEntriesTest : public testing::Test {
protected:
    URL at(const std::string& name) const {
        return name.empty() ? folder_.path() : folder_.path() / name;
    }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(FolderEntriesTest, Walk_Tree_AreFilesAndFoldersInTheOrderOfTheirPaths) {
    writeTree(at(""),
              {{"b.MOV", ""}, {".hidden/clip", ""}, {"a/z", ""}, {"a/b/c", ""}, {"a.b", ""}});
    std::filesystem::create_directory(at("empty"));

    EXPECT_EQ(entriesOf(at("")), (Paths{".hidden", ".hidden/clip", "a", "a.b", "a/b", "a/b/c",
                                        "a/z", "b.MOV", "empty"}));
}

TEST_F(FolderEntriesTest, Walk_Names_ArePathsByteForByte) {
    writeTree(at(""), {{"line\nbreak", ""}, {"\xFF\xFE", ""}, {"Söhne", ""}, {" ", ""}});

    EXPECT_EQ(entriesOf(at("")), (Paths{" ", "Söhne", "line\nbreak", "\xFF\xFE"}));
}

TEST_F(FolderEntriesTest, Walk_Links_AreToldOfAndNotFollowed) {
    writeTree(at("elsewhere"), {{"clip", ""}});
    writeTree(at("card"), {{"real/clip", ""}});
    std::filesystem::create_symlink("real/clip", at("card/to file"));
    std::filesystem::create_directory_symlink(at("elsewhere"), at("card/to folder"));
    std::filesystem::create_directory_symlink("..", at("card/real/loop"));
    std::filesystem::create_symlink("circle", at("card/circle"));
    std::filesystem::create_symlink("gone", at("card/nowhere"));

    EXPECT_EQ(entriesOf(at("card")), (Paths{"circle", "nowhere", "real", "real/clip", "real/loop",
                                            "to file", "to folder"}));
}

TEST_F(FolderEntriesTest, Walk_PipesSocketsAndDevicesAndLinksToThem_ArePassedOver) {
    writeFile(at("clip"), "");
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0666), 0);
    ASSERT_EQ(::mknod(at("socket").c_str(), S_IFSOCK | 0666, 0), 0);
    std::filesystem::create_symlink("pipe", at("to pipe"));
    std::filesystem::create_symlink("to pipe", at("to a link to it"));
    std::filesystem::create_symlink("socket", at("to socket"));
    std::filesystem::create_symlink("/dev/zero", at("to device"));
    if (::geteuid() == 0) {
        ASSERT_EQ(::mknod(at("device").c_str(), S_IFCHR | 0666, ::makedev(1, 3)), 0);
        ASSERT_EQ(::mknod(at("disk").c_str(), S_IFBLK | 0666, ::makedev(250, 250)), 0);
    }

    EXPECT_EQ(entriesOf(at("")), Paths{"clip"});
}

TEST_F(FolderEntriesTest, Walk_RootMissingOrAFile_IsRefused) {
    writeFile(at("file"), "");

    EXPECT_EQ(entriesOf(at("gone")), std::nullopt);
    EXPECT_EQ(entriesOf(at("file")), std::nullopt);
}

TEST_F(FolderEntriesTest, Walk_RootEmptyOrALink_IsWalked) {
    writeTree(at("real"), {{"clip", ""}});
    std::filesystem::create_directory_symlink("real", at("link"));
    std::filesystem::create_directory(at("empty"));

    EXPECT_EQ(entriesOf(at("empty")), Paths{});
    EXPECT_EQ(entriesOf(at("link")), Paths{"clip"});
}

TEST_F(FolderEntriesTest, Walk_UnreadableFolder_IsToldOfAndNotWhatIsInIt) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    writeTree(at(""), {{"open/a", ""}, {"shut/b", ""}});
    ASSERT_EQ(::chmod(at("").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(at("shut").c_str(), 0700), 0);

    const int status = statusOfForked([&] {
        if (::setuid(12345) != 0) return 2;
        return entriesOf(at("")) == Paths{"open", "open/a", "shut"} && !entriesOf(at("shut")) ? 0
                                                                                              : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(FolderEntriesTest, Walk_AttributesThatCannotBeRead_ArePassedOver) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"DCIM/bad", ""}, {"DCIM/good", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.failAttributesOf = "bad"});

    EXPECT_EQ(entriesOf(card.path()), (Paths{"DCIM", "DCIM/good", "a"}));
}

TEST_F(FolderEntriesTest, Walk_ListingBreaksOff_GoesOnWithTheRest) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"bad/b", ""}, {"good/c", ""}});
    for (const int error : {EIO, ENOMEM}) {
        const FaultyFileSystem card(at("back"), at("card"),
                                    {.breakListingOf = "bad", .listingError = error});

        EXPECT_EQ(entriesOf(card.path()), (Paths{"a", "bad", "good", "good/c"})) << error;
    }
}

TEST_F(FolderEntriesTest, Walk_RemovedWhileTheyAreVisited_AreStillToldOf) {
    writeTree(at(""), {{"a/clip", ""}, {"b/clip", ""}});
    Paths visited;

    walkEntries(at(""), [&](const URL& entry) {
        visited.push_back(entry.filename());
        std::filesystem::remove_all(at("b"));
    });

    EXPECT_EQ(visited, (Paths{"a", "clip", "b", "clip"}));
}

TEST_F(FolderEntriesTest, Walk_Tree_LeavesAllAccessDates) {
    writeTree(at("card"), {{"A", "1"}, {"DCIM/100/B", "2"}});
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));

    entriesOf(at("card"));

    EXPECT_EQ(snapshotOf(at("card")), before);
}
