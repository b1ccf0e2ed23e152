#include "ReelCore/Platform/EraseTool.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/Forked.h"
#include "Support/LoopMount.h"
#include "Support/SystemServices.h"

#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace ReelCore {

namespace {

TEST(EraseTool, SystemWithoutOne_NamesTheHelperBesideTheProgramsFolder) {
    if (std::filesystem::exists("/usr/sbin/diskutil")) {
        GTEST_SKIP() << "this system has a diskutil of its own";
    }
    const URL program = std::filesystem::canonical("/proc/self/exe");

    EXPECT_EQ(eraseTool(), program.parent_path().parent_path() / "libexec/keldobay/diskutil");
}

TEST(EraseTool, SystemWithOne_NamesThat) {
    const std::string missing = TestSupport::SystemServices::missing();
    if (!missing.empty()) GTEST_SKIP() << missing;
    const TestSupport::SystemServices system(
        {.diskService = {}, .programs = {{"diskutil", "exit 0\n"}}});

    EXPECT_EQ(eraseTool(), "/usr/sbin/diskutil");
}

TEST(EraseTool, SystemsOwnTool_FindsTheCardLetGoAndAnEmptyInput) {
    const std::string missing = TestSupport::SystemServices::missing();
    if (!missing.empty()) GTEST_SKIP() << missing;
    const TestSupport::SystemServices system(
        {.diskService = {},
         .programs = {{"diskutil", "readlink /proc/$$/fd/0\numount \"$1\" && echo unmounted\n"}}});
    TestSupport::LoopMount reader("ext4", 16);
    const URL card = reader.image().parent_path() / "card";
    reader.mountAgainAt(card);

    const auto outcome = runEraseTool({card.native()}, HeldCard(card));

    EXPECT_EQ(outcome.output, "/dev/null\nunmounted\n");
}

TEST(EraseTool, ProgramThatCanNotFindItself_IsAFailureAndNoRelativePath) {
    if (std::filesystem::exists("/usr/sbin/diskutil")) {
        GTEST_SKIP() << "this system has a diskutil of its own";
    }
    if (::geteuid() != 0) GTEST_SKIP() << "needs root";

    const int code = TestSupport::statusOfForked([] {
        if (::unshare(CLONE_NEWNS) != 0 ||
            ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("tmpfs", "/proc", "tmpfs", 0, nullptr) != 0) {
            return 254;
        }
        try {
            eraseTool();
            return 0;
        } catch (const SystemError& error) {
            return error.code();
        }
    });

    EXPECT_EQ(code, ENOENT);
}

}  // namespace

}  // namespace ReelCore
