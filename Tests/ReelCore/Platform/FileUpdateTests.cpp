// Files that are changed in place, and bytes that go from one file to another.

#include "FileCalls.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/Snapshot.h"

#include <cerrno>
#include <csignal>
#include <functional>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

constexpr std::int64_t blockSize = 8 << 20;

class FileUpdateTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

    File readable(const std::string& content) const {
        writeFile(at("source"), content);
        return File::openForReading(at("source"));
    }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(FileUpdateTest, OpenForUpdating_File_KeepsWhatIsThereAndCanBeReadAndWritten) {
    writeFile(at("clip"), "abcdef");
    std::filesystem::create_hard_link(at("clip"), at("other name"));

    File file = File::openForUpdating(at("clip"));

    EXPECT_EQ(readOn(file, 2), "ab");
    file.write(bytesOf("XY"));
    EXPECT_EQ(readFile(at("other name")), "abXYef") << "the same file, not one in its place";
}

TEST_F(FileUpdateTest, OpenForUpdating_MissingFile_IsNotMade) {
    EXPECT_EQ(codeOf([&] { File::openForUpdating(at("gone")); }), ENOENT);
    EXPECT_FALSE(std::filesystem::exists(at("gone")));
}

TEST_F(FileUpdateTest, OpenForUpdating_Link_IsNotFollowed) {
    writeFile(at("clip"), "abc");
    std::filesystem::create_symlink("clip", at("link"));

    EXPECT_EQ(codeOf([&] { File::openForUpdating(at("link")); }), ELOOP);
}

TEST_F(FileUpdateTest, OpenForUpdating_WhatIsNoFile_IsRefusedAndDoesNotWait) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0666), 0);

    EXPECT_EQ(codeOf([&] { File::openForUpdating(at("")); }), EISDIR);
    EXPECT_EQ(codeOf([&] { File::openForUpdating(at("pipe")); }), EINVAL);
    EXPECT_EQ(codeOf([&] { File::openForUpdating("/dev/null"); }), EINVAL);
}

TEST_F(FileUpdateTest, OpenForUpdating_WithoutTheRight_SaysSo) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    writeFile(at("clip"), "abc");
    ASSERT_EQ(::chmod(at("").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(at("clip").c_str(), 0644), 0);

    const int status = statusOfForked([&] {
        if (::setuid(12345) != 0) return 254;
        return codeOf([&] { File::openForUpdating(at("clip")); });
    });

    EXPECT_EQ(status, EACCES);
}

TEST_F(FileUpdateTest, OpenForUpdating_File_WaitsForItsDevice) {
    writeFile(at("clip"), "abc");

    const File file = File::openForUpdating(at("clip"));

    EXPECT_EQ(::fcntl(file.descriptor(), F_GETFL) & O_NONBLOCK, 0);
}

TEST_F(FileUpdateTest, WriteAt_AnyPlace_ChangesThatAloneAndLeavesTheCurrentPosition) {
    writeFile(at("clip"), "abcdefgh");
    File file = File::openForUpdating(at("clip"));
    readOn(file, 1);

    file.writeAt(4, bytesOf("XY"));
    file.writeAt(0, bytesOf("Z"));
    file.writeAt(2, bytesOf(""));

    EXPECT_EQ(readFile(at("clip")), "ZbcdXYgh");
    EXPECT_EQ(readOn(file, 2), "bc");
}

TEST_F(FileUpdateTest, WriteAt_AcrossAndBehindTheEnd_MakesTheFileLonger) {
    writeFile(at("clip"), "abc");
    File file = File::openForUpdating(at("clip"));

    file.writeAt(2, bytesOf("XY"));
    file.writeAt(6, bytesOf("Z"));

    EXPECT_EQ(readFile(at("clip")), std::string("abXY\0\0Z", 7));
}

TEST_F(FileUpdateTest, WriteAt_RefusedByTheSystem_SaysSo) {
    writeFile(at("clip"), "abc");
    File readOnly = File::openForReading(at("clip"));
    File file = File::openForUpdating(at("clip"));

    EXPECT_EQ(codeOf([&] { readOnly.writeAt(0, bytesOf("X")); }), EBADF);
    EXPECT_EQ(codeOf([&] { file.writeAt(-1, bytesOf("X")); }), EINVAL);
    EXPECT_EQ(readFile(at("clip")), "abc");
}

TEST_F(FileUpdateTest, WriteAt_PastALimit_WritesWhatHasRoomAndFails) {
    writeFile(at("clip"), "abc");
    const int status = statusOfForked([&] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 254;
        File file = File::openForUpdating(at("clip"));
        return codeOf([&] { file.writeAt(4000, bytesOf(std::string(200, 'x'))); });
    });

    EXPECT_EQ(status, EFBIG);
    EXPECT_EQ(std::filesystem::file_size(at("clip")), 4096U);
}

TEST_F(FileUpdateTest, Append_Range_GoesToTheCurrentPosition) {
    File source = readable("abcdefgh");
    readOn(source, 1);
    File file = File::create(at("clip"));
    file.write(bytesOf("1"));

    file.append(source, 2, 3);
    file.append(source, 0, 1);
    file.append(source, 8, 0);
    file.write(bytesOf("2"));

    EXPECT_EQ(readFile(at("clip")), "1cdea2");
    EXPECT_EQ(readOn(source, 2), "bc") << "the source's own position stays";
}

TEST_F(FileUpdateTest, Append_MoreThanABlock_IsByteForByte) {
    for (const std::int64_t size : {blockSize - 1, blockSize, blockSize + 1, 2 * blockSize + 5}) {
        const std::string content = noise(static_cast<std::size_t>(size) + 10);
        const File source = readable(content);

        File::create(at("clip")).append(source, 7, size);

        EXPECT_TRUE(readFile(at("clip")) == content.substr(7, static_cast<std::size_t>(size)))
            << size;
    }
}

TEST_F(FileUpdateTest, Append_SourceThatIsShorter_Fails) {
    const File source = readable("abcdef");
    File file = File::create(at("clip"));

    EXPECT_EQ(codeOf([&] { file.append(source, 4, 3); }), EIO);
    EXPECT_EQ(codeOf([&] { file.append(source, 100, 1); }), EIO);
}

TEST_F(FileUpdateTest, Append_Source_LeavesNoTrace) {
    writeFile(at("card/clip"), "abcdef");
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));

    File::create(at("copy")).append(File::openForReading(at("card/clip")), 0, 6);

    EXPECT_EQ(snapshotOf(at("card")), before);
}

TEST_F(FileUpdateTest, Append_DriveFailsHalfWay_KeepsTheBlocksBefore) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const std::string content = noise(2 * blockSize);
    writeFile(at("back/clip"), content);
    const FaultyFileSystem card(at("back"), at("card"), {.failReadAt = blockSize});
    const File source = File::openForReading(card.path() / "clip");
    File file = File::create(at("copy"));

    EXPECT_EQ(codeOf([&] { file.append(source, 0, 2 * blockSize); }), EIO);

    EXPECT_TRUE(readFile(at("copy")) == content.substr(0, blockSize));
}

TEST_F(FileUpdateTest, Append_TargetFailsHalfWay_SaysSo) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const File source = readable(noise(blockSize));
    std::filesystem::create_directory(at("back"));
    const FaultyFileSystem drive(at("back"), at("drive"),
                                 {.writeError = ENOSPC, .failWriteAfter = blockSize / 2});
    File file = File::create(drive.path() / "clip");

    EXPECT_EQ(codeOf([&] { file.append(source, 0, blockSize); }), ENOSPC);
}
