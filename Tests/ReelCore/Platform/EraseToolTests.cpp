#include "ReelCore/Platform/EraseTool.h"

#include "Support/SystemServices.h"

#include <filesystem>

#include <gtest/gtest.h>

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

}  // namespace

}  // namespace ReelCore
