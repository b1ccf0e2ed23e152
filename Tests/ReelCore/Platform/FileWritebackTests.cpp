#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FileCache.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <iterator>

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

TEST(FileWriteback, FinishedRange_IsNoLongerInMemoryAndTheRestIs) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 64);
    constexpr std::int64_t block = 4 << 20;
    const std::string content = noise(2 * block);
    const URL clip = drive.path() / "clip";
    File file = File::create(clip);
    file.write(bytesOf(content));
    ASSERT_EQ(cachedBytes(clip), 2 * block);

    file.finishWriteback(0, block);

    EXPECT_EQ(cachedBytes(clip), block);
    EXPECT_TRUE(readFile(clip) == content);
}

TEST(FileWriteback, EmptyOrUnwrittenRange_IsFine) {
    const TemporaryFolder folder;
    File file = File::create(folder.path() / "clip");
    file.write(bytesOf("abc"));

    file.finishWriteback(0, 3);
    file.finishWriteback(3, 0);
    file.finishWriteback(1 << 20, 4096);

    EXPECT_EQ(readFile(folder.path() / "clip"), "abc");
}

/// From here on this process's kernel knows no sync_file_range.
void forgetSyncFileRange() {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_sync_file_range, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{std::size(program), program};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) throwSystemError();
    if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) throwSystemError();
}

TEST(FileWriteback, KernelWithoutTheCall_NothingFails) {
    const int status = statusOfForked([] {
        forgetSyncFileRange();
        const TemporaryFolder folder;
        File file = File::create(folder.path() / "clip");
        file.write(bytesOf("abc"));
        file.beginWriteback(0, 3);
        return file.finishWriteback(0, 3) ? 1 : 0;
    });

    EXPECT_EQ(status, 0);
}

/// Memory that temporary folders lie in for one test, so little that it soon runs full.
class SmallMemory {
public:
    SmallMemory() {
        outputOf("mount", {"-t", "tmpfs", "-o", "size=8m", "tmpfs", folder_.path()});
        if (const char* old = std::getenv("TMPDIR")) old_ = old;
        ::setenv("TMPDIR", folder_.path().c_str(), 1);
    }
    ~SmallMemory() {
        if (old_.empty()) {
            ::unsetenv("TMPDIR");
        } else {
            ::setenv("TMPDIR", old_.c_str(), 1);
        }
        runTool("umount", {"--lazy", folder_.path()});
    }
    SmallMemory(const SmallMemory&) = delete;
    SmallMemory& operator=(const SmallMemory&) = delete;

private:
    TemporaryFolder folder_;
    std::string old_;
};

// The image of this drive lies in a memory that is smaller than the drive says it is.
TEST(FileWriteback, DriveThatRefusesWhatItSeemedToTake_IsAnError) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const SmallMemory memory;
    const LoopMount drive("ext4", 64);
    File file = File::create(drive.path() / "clip");
    constexpr std::int64_t size = 16 << 20;
    file.write(bytesOf(noise(size)));

    int code = 0;
    try {
        file.finishWriteback(0, size);
    } catch (const SystemError& error) {
        code = error.code();
    }

    EXPECT_TRUE(code == EIO || code == ENOSPC) << code;
}

}  // namespace
