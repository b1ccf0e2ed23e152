#include "ReelCore/Platform/DeviceReader.h"

#include "ReelCore/Platform/AlignedBuffer.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FileCache.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/LoopMount.h"
#include "Support/Threads.h"
#include "Support/Tool.h"

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

constexpr std::size_t blockSize = 65536;

std::string textOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string readAll(const URL& path, std::size_t size = blockSize) {
    File file = File::openForReading(path);
    const DriveCache cache(file.descriptor());
    const AlignedBuffer memory(size);
    WorkerThread worker;
    DeviceReader reader(std::move(file), cache, memory.bytes().first(size), worker);
    std::string content;
    for (auto block = reader.next(); !block.empty(); block = reader.next()) {
        content += textOf(block);
    }
    return content;
}

int codeOfReading(const URL& path) {
    try {
        readAll(path);
        return 0;
    } catch (const SystemError& error) {
        return error.code();
    }
}

std::string withBitFlipped(std::string content, std::size_t at) {
    content[at] = static_cast<char>(content[at] ^ 1);
    return content;
}

}  // namespace

TEST(DeviceReader, Read_AnySizeAndBlock_GivesTheWholeFileOnce) {
    TemporaryFolder folder;
    for (const std::size_t size : {0U, 1U, 511U, 4095U, 4096U, 4097U, 65536U, 131'072U, 200'001U}) {
        const std::string content = noise(size);
        writeFile(folder.path() / "clip", content);
        for (const std::size_t block : {1U, 4096U, 5000U, 8192U, 10'000U, 65536U, 1U << 20U}) {
            EXPECT_EQ(readAll(folder.path() / "clip", block), content) << size << " by " << block;
        }
    }
}

TEST(DeviceReader, Read_AfterTheEnd_GivesNothingAgain) {
    TemporaryFolder folder;
    writeFile(folder.path() / "clip", "abc");
    File file = File::openForReading(folder.path() / "clip");
    const DriveCache cache(file.descriptor());
    const AlignedBuffer memory(blockSize);
    WorkerThread worker;
    DeviceReader reader(std::move(file), cache, memory.bytes(), worker);

    EXPECT_EQ(reader.next().size(), 3U);
    EXPECT_TRUE(reader.next().empty());
    EXPECT_TRUE(reader.next().empty());
}

TEST(DeviceReader, Read_SystemWithoutThreads_GivesTheWholeFile) {
    TemporaryFolder folder;
    const std::string content = noise(200'001);
    writeFile(folder.path() / "clip", content);
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);

    EXPECT_EQ(statusOfForked([&] {
                  if (!leaveNoThreads()) return 100;
                  return readAll(folder.path() / "clip") == content ? 0 : 1;
              }),
              0);
}

TEST(DeviceReader, Open_WhatIsNoRegularFile_IsRefused) {
    TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder.path() / "pipe").c_str(), 0666), 0);

    EXPECT_EQ(codeOfReading(folder.path() / "gone"), ENOENT);
    EXPECT_EQ(codeOfReading(folder.path() / "pipe"), EINVAL);
    EXPECT_EQ(codeOfReading(folder.path()), EINVAL);
}

TEST(DeviceReader, Read_FileSystemWithoutADevice_IsReadAsItIs) {
    if (!std::filesystem::is_directory("/dev/shm")) GTEST_SKIP() << "needs /dev/shm";
    char name[] = "/dev/shm/keldo-test-XXXXXX";
    ASSERT_NE(::mkdtemp(name), nullptr);
    const URL folder(name);
    const std::string content = noise(200'001);
    writeFile(folder / "clip", content);

    const std::string read = readAll(folder / "clip");

    std::filesystem::remove_all(folder);
    EXPECT_TRUE(read == content);
}

// An ordinary read of a file just written is served from memory: it would pass a copy that the
// drive holds wrong. Each test shows that first, so that it can't pass on a cold cache.

class DeviceReaderOnLoop : public testing::TestWithParam<std::pair<const char*, int>> {
protected:
    void SetUp() override {
        if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
        if (!hasTool(std::string("mkfs.") + GetParam().first)) {
            GTEST_SKIP() << "needs mkfs." << GetParam().first;
        }
        drive_.emplace(GetParam().first, GetParam().second);
    }

    LoopMount& drive() { return *drive_; }

private:
    std::optional<LoopMount> drive_;
};

INSTANTIATE_TEST_SUITE_P(FileSystems, DeviceReaderOnLoop,
                         testing::Values(std::pair{"ext4", 16}, std::pair{"xfs", 300},
                                         std::pair{"ntfs", 16}),
                         [](const auto& one) { return std::string(one.param.first); });

TEST_P(DeviceReaderOnLoop, Read_ByteChangedOnTheDevice_IsSeenPastAHotCache) {
    const std::string content = noise(300'001);
    const URL clip = drive().path() / "clip";
    for (const std::int64_t at : {0, 150'000, 300'000}) {
        writeFile(clip, content);
        drive().flipBitBelow(clip, at);
        ASSERT_TRUE(readFile(clip) == content) << "the cache was not hot";

        EXPECT_TRUE(readAll(clip) == withBitFlipped(content, static_cast<std::size_t>(at))) << at;
    }
}

TEST_P(DeviceReaderOnLoop, Read_FileWrittenJustNow_IsFlushedFirst) {
    const std::string content = noise(300'001);
    const URL clip = drive().path() / "clip";
    writeFile(clip, content);

    EXPECT_TRUE(readAll(clip) == content);
}

// What decides whether a commit may wait: no other flush than this one stands before the look at
// the device.
TEST_P(DeviceReaderOnLoop, Pass_FileWrittenJustNow_IsOnTheDeviceWithoutAnyOtherFlush) {
    const std::string content = noise(300'001);
    const std::string piece = content.substr(150'000, 64);
    const URL clip = drive().path() / "clip";
    writeFile(clip, content);
    File file = File::openForReading(clip);

    DriveCache(file.descriptor()).pass(file);

    EXPECT_NE(readFile(drive().image()).find(piece), std::string::npos);
}

TEST_P(DeviceReaderOnLoop, Read_WholeFile_LeavesTheCacheNoFuller) {
    const URL clip = drive().path() / "clip";
    writeFile(clip, noise(300'001));
    ASSERT_GT(cachedBytes(clip), 250'000);

    readAll(clip);
    EXPECT_EQ(cachedBytes(clip), 0);

    readAll(clip);
    EXPECT_EQ(cachedBytes(clip), 0);
}

// With its contents in the journal too, the file system takes direct reads and serves them from the
// cache, which they fill.
TEST(DeviceReader, Read_FileSystemThatServesDirectReadsFromTheCache_LeavesItNoFuller) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 64, "data=journal");
    const URL clip = drive.path() / "clip";
    writeFile(clip, noise(300'001));

    readAll(clip);

    EXPECT_EQ(cachedBytes(clip), 0);
}

TEST(DeviceReader, Read_FileSystemWithItsContentsInTheJournal_StillPassesAHotCache) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount drive("ext4", 64, "data=journal");
    const std::string content = noise(300'001);
    const URL clip = drive.path() / "clip";
    writeFile(clip, content);
    drive.flipBitBelow(clip, 200'000);
    ASSERT_TRUE(readFile(clip) == content) << "the cache was not hot";

    EXPECT_TRUE(readAll(clip) == withBitFlipped(content, 200'000));
}

namespace {

int statusAsSomebodyElse(const std::function<int()>& body) {
    return statusOfForked([&] {
        if (::setgroups(0, nullptr) != 0 || ::setuid(12345) != 0) return 255;
        return body();
    });
}

class DeviceReaderOnFaultyDrive : public testing::Test {
protected:
    void SetUp() override {
        if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    }

    URL back() const { return folder_.path() / "back"; }
    URL mount() const { return folder_.path() / "drive"; }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST(DriveCache, DriveServedByAProgram_IsPassedByWhoMayOpenItsDeviceOnly) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    if (!hasTool("ntfs-3g")) GTEST_SKIP() << "needs ntfs-3g";
    const LoopMount drive("ntfs", 16, "rw,allow_other");
    const HeldFolder folder(drive.path());

    EXPECT_TRUE(DriveCache(folder.descriptor()).canBePassed());
    EXPECT_EQ(
        statusAsSomebodyElse([&] { return DriveCache(folder.descriptor()).canBePassed() ? 1 : 0; }),
        0);
}

TEST_F(DeviceReaderOnFaultyDrive, Read_WithoutDirectReads_StillPassesAHotCache) {
    const FaultyFileSystem drive(back(), mount(), {.refuseDirectReads = true, .keepCache = true});
    const std::string content = noise(300'001);
    const URL clip = drive.path() / "clip";
    writeFile(clip, content);
    ASSERT_TRUE(readFile(clip) == content);
    writeFile(back() / "clip", withBitFlipped(content, 150'000));
    ASSERT_TRUE(readFile(clip) == content) << "the cache was not hot";

    EXPECT_TRUE(readAll(clip) == withBitFlipped(content, 150'000));
}

TEST_F(DeviceReaderOnFaultyDrive, Read_WithoutDirectReads_LeavesTheCacheNoFuller) {
    const FaultyFileSystem drive(back(), mount(), {.refuseDirectReads = true, .keepCache = true});
    const URL clip = drive.path() / "clip";
    writeFile(clip, noise(300'001));
    readFile(clip);
    ASSERT_GT(cachedBytes(clip), 250'000);

    readAll(clip);

    EXPECT_EQ(cachedBytes(clip), 0);
}

TEST_F(DeviceReaderOnFaultyDrive, Read_BitFlippedOnTheWay_ComesBackFlipped) {
    const std::string content = noise(300'001);
    writeFile(back() / "clip", content);
    const FaultyFileSystem drive(back(), mount(), {.flipBitAt = 200'000});

    EXPECT_TRUE(readAll(drive.path() / "clip") == withBitFlipped(content, 200'000));
}

TEST_F(DeviceReaderOnFaultyDrive, Read_DeviceErrorHalfWay_IsThrown) {
    writeFile(back() / "clip", noise(300'001));
    const FaultyFileSystem drive(back(), mount(), {.failReadAt = 100'000});

    EXPECT_EQ(codeOfReading(drive.path() / "clip"), EIO);
}

TEST_F(DeviceReaderOnFaultyDrive, Read_DeviceErrorInTheBlockReadAhead_IsThrownWhenItIsAskedFor) {
    const std::string content = noise(300'001);
    writeFile(back() / "clip", content);
    const FaultyFileSystem drive(back(), mount(), {.failReadAt = blockSize / 2});
    File file = File::openForReading(drive.path() / "clip");
    const DriveCache cache(file.descriptor());
    const AlignedBuffer memory(blockSize);
    WorkerThread worker;
    DeviceReader reader(std::move(file), cache, memory.bytes(), worker);

    const auto first = reader.next();
    worker.finish();

    EXPECT_TRUE(textOf(first) == content.substr(0, blockSize / 2));
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            reader.next();
            ADD_FAILURE() << "nothing was thrown";
        } catch (const SystemError& error) {
            EXPECT_EQ(error.code(), EIO);
        }
    }
}

// What is still on its way would land in memory that may have been given to somebody else.
TEST_F(DeviceReaderOnFaultyDrive, Destroy_BlockStillBeingReadAhead_WaitsForIt) {
    const std::string content = noise(blockSize);
    writeFile(back() / "clip", content);
    const FaultyFileSystem drive(back(), mount(), {.delay = 200});
    const AlignedBuffer memory(blockSize);
    WorkerThread worker;
    {
        File file = File::openForReading(drive.path() / "clip");
        const DriveCache cache(file.descriptor());
        DeviceReader reader(std::move(file), cache, memory.bytes(), worker);
        reader.next();
    }
    EXPECT_TRUE(textOf(memory.bytes()) == content);
}

TEST_F(DeviceReaderOnFaultyDrive, Open_DeviceError_IsThrown) {
    writeFile(back() / "clip", "abc");
    const FaultyFileSystem drive(back(), mount(), {.failOpenForReading = true});

    EXPECT_EQ(codeOfReading(drive.path() / "clip"), EIO);
}
