#include "ReelCore/Platform/FileSystem.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/Snapshot.h"

#include <algorithm>
#include <cerrno>

#include <gtest/gtest.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;
using namespace std::chrono_literals;

namespace {

class FileSystemTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

private:
    TemporaryFolder folder_;
};

std::vector<std::string> sorted(std::vector<std::string> names) {
    std::ranges::sort(names);
    return names;
}

}  // namespace

TEST_F(FileSystemTest, IsFolder_FoldersAndLinksToThem_AndNothingElse) {
    writeFile(at("file"), "");
    std::filesystem::create_directory(at("folder"));
    std::filesystem::create_symlink("folder", at("link"));
    std::filesystem::create_symlink("file", at("linkToFile"));

    EXPECT_TRUE(FileSystem::isFolder(at("folder")));
    EXPECT_TRUE(FileSystem::isFolder(at("link")));
    EXPECT_FALSE(FileSystem::isFolder(at("file")));
    EXPECT_FALSE(FileSystem::isFolder(at("linkToFile")));
    EXPECT_FALSE(FileSystem::isFolder(at("gone")));
}

TEST_F(FileSystemTest, Exists_AnythingAtAll_ADanglingLinkIncluded) {
    writeFile(at("file"), "");
    std::filesystem::create_symlink("gone", at("dangling"));

    EXPECT_TRUE(FileSystem::exists(at("file")));
    EXPECT_TRUE(FileSystem::exists(at("dangling")));
    EXPECT_TRUE(FileSystem::exists(at("")));
    EXPECT_FALSE(FileSystem::exists(at("gone")));
    EXPECT_FALSE(FileSystem::exists(at("file/below")));
}

TEST_F(FileSystemTest, LeadsSomewhere_ThroughLinks_ButNotADanglingOne) {
    writeFile(at("file"), "");
    std::filesystem::create_symlink("file", at("link"));
    std::filesystem::create_symlink("gone", at("dangling"));
    std::filesystem::create_symlink("round", at("round"));

    EXPECT_TRUE(FileSystem::leadsSomewhere(at("file")));
    EXPECT_TRUE(FileSystem::leadsSomewhere(at("link")));
    EXPECT_TRUE(FileSystem::leadsSomewhere(at("")));
    EXPECT_TRUE(FileSystem::leadsSomewhere("/dev/null"));
    EXPECT_FALSE(FileSystem::leadsSomewhere(at("dangling")));
    EXPECT_FALSE(FileSystem::leadsSomewhere(at("round")));
    EXPECT_FALSE(FileSystem::leadsSomewhere(at("gone")));
}

TEST_F(FileSystemTest, FlushFolder_WhereNamesCannotBeListed_DoesNothing) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    std::filesystem::create_directory(at("drop"));
    std::filesystem::permissions(at("drop"), std::filesystem::perms(0333));
    std::filesystem::permissions(at(""), std::filesystem::perms(0755));

    const int status = statusOfForked([this] {
        if (::setuid(12345) != 0) return 2;
        writeFile(at("drop/file"), "content");
        FileSystem::flushFolder(at("drop"));
        return 0;
    });

    EXPECT_EQ(status, 0);
    EXPECT_EQ(readFile(at("drop/file")), "content");
    EXPECT_THROW(FileSystem::flushFolder(at("gone")), SystemError);
}

TEST_F(FileSystemTest, IsExecutable_RegularFilesWithTheRight_AndLinksToThem) {
    const auto executable = std::filesystem::perms(0755);
    writeFile(at("tool"), "");
    std::filesystem::permissions(at("tool"), executable);
    writeFile(at("text"), "");
    std::filesystem::permissions(at("text"), std::filesystem::perms(0644));
    std::filesystem::create_directory(at("folder"));
    std::filesystem::create_symlink("tool", at("link"));
    std::filesystem::create_symlink("folder", at("linkToFolder"));

    EXPECT_TRUE(FileSystem::isExecutable(at("tool")));
    EXPECT_TRUE(FileSystem::isExecutable(at("link")));
    EXPECT_FALSE(FileSystem::isExecutable(at("text")));
    EXPECT_FALSE(FileSystem::isExecutable(at("folder")));
    EXPECT_FALSE(FileSystem::isExecutable(at("linkToFolder")));
    EXPECT_FALSE(FileSystem::isExecutable(at("gone")));
    EXPECT_FALSE(FileSystem::isExecutable(""));
}

TEST_F(FileSystemTest, SizeOf_RegularFiles_AndLinksToThem) {
    writeFile(at("file"), "12345");
    writeFile(at("large"), "");
    std::filesystem::create_symlink("file", at("link"));
    std::filesystem::resize_file(at("large"), 5'000'000'000);

    EXPECT_EQ(FileSystem::sizeOf(at("file")), 5);
    EXPECT_EQ(FileSystem::sizeOf(at("link")), 5);
    EXPECT_EQ(FileSystem::sizeOf(at("large")), 5'000'000'000);
}

TEST_F(FileSystemTest, SizeOf_WhatIsNoFile_IsAbsent) {
    std::filesystem::create_directory(at("folder"));
    std::filesystem::create_symlink("gone", at("dangling"));
    std::filesystem::create_symlink("folder", at("linkToFolder"));

    for (const std::string name : {"folder", "dangling", "linkToFolder", "gone", "file/below"}) {
        EXPECT_EQ(FileSystem::sizeOf(at(name)), std::nullopt) << name;
    }
    EXPECT_EQ(FileSystem::sizeOf("/dev/null"), std::nullopt);
}

TEST_F(FileSystemTest, Names_Folder_HoldsHiddenOnesButNotTheFolderItself) {
    writeTree(at(""), {{".hidden", ""}, {"a\nb", ""}, {"\xff", ""}, {"DCIM/below", ""}});

    EXPECT_EQ(sorted(FileSystem::names(at(""))), sorted({".hidden", "a\nb", "\xff", "DCIM"}));
}

TEST_F(FileSystemTest, Names_EmptyFolder_IsEmpty) {
    EXPECT_TRUE(FileSystem::names(at("")).empty());
}

TEST_F(FileSystemTest, Names_Folder_LeavesItsAccessDate) {
    writeFile(at("card/clip"), "");
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));

    FileSystem::names(at("card"));

    EXPECT_EQ(snapshotOf(at("card")), before);
}

TEST_F(FileSystemTest, Names_MissingFolderOrFile_SaysSoWithThePath) {
    writeFile(at("file"), "");
    try {
        FileSystem::names(at("gone"));
        FAIL() << "no error";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), ENOENT);
        EXPECT_EQ(error.description(), "No such file or directory: " + at("gone").native());
    }
    EXPECT_THROW(FileSystem::names(at("file")), SystemError);
}

TEST_F(FileSystemTest, CreateFolders_WithIntermediates_AndOnceMore) {
    FileSystem::createFolders(at("a/b/c"));
    FileSystem::createFolders(at("a/b/c"));
    FileSystem::createFolders(at("a/b/d/"));

    EXPECT_TRUE(std::filesystem::is_directory(at("a/b/c")));
    EXPECT_TRUE(std::filesystem::is_directory(at("a/b/d")));
}

TEST_F(FileSystemTest, CreateFolders_ThroughALinkToAFolder_IsFine) {
    std::filesystem::create_directory(at("real"));
    std::filesystem::create_symlink("real", at("link"));

    FileSystem::createFolders(at("link"));
    FileSystem::createFolders(at("link/below"));

    EXPECT_TRUE(std::filesystem::is_directory(at("real/below")));
}

TEST_F(FileSystemTest, CreateFolders_FileOrDanglingLinkInTheWay_IsRefused) {
    writeFile(at("file"), "precious");
    std::filesystem::create_symlink("gone", at("dangling"));

    EXPECT_THROW(FileSystem::createFolders(at("file")), SystemError);
    EXPECT_THROW(FileSystem::createFolders(at("file/below")), SystemError);
    EXPECT_THROW(FileSystem::createFolders(at("dangling")), SystemError);

    EXPECT_EQ(readFile(at("file")), "precious");
    EXPECT_FALSE(FileSystem::exists(at("gone")));
}

TEST_F(FileSystemTest, Identity_SameThingUnderTwoNames_IsEqual) {
    writeFile(at("one"), "");
    writeFile(at("other"), "");
    std::filesystem::create_hard_link(at("one"), at("two"));
    std::filesystem::create_symlink("one", at("link"));

    EXPECT_EQ(FileSystem::identity(at("one")), FileSystem::identity(at("two")));
    EXPECT_EQ(FileSystem::identity(at("one")), FileSystem::identity(at("link")));
    EXPECT_NE(FileSystem::identity(at("one")), FileSystem::identity(at("other")));
    EXPECT_EQ(FileSystem::identity(at("gone")), std::nullopt);
}

TEST_F(FileSystemTest, SetModificationDate_ToTheNanosecond_AlsoBefore1970) {
    writeFile(at("clip"), "");
    const Date dates[] = {Date(1'700'000'000s + 123'456'789ns), Date(-1'000s + 1ns), Date(0ns)};

    for (const Date date : dates) {
        FileSystem::setModificationDate(at("clip"), date);
        EXPECT_EQ(modificationDate(at("clip")), date);
    }
}

TEST_F(FileSystemTest, SetModificationDate_File_LeavesItsAccessDate) {
    writeFile(at("clip"), "");
    ageAccessDates(at("clip"));
    const Date accessed = snapshotOf(at("clip")).at("").accessed;

    FileSystem::setModificationDate(at("clip"), Date(5s));

    EXPECT_EQ(snapshotOf(at("clip")).at("").accessed, accessed);
}

TEST_F(FileSystemTest, SetModificationDate_MissingFile_SaysSo) {
    EXPECT_THROW(FileSystem::setModificationDate(at("gone"), Date(5s)), SystemError);
}

TEST_F(FileSystemTest, Standardised_RelativePathWithoutAWorkingDirectory_IsTheSystemsError) {
    const int status = statusOfForked([&] {
        std::filesystem::create_directory(at("gone"));
        std::filesystem::current_path(at("gone"));
        std::filesystem::remove(at("gone"));
        try {
            FileSystem::standardised("a");
            return 1;
        } catch (const SystemError&) {
            return 0;
        }
    });

    EXPECT_EQ(status, 0);
}

TEST(FileSystemStandardised, Path_DotsAndSlashes_GoAndLinksStay) {
    EXPECT_EQ(FileSystem::standardised("/a/./b/../c").native(), "/a/c");
    EXPECT_EQ(FileSystem::standardised("/a//b/").native(), "/a/b");
    EXPECT_EQ(FileSystem::standardised("/").native(), "/");
    EXPECT_EQ(FileSystem::standardised("/..").native(), "/");
    EXPECT_EQ(FileSystem::standardised("/a/\xff\n").native(), "/a/\xff\n");
    EXPECT_EQ(FileSystem::standardised("a"), std::filesystem::current_path() / "a");
}
