#include "ReelCore/Platform/FolderWalk.h"

#include "FileCalls.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/Snapshot.h"

#include <cerrno>
#include <functional>
#include <map>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;
using namespace std::chrono_literals;

namespace {

constexpr uid_t somebodyElse = 12345;

/// Path to size.
using Found = std::map<std::string, std::int64_t>;

std::optional<Found> walk(const URL& root) {
    Found found;
    const auto opened = walkFolder(
        root, [](std::string_view name) { return name == "ignored"; },
        [&](const WalkedFile& file) { found[file.relativePath] = file.size; });
    if (!opened) return std::nullopt;
    return found;
}

int codeOfWalk(const URL& root) {
    return codeOf([&] { walk(root); });
}

class FolderWalkTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(FolderWalkTest, Walk_Tree_MeetsEveryRegularFileWithItsSize) {
    writeTree(at(""),
              {{"A.MOV", "12345"}, {".hidden", "1"}, {"DCIM/100/._A", ""}, {"x/y/z", "12"}});

    EXPECT_EQ(walk(at("")),
              (Found{{"A.MOV", 5}, {".hidden", 1}, {"DCIM/100/._A", 0}, {"x/y/z", 2}}));
}

TEST_F(FolderWalkTest, Walk_File_TellsItsDateToTheNanosecond) {
    writeFile(at("clip"), "");
    const Date date(1'700'000'000s + 987'654'321ns);
    setModificationDate(at("clip"), date);

    std::optional<Date> told;
    walkFolder(
        at(""), [](auto) { return false; },
        [&](const WalkedFile& file) { told = file.modificationDate; });

    EXPECT_EQ(told, date);
}

TEST_F(FolderWalkTest, Walk_RootMissingOrAFile_IsRefused) {
    writeFile(at("file"), "");

    EXPECT_EQ(walk(at("gone")), std::nullopt);
    EXPECT_EQ(walk(at("file")), std::nullopt);
}

TEST_F(FolderWalkTest, Walk_LinksPipesSocketsAndDevices_ArePassedOverUnopened) {
    writeTree(at(""), {{"real/clip", "1"}});
    std::filesystem::create_symlink("real/clip", at("linkToFile"));
    std::filesystem::create_directory_symlink("real", at("linkToFolder"));
    std::filesystem::create_directory_symlink("..", at("real/loop"));
    std::filesystem::create_symlink("gone", at("dangling"));
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0666), 0);
    ASSERT_EQ(::mknod(at("socket").c_str(), S_IFSOCK | 0666, 0), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::mknod(at("device").c_str(), S_IFCHR | 0666, ::makedev(1, 3)), 0);
        ASSERT_EQ(::mknod(at("disk").c_str(), S_IFBLK | 0666, ::makedev(250, 250)), 0);
    }

    EXPECT_EQ(walk(at("")), (Found{{"real/clip", 1}}));
}

TEST_F(FolderWalkTest, Walk_RootIsALinkToAFolder_IsFollowed) {
    writeTree(at("real"), {{"clip", "1"}});
    std::filesystem::create_directory_symlink("real", at("link"));

    EXPECT_EQ(walk(at("link")), (Found{{"clip", 1}}));
}

TEST_F(FolderWalkTest, Walk_IgnoredNames_AreLeftOutWithAllBelowAtAnyDepth) {
    writeTree(at(""), {{"ignored/a", ""}, {"x/ignored/y/b", ""}, {"y/ignored", ""}, {"c", ""}});

    EXPECT_EQ(walk(at("")), (Found{{"c", 0}}));
}

TEST_F(FolderWalkTest, Walk_Tree_LeavesAllAccessDates) {
    writeTree(at("card"), {{"A", "1"}, {"DCIM/100/B", "2"}});
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));

    walk(at("card"));

    EXPECT_EQ(snapshotOf(at("card")), before);
}

TEST_F(FolderWalkTest, Walk_UnreadableFolders_AreCountedAndTheFirstByItsPathIsTold) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"z/bad/1", ""}, {"a/bad/2", ""}, {"m/good/3", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.failListingOf = "bad"});
    const auto unreadBelow = [](const URL& root) {
        return walkFolder(
            root, [](auto) { return false; }, [](const WalkedFile&) {});
    };

    EXPECT_EQ(unreadBelow(card.path()), (UnreadFolders{2, "a/bad"}));
    EXPECT_EQ(unreadBelow(card.path() / "m"), UnreadFolders{});
}

TEST_F(FolderWalkTest, Walk_UnreadableFolder_IsPassedOver) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    writeTree(at(""), {{"open/a", ""}, {"shut/b", ""}});
    ASSERT_EQ(::chmod(at("").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(at("shut").c_str(), 0700), 0);

    const int status = statusOfForked([&] {
        if (::setuid(somebodyElse) != 0) return 2;
        return walk(at("")) == Found{{"open/a", 0}} && !walk(at("shut")) ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(FolderWalkTest, Walk_FolderThatTheDriveRefuses_IsPassedOverInSilence) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"bad/b", ""}, {"bad/deep/c", ""}, {"good/d", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.failListingOf = "bad"});

    EXPECT_EQ(walk(card.path()), (Found{{"a", 0}, {"good/d", 0}}));
}

TEST_F(FolderWalkTest, Walk_FileSystemThatHidesTypesInItsListings_MeetsTheSameFiles) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", "1"}, {"DCIM/100/b", "12"}, {"ignored/c", ""}});
    std::filesystem::create_symlink("a", at("back/link"));
    std::filesystem::create_directory_symlink("DCIM", at("back/linkToFolder"));
    ASSERT_EQ(::mkfifo(at("back/pipe").c_str(), 0666), 0);
    const FaultyFileSystem card(at("back"), at("card"), {.hideTypes = true});

    EXPECT_EQ(walk(card.path()), (Found{{"a", 1}, {"DCIM/100/b", 2}}));
}

TEST_F(FolderWalkTest, Walk_AttributesThatCannotBeRead_EndItWithThatError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"DCIM/bad", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.failAttributesOf = "bad"});

    try {
        walk(card.path());
        FAIL() << "no error";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), EIO);
        EXPECT_EQ(error.description(),
                  "Input/output error: " + (card.path() / "DCIM/bad").native());
    }
}

TEST_F(FolderWalkTest, Walk_FolderWhoseAttributesCannotBeRead_EndsItWithThatError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"bad/b", ""}});
    const FaultyFileSystem card(at("back"), at("card"), {.failAttributesOf = "bad"});

    EXPECT_EQ(codeOfWalk(card.path()), EIO);
}

TEST_F(FolderWalkTest, Walk_ListingBreaksOff_FailsRatherThanTakeHalfForAll) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"bad/b", ""}});
    for (const int error : {EIO, ENOMEM}) {
        const FaultyFileSystem card(at("back"), at("card"),
                                    {.breakListingOf = "bad", .listingError = error});
        EXPECT_EQ(codeOfWalk(card.path()), error);
    }
}

TEST_F(FolderWalkTest, Walk_FolderBecomesALinkBeforeItIsRead_IsNotFollowed) {
    writeTree(at("elsewhere"), {{"secret", "1"}});
    writeTree(at("card"), {{"p/clip", ""}, {"q/clip", ""}});
    Found found;

    walkFolder(
        at("card"), [](auto) { return false; },
        [&](const WalkedFile& file) {
            found[file.relativePath] = file.size;
            const URL other = at("card") / (file.relativePath == "p/clip" ? "q" : "p");
            std::filesystem::remove_all(other);
            std::filesystem::create_directory_symlink(at("elsewhere"), other);
        });

    EXPECT_EQ(found.size(), 1U);
    EXPECT_FALSE(found.contains("p/secret") || found.contains("q/secret"));
}

// A folder that only this process can't open is no fault of the card's, and its files would be
// missing from every copy without a word.
TEST_F(FolderWalkTest, Walk_ProcessOutOfDescriptors_FailsAndDoesNotLeaveFoldersOut) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs descriptors of its own when an exception is thrown";
#endif
    writeTree(at(""), {{"DCIM/clip", "1"}});
    const auto takeAllDescriptors = [] {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_NOFILE, &none);
    };

    const int beforeTheRoot = statusOfForked([&] {
        takeAllDescriptors();
        return codeOfWalk(at(""));
    });
    const int afterTheRoot = statusOfForked([&] {
        return codeOf([&] {
            walkFolder(
                at(""),
                [&](auto) {
                    takeAllDescriptors();
                    return false;
                },
                [](const WalkedFile&) {});
        });
    });

    EXPECT_EQ(beforeTheRoot, EMFILE);
    EXPECT_EQ(afterTheRoot, EMFILE);
}

TEST_F(FolderWalkTest, Walk_FolderWithAPathTooLongToOpen_Fails) {
    const std::string part(200, 'd');
    const int status = statusOfForked([&] {
        std::filesystem::current_path(at(""));
        for (int depth = 0; depth < 25; ++depth) {
            if (::mkdir(part.c_str(), 0777) != 0 || ::chdir(part.c_str()) != 0) return 254;
        }
        const int file = ::open("clip", O_WRONLY | O_CREAT, 0666);
        return file >= 0 ? 0 : 253;
    });
    ASSERT_EQ(status, 0);

    EXPECT_THROW(walk(at("")), SystemError);
}
