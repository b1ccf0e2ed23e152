#include "ReelCore/Models/UniquePath.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"

#include <array>
#include <cerrno>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using namespace ReelCore;
using TestSupport::FaultyFileSystem;
using TestSupport::readFile;
using TestSupport::TemporaryFolder;
using TestSupport::writeFile;
using TestSupport::writeTree;

/// The system's number for the failure; 0 without one.
int codeOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const SystemError& error) {
        return error.code();
    }
    return 0;
}

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

TEST(UniqueOutputURL, NameThatCannotBeLookedAt_IsAFailure) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"back/clip.mov", "somebody's clip"}});
    const FaultyFileSystem drive(folder.path() / "back", folder.path() / "drive",
                                 {.failAttributesOf = "clip.mov"});

    EXPECT_EQ(codeOf([&] { uniqueOutputURL(drive.path() / "clip.mov"); }), EIO);
    EXPECT_EQ(uniqueOutputURL(drive.path() / "other.mov"), drive.path() / "other.mov");
}

TEST(UniqueOutputURL, FolderOfAnotherUser_IsAFailure) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"shut/clip.mov", ""}});
    std::filesystem::permissions(folder.path() / "shut", std::filesystem::perms(0700));

    const int status = TestSupport::statusOfForked([&] {
        constexpr uid_t somebodyElse = 12345;
        if (::setuid(somebodyElse) != 0) return 255;
        return codeOf([&] { uniqueOutputURL(folder.path() / "shut/clip.mov"); });
    });

    EXPECT_EQ(status, EACCES);
}

TEST(UniqueOutputURL, NumberThatMakesTheNameTooLong_IsAFailure) {
    const TemporaryFolder folder;
    const std::string longest = std::string(251, 'a') + ".mov";
    writeTree(folder.path(), {{longest, ""}});

    EXPECT_EQ(codeOf([&] { uniqueOutputURL(folder.path() / longest); }), ENAMETOOLONG);
}

TEST(ReservedOutput, FreeName_IsAnEmptyFileThatGoesAtTheEnd) {
    const TemporaryFolder folder;
    {
        const ReservedOutput output(folder.path() / "clip.mov");

        EXPECT_EQ(output.url(), folder.path() / "clip.mov");
        EXPECT_EQ(readFile(output.url()), "");
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(ReservedOutput, TakenNames_AreLeftAlone) {
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"clip.mov", "somebody's"}});
    std::filesystem::create_directory(folder.path() / "clip 2.mov");
    std::filesystem::create_symlink("nowhere", folder.path() / "clip 3.mov");
    std::filesystem::create_symlink("clip.mov", folder.path() / "clip 4.mov");

    const ReservedOutput output(folder.path() / "clip.mov");
    const ReservedOutput another(folder.path() / "clip.mov");

    EXPECT_EQ(output.url(), folder.path() / "clip 5.mov");
    EXPECT_EQ(another.url(), folder.path() / "clip 6.mov");
    EXPECT_EQ(readFile(folder.path() / "clip.mov"), "somebody's");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "nowhere"));
}

TEST(ReservedOutput, ManyAtOnce_GetANameEach) {
    const TemporaryFolder folder;
    std::array<std::vector<URL>, 4> names;
    {
        std::vector<std::jthread> threads;
        for (std::vector<URL>& own : names) {
            threads.emplace_back([&] {
                for (int i = 0; i < 50; ++i) {
                    const ReservedOutput output(folder.path() / "clip.mov");
                    own.push_back(output.url());
                    writeFile(output.url(), output.url().native());
                }
            });
        }
    }

    std::set<URL> all;
    for (const std::vector<URL>& own : names) all.insert(own.begin(), own.end());
    EXPECT_EQ(all.size(), 200U);
    for (const URL& name : all) EXPECT_EQ(readFile(name), name.native());
}

TEST(ReservedOutput, WhatWasWritten_Stays) {
    const TemporaryFolder folder;
    const URL url = folder.path() / "clip.mov";
    {
        const ReservedOutput output(url);
        writeFile(output.url(), "p");
    }
    EXPECT_EQ(readFile(url), "p");
}

TEST(ReservedOutput, EmptyFileOfSomebodyElse_Stays) {
    const TemporaryFolder folder;
    const URL url = folder.path() / "clip.mov";
    {
        const ReservedOutput output(url);
        std::filesystem::remove(url);
        writeFile(url, "");
    }
    EXPECT_TRUE(std::filesystem::exists(url));
}

TEST(ReservedOutput, FileThatIsGone_IsNoMatter) {
    const TemporaryFolder folder;
    const ReservedOutput output(folder.path() / "clip.mov");

    EXPECT_TRUE(std::filesystem::remove(output.url()));
}

TEST(ReservedOutput, NoFileCanBeMade_IsTheSystemsFailure) {
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"file", ""}});
    const std::string tooLong = std::string(300, 'a') + ".mov";

    EXPECT_EQ(codeOf([&] { ReservedOutput(folder.path() / "missing/clip.mov"); }), ENOENT);
    EXPECT_EQ(codeOf([&] { ReservedOutput(folder.path() / "file/clip.mov"); }), ENOTDIR);
    EXPECT_EQ(codeOf([&] { ReservedOutput(folder.path() / tooLong); }), ENAMETOOLONG);
}

TEST(ReservedOutput, NameThatCannotBeLookedAt_IsTheSystemsFailure) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"back/clip.mov", "somebody's clip"}});
    const FaultyFileSystem drive(folder.path() / "back", folder.path() / "drive",
                                 {.failAttributesOf = "clip.mov"});

    EXPECT_EQ(codeOf([&] { ReservedOutput(drive.path() / "clip.mov"); }), EIO);
    EXPECT_EQ(readFile(folder.path() / "back/clip.mov"), "somebody's clip");
}

}  // namespace
