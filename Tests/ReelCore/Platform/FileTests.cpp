#include "ReelCore/Platform/File.h"

#include "FileCalls.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/Snapshot.h"

#include <cerrno>
#include <csignal>
#include <functional>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

constexpr uid_t somebodyElse = 12345;

void makeSocket(const URL& path) {
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::close(descriptor);
}

class FileTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(FileTest, Read_InPieces_GoesOnWhereItStoodAndEndsWithNothing) {
    writeFile(at("clip"), "abcdef");

    File file = File::openForReading(at("clip"));

    EXPECT_EQ(readOn(file, 4), "abcd");
    EXPECT_EQ(readOn(file, 4), "ef");
    EXPECT_EQ(readOn(file, 4), "");
}

TEST_F(FileTest, OpenForReading_MissingFile_SaysSo) {
    EXPECT_EQ(codeOf([&] { File::openForReading(at("gone")); }), ENOENT);
}

TEST_F(FileTest, OpenForReading_LinkToAFile_IsRefused) {
    writeFile(at("clip"), "abc");
    std::filesystem::create_symlink("clip", at("link"));

    EXPECT_EQ(codeOf([&] { File::openForReading(at("link")); }), ELOOP);
}

TEST_F(FileTest, OpenForReading_LinkToBeFollowed_LeadsToAFileAndNothingElse) {
    writeFile(at("clip"), "abc");
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0666), 0);
    std::filesystem::create_symlink("clip", at("to file"));
    std::filesystem::create_symlink("pipe", at("to pipe"));
    std::filesystem::create_symlink("gone", at("nowhere"));

    File file = File::openForReading(at("to file"), FileLinks::follow);

    EXPECT_EQ(readOn(file, 4), "abc");
    EXPECT_EQ(codeOf([&] { File::openForReading(at("to pipe"), FileLinks::follow); }), EINVAL);
    EXPECT_EQ(codeOf([&] { File::openForReading(at("nowhere"), FileLinks::follow); }), ENOENT);
}

TEST_F(FileTest, OpenForReading_PipeWithoutAWriter_IsRefusedAndDoesNotWait) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0666), 0);

    EXPECT_EQ(codeOf([&] { File::openForReading(at("pipe")); }), EINVAL);
}

TEST_F(FileTest, Open_File_WaitsForItsDevice) {
    const auto waits = [](const File& file) {
        return (::fcntl(file.descriptor(), F_GETFL) & O_NONBLOCK) == 0;
    };

    EXPECT_TRUE(waits(File::create(at("clip"))));
    EXPECT_TRUE(waits(File::openForReading(at("clip"))));
}

TEST_F(FileTest, OpenForReading_FolderSocketOrDevice_IsRefused) {
    makeSocket(at("socket"));

    EXPECT_EQ(codeOf([&] { File::openForReading(at("")); }), EINVAL);
    EXPECT_EQ(codeOf([&] { File::openForReading(at("socket")); }), ENXIO);
    EXPECT_EQ(codeOf([&] { File::openForReading("/dev/null"); }), EINVAL);
}

TEST_F(FileTest, Read_WholeFile_LeavesItsAccessDate) {
    writeFile(at("clip"), "abcdef");
    ageAccessDates(at(""));
    const Snapshot before = snapshotOf(at("clip"));

    File file = File::openForReading(at("clip"));
    readOn(file, 6);

    EXPECT_EQ(snapshotOf(at("clip")), before);
    readFile(at("clip"));
    EXPECT_NE(snapshotOf(at("clip")), before) << "a plain read leaves no trace here either";
}

TEST_F(FileTest, Read_SomebodyElsesFile_IsNotHinderedByTheAccessDate) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    writeFile(at("clip"), "abcdef");
    ASSERT_EQ(::chmod(at("").c_str(), 0755), 0);

    const int status = statusOfForked([&] {
        if (::setuid(somebodyElse) != 0) return 2;
        File file = File::openForReading(at("clip"));
        return readOn(file, 6) == "abcdef" ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(FileTest, Create_NewFile_HoldsWhatIsWrittenInOrder) {
    File file = File::create(at("clip"));
    file.write(bytesOf("abc"));
    file.write(bytesOf(""));
    file.write(bytesOf("def"));
    file.flush();

    EXPECT_EQ(readFile(at("clip")), "abcdef");
}

TEST_F(FileTest, Create_OverAFile_MakesAFreshOneAndLeavesItsOtherName) {
    writeFile(at("old"), "precious");
    std::filesystem::create_hard_link(at("old"), at("clip"));

    File::create(at("clip")).write(bytesOf("new"));

    EXPECT_EQ(readFile(at("clip")), "new");
    EXPECT_EQ(readFile(at("old")), "precious");
}

TEST_F(FileTest, Create_OverAReadOnlyFile_ReplacesIt) {
    writeFile(at("clip"), "a longer old text");
    ASSERT_EQ(::chmod(at("clip").c_str(), 0444), 0);

    File::create(at("clip")).write(bytesOf("new"));

    EXPECT_EQ(readFile(at("clip")), "new");
}

TEST_F(FileTest, Create_OverALink_ReplacesTheLinkAndLeavesWhatItNames) {
    writeFile(at("old"), "precious");
    std::filesystem::create_symlink("old", at("clip"));

    File::create(at("clip")).write(bytesOf("new"));

    EXPECT_FALSE(std::filesystem::is_symlink(at("clip")));
    EXPECT_EQ(readFile(at("clip")), "new");
    EXPECT_EQ(readFile(at("old")), "precious");
}

TEST_F(FileTest, Create_OverAPipe_ReplacesItAndDoesNotWait) {
    ASSERT_EQ(::mkfifo(at("clip").c_str(), 0666), 0);

    File::create(at("clip")).write(bytesOf("new"));

    EXPECT_EQ(readFile(at("clip")), "new");
}

TEST_F(FileTest, Create_OverAFolder_IsRefusedAndTheFolderStays) {
    writeFile(at("clip/inside"), "precious");

    EXPECT_EQ(codeOf([&] { File::create(at("clip")); }), EISDIR);

    EXPECT_EQ(readTree(at("")), (FolderTree{{"clip/inside", "precious"}}));
}

TEST_F(FileTest, Create_InAMissingFolder_SaysSo) {
    EXPECT_EQ(codeOf([&] { File::create(at("gone/clip")); }), ENOENT);
}

namespace {

/// A folder that another user can't remove names from, but whose file belongs to that user.
class FileInForeignFolderTest : public FileTest {
protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
        writeFile(at("clip"), "a longer old text");
        ASSERT_EQ(::chmod(at("").c_str(), 0755), 0);
        ASSERT_EQ(::chown(at("clip").c_str(), somebodyElse, somebodyElse), 0);
    }

    static int createAsSomebodyElse(const URL& path) {
        return statusOfForked([&] {
            if (::setuid(somebodyElse) != 0) return 254;
            return codeOf([&] { File::create(path).write(bytesOf("new")); });
        });
    }
};

}  // namespace

TEST_F(FileInForeignFolderTest, Create_OldCannotBeRemoved_IsEmptiedAndWrittenAnew) {
    EXPECT_EQ(createAsSomebodyElse(at("clip")), 0);
    EXPECT_EQ(readFile(at("clip")), "new");
}

TEST_F(FileInForeignFolderTest, Create_OldCannotBeRemovedAndHasASecondName_IsRefused) {
    std::filesystem::create_hard_link(at("clip"), at("precious"));

    EXPECT_EQ(createAsSomebodyElse(at("clip")), EEXIST);
    EXPECT_EQ(readFile(at("precious")), "a longer old text");
}

TEST_F(FileInForeignFolderTest, Create_LinkThatCannotBeRemoved_IsNotFollowed) {
    std::filesystem::create_symlink("clip", at("link"));

    EXPECT_EQ(createAsSomebodyElse(at("link")), ELOOP);
    EXPECT_EQ(readFile(at("clip")), "a longer old text");
}

TEST_F(FileTest, Write_PastALimit_WritesWhatHasRoomAndFails) {
    const int status = statusOfForked([&] {
        // The test's own small limit, so that no disk need be filled.
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 254;
        File file = File::create(at("clip"));
        return codeOf([&] { file.write(bytesOf(std::string(8192, 'x'))); });
    });

    EXPECT_EQ(status, EFBIG);
    EXPECT_EQ(std::filesystem::file_size(at("clip")), 4096U) << "what had room is there";
}

TEST_F(FileTest, Move_OpenFile_GoesOnWithTheSameDescriptor) {
    writeFile(at("clip"), "abcdef");
    File first = File::openForReading(at("clip"));
    readOn(first, 2);

    File second = std::move(first);

    EXPECT_EQ(readOn(second, 4), "cdef");
}

TEST_F(FileTest, Reserve_EmptyFile_TakesRoomAndLeavesTheSize) {
    File file = File::create(at("log"));

    file.reserve(65'536);

    struct stat status {};
    ASSERT_EQ(::stat(at("log").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 0);
    EXPECT_GE(status.st_blocks * 512, 65'536);
    file.write(bytesOf("abc"));
    EXPECT_EQ(readFile(at("log")), "abc");
}

TEST_F(FileTest, Hints_OnAnyFile_ChangeNothing) {
    File file = File::create(at("clip"));
    file.write(bytesOf("abc"));

    file.beginWriteback(0, 3);
    file.expectSequentialRead();
    file.dropFromCache(0, 0);

    EXPECT_EQ(readFile(at("clip")), "abc");
}
