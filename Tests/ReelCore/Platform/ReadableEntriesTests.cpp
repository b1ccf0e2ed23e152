// The walk that takes from a failing root what it can get.

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
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

/// Paths below the root, in the order visited.
using Paths = std::vector<std::string>;

std::optional<Paths> readableOf(const URL& root) {
    Paths paths;
    const bool opened = walkReadableEntries(
        root, [](std::string_view name) { return name == "ignored"; },
        [&](const URL& entry) { paths.push_back(entry.lexically_relative(root).native()); });
    if (!opened) return std::nullopt;
    return paths;
}

class ReadableEntriesTest : public testing::Test {
protected:
    URL at(const std::string& name) const {
        return name.empty() ? folder_.path() : folder_.path() / name;
    }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(ReadableEntriesTest, Walk_Tree_AreFilesAndFoldersInTheOrderOfTheirPaths) {
    writeTree(at(""), {{"b.MOV", ""}, {".hidden/clip", ""}, {"a/z", ""}, {"a.b", ""}});
    std::filesystem::create_directory(at("empty"));

    EXPECT_EQ(readableOf(at("")),
              (Paths{".hidden", ".hidden/clip", "a", "a.b", "a/z", "b.MOV", "empty"}));
}

TEST_F(ReadableEntriesTest, Walk_IgnoredNames_AreLeftOutWithAllBelowAtAnyDepth) {
    writeTree(at(""), {{"ignored/a", ""}, {"x/ignored/y/b", ""}, {"y/ignored", ""}, {"c", ""}});

    EXPECT_EQ(readableOf(at("")), (Paths{"c", "x", "y"}));
}

TEST_F(ReadableEntriesTest, Walk_LinksAndPipes_AreToldOfAndNotFollowed) {
    writeFile(at("real/clip"), "");
    std::filesystem::create_directory_symlink("real", at("to folder"));
    std::filesystem::create_symlink("gone", at("nowhere"));
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0666), 0);
    std::filesystem::create_symlink("pipe", at("to pipe"));

    EXPECT_EQ(readableOf(at("")),
              (Paths{"nowhere", "pipe", "real", "real/clip", "to folder", "to pipe"}));
}

TEST_F(ReadableEntriesTest, Walk_RootMissingOrAFile_IsRefused) {
    writeFile(at("file"), "");

    EXPECT_EQ(readableOf(at("gone")), std::nullopt);
    EXPECT_EQ(readableOf(at("file")), std::nullopt);
}

TEST_F(ReadableEntriesTest, Walk_ListingBreaksOff_GoesOnWithTheRest) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"bad/b", ""}, {"good/c", ""}});
    for (const int error : {EIO, ENOMEM}) {
        const FaultyFileSystem card(at("back"), at("card"),
                                    {.breakListingOf = "bad", .listingError = error});

        EXPECT_EQ(readableOf(card.path()), (Paths{"a", "bad", "good", "good/c"})) << error;
    }
}

TEST_F(ReadableEntriesTest, Walk_RootWhoseListingBreaksOff_IsWalkedAsFarAsItGoes) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"root/a", ""}, {"root/b/c", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.breakListingOf = "root"});

    EXPECT_EQ(readableOf(card.path() / "root"), Paths{});
}

TEST_F(ReadableEntriesTest, Walk_FolderThatTheDriveRefuses_IsToldOfAndNotWhatIsInIt) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"bad/b", ""}, {"good/c", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.failListingOf = "bad"});

    EXPECT_EQ(readableOf(card.path()), (Paths{"a", "bad", "good", "good/c"}));
    EXPECT_EQ(readableOf(card.path() / "bad"), std::nullopt);
}

TEST_F(ReadableEntriesTest, Walk_EntryWhoseAttributesCannotBeRead_IsToldOf) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"DCIM/bad", ""}, {"DCIM/good", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.failAttributesOf = "bad"});

    EXPECT_EQ(readableOf(card.path()), (Paths{"DCIM", "DCIM/bad", "DCIM/good", "a"}));
}

TEST_F(ReadableEntriesTest, Walk_DriveVanishes_EndsWithWhatWasRead) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"last/b", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.vanishAtListingOf = "last"});

    EXPECT_EQ(readableOf(card.path()), (Paths{"a", "last"}));
}

TEST_F(ReadableEntriesTest, Walk_ProcessOutOfDescriptors_NeverThrows) {
    writeTree(at(""), {{"DCIM/clip", ""}});

    const int status = statusOfForked([&] {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_NOFILE, &none);
        return readableOf(at("")) == std::nullopt ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(ReadableEntriesTest, Walk_Tree_LeavesAllAccessDates) {
    writeTree(at("card"), {{"A", "1"}, {"DCIM/100/B", "2"}});
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));

    readableOf(at("card"));

    EXPECT_EQ(snapshotOf(at("card")), before);
}
