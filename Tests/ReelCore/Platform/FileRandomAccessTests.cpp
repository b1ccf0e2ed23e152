#include "FileCalls.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FolderTree.h"

#include <cerrno>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

constexpr std::int64_t mebibyte = 1 << 20;

class FileRandomAccessTest : public testing::Test {
protected:
    File fileWith(std::string_view content) const {
        writeFile(path(), content);
        return File::openForReading(path());
    }

    URL path() const { return folder_.path() / "clip"; }

private:
    TemporaryFolder folder_;
};

std::string readAt(const File& file, std::int64_t offset, std::size_t upTo) {
    std::string text(upTo, '\0');
    text.resize(file.readAt(offset, std::as_writable_bytes(std::span(text))));
    return text;
}

/// A file of 4 MiB, of which only the second MiB is stored.
class SparseFileTest : public FileRandomAccessTest {
protected:
    void SetUp() override {
        File sparse = File::create(path());
        ASSERT_EQ(::ftruncate(sparse.descriptor(), mebibyte), 0);
        ASSERT_EQ(::lseek(sparse.descriptor(), mebibyte, SEEK_SET), mebibyte);
        const std::string stored(mebibyte, 'x');
        sparse.write(std::as_bytes(std::span(stored)));
        ASSERT_EQ(::ftruncate(sparse.descriptor(), 4 * mebibyte), 0);
        struct stat status {};
        ASSERT_EQ(::fstat(sparse.descriptor(), &status), 0);
        if (status.st_blocks * 512 >= 4 * mebibyte) {
            GTEST_SKIP() << "needs a file system with holes below the temporary folder";
        }
    }
};

}  // namespace

TEST_F(FileRandomAccessTest, ReadAt_AnyPlace_LeavesTheCurrentPosition) {
    File file = fileWith("abcdef");
    readOn(file, 1);

    EXPECT_EQ(readAt(file, 3, 2), "de");
    EXPECT_EQ(readAt(file, 0, 2), "ab");
    EXPECT_EQ(readOn(file, 2), "bc");
}

TEST_F(FileRandomAccessTest, ReadAt_AcrossTheEnd_GivesWhatIsThere) {
    const File file = fileWith("abcdef");

    EXPECT_EQ(readAt(file, 4, 10), "ef");
    EXPECT_EQ(readAt(file, 6, 10), "");
    EXPECT_EQ(readAt(file, mebibyte, 10), "");
    EXPECT_EQ(readAt(file, 0, 0), "");
}

TEST_F(FileRandomAccessTest, ReadAt_RefusedByTheSystem_SaysSo) {
    const File writeOnly = File::create(path());

    try {
        readAt(writeOnly, 0, 1);
        FAIL() << "no error";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), EBADF);
    }
    EXPECT_THROW(readAt(fileWith("abc"), -1, 1), SystemError);
}

TEST_F(FileRandomAccessTest, Size_IsWhatTheFileHasNow) {
    File file = File::create(path());
    EXPECT_EQ(file.size(), 0);

    file.write(std::as_bytes(std::span(std::string_view("abc"))));

    EXPECT_EQ(file.size(), 3);
}

TEST_F(FileRandomAccessTest, NextStored_FullFile_IsTheOffsetUpToTheEnd) {
    const File file = fileWith("abcdef");

    EXPECT_EQ(file.nextStored(0), 0);
    EXPECT_EQ(file.nextStored(5), 5);
    EXPECT_EQ(file.nextStored(6), 6);
    EXPECT_EQ(file.nextStored(100), 6) << "behind the end nothing is stored";
}

TEST_F(FileRandomAccessTest, NextStored_EmptyFile_IsItsEnd) {
    EXPECT_EQ(fileWith("").nextStored(0), 0);
}

TEST_F(FileRandomAccessTest, NextStored_AnyPlace_LeavesTheCurrentPosition) {
    File file = fileWith("abcdef");
    readOn(file, 1);

    file.nextStored(4);
    file.nextStored(100);

    EXPECT_EQ(readOn(file, 2), "bc");
}

TEST_F(FileRandomAccessTest, NextStored_FileSystemThatKnowsNoHoles_IsTheOffset) {
    EXPECT_EQ(File::openForReading("/proc/version").nextStored(5), 5);
}

TEST_F(SparseFileTest, NextStored_InAHole_IsWhereItEnds) {
    const File file = File::openForReading(path());

    EXPECT_EQ(file.nextStored(0), mebibyte);
    EXPECT_EQ(file.nextStored(mebibyte - 1), mebibyte);
    EXPECT_EQ(file.nextStored(mebibyte), mebibyte);
    EXPECT_EQ(file.nextStored(2 * mebibyte - 1), 2 * mebibyte - 1);
}

TEST_F(SparseFileTest, NextStored_NothingBehind_IsTheSize) {
    const File file = File::openForReading(path());

    EXPECT_EQ(file.nextStored(2 * mebibyte), 4 * mebibyte);
    EXPECT_EQ(file.nextStored(4 * mebibyte), 4 * mebibyte);
}
