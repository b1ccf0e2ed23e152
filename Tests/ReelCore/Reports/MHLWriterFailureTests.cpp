#include "FullDrive.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Reports/MHLWriter.h"
#include "SampleOffload.h"
#include "Support/DocumentReaders.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

int codeOfFailure(const OffloadResult& result, const URL& folder) {
    try {
        MHLWriter{"keldobay", "0.1.0"}.write(result, folder);
    } catch (const SystemError& error) {
        return error.code();
    }
    return 0;
}

TEST(MHLWriter, ListThatCannotBeWritten_IsASystemError) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "A001.mhl");
    OffloadResult tooLong = sampleOffload({});
    tooLong.request.reelName = std::string(252, 'x');

    EXPECT_EQ(codeOfFailure(sampleOffload({}), folder.path() / "missing"), ENOENT);
    EXPECT_EQ(codeOfFailure(sampleOffload({}), folder.path()), EISDIR);
    EXPECT_EQ(codeOfFailure(tooLong, folder.path()), ENAMETOOLONG);
}

TEST(MHLWriter, FullDrive_IsLeftWithoutAFileOfTheListsName) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 8);
    fill(drive.path());

    EXPECT_EQ(codeOfFailure(sampleOffload({sampleFile("a.mov", 5)}), drive.path()), ENOSPC);

    EXPECT_FALSE(std::filesystem::exists(drive.path() / "A001.mhl"));
    EXPECT_TRUE(std::filesystem::exists(drive.path() / "last copy.mov"));
}

TEST(MHLWriter, DriveThatTakesABeginningOnly_IsLeftWithoutIt) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(backing.path(), mountPoint.path(), {.failWriteAt = 300});

    EXPECT_EQ(codeOfFailure(sampleOffload({sampleFile("a.mov", 5)}), drive.path()), EIO);

    EXPECT_FALSE(std::filesystem::exists(backing.path() / "A001.mhl"));
}

TEST(MHLWriter, DriveThatFailsInTheMiddleOfALongList_IsLeftWithoutIt) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(backing.path(), mountPoint.path(), {.failWriteAt = 300'000});
    const OffloadResult result =
        sampleOffload(std::vector<FileVerification>(2000, sampleFile("a.mov", 5)));

    EXPECT_EQ(codeOfFailure(result, drive.path()), EIO);

    EXPECT_FALSE(std::filesystem::exists(backing.path() / "A001.mhl"));
}

TEST(MHLWriter, ListThatDoesNotReachTheDevice_IsTakenAway) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(backing.path(), mountPoint.path(), {.failFlush = true});

    EXPECT_EQ(codeOfFailure(sampleOffload({sampleFile("a.mov", 5)}), drive.path()), EIO);

    EXPECT_FALSE(std::filesystem::exists(backing.path() / "A001.mhl"));
}

TEST(MHLWriter, NameThatDoesNotReachTheDevice_IsAFailureToo) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(backing.path(), mountPoint.path(), {.folderFlushError = EIO});

    EXPECT_EQ(codeOfFailure(sampleOffload({sampleFile("a.mov", 5)}), drive.path()), EIO);

    EXPECT_FALSE(std::filesystem::exists(backing.path() / "A001.mhl"));
}

TEST(MHLWriter, FileSystemThatCannotFlushFolders_GetsItsList) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(backing.path(), mountPoint.path(), {.folderFlushError = EINVAL});

    EXPECT_EQ(codeOfFailure(sampleOffload({sampleFile("a.mov", 5)}), drive.path()), 0);

    EXPECT_EQ(xmlFaults(backing.path() / "A001.mhl"), "");
}

}  // namespace
