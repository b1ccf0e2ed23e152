#include "ReelCore/Platform/ProcessCleanup.h"

#include "ReelCore/Models/UniquePath.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "Shell.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// What a process comes to that ends: in a copy of this one, since it can't be undone.
#define EXPECT_IN_A_PROCESS_OF_ITS_OWN(...) EXPECT_EQ(TestSupport::statusOfForked(__VA_ARGS__), 0)

std::future<int> statusOfScript(const std::string& script) {
    return std::async(std::launch::async, [script] { return Shell(script, {}).wait(); });
}

int codeOf(const std::function<void()>& refused) {
    try {
        refused();
    } catch (const SystemError& error) {
        return error.code();
    }
    return 0;
}

TEST(ProcessCleanup, Run_AsksEachChildAndWaitsUntilItIsReaped) {
    EXPECT_IN_A_PROCESS_OF_ITS_OWN([] {
        Shell ready("echo; exec sleep 600");
        ready.readLine();
        std::thread job([&] { ready.wait(); });

        const auto before = steady_clock::now();
        ProcessCleanup::shared().run();
        const bool isQuick = steady_clock::now() - before < milliseconds(2000);
        const bool isReaped = hasNoChildren();

        job.join();
        return isQuick && isReaped ? 0 : 1;
    });
}

TEST(ProcessCleanup, RunWithAChildThatIgnoresTheRequest_KillsItAfterThreeSeconds) {
    EXPECT_IN_A_PROCESS_OF_ITS_OWN([] {
        Shell child("trap '' TERM; echo; while :; do sleep 0.01; done");
        child.readLine();

        const auto before = steady_clock::now();
        ProcessCleanup::shared().run();
        const auto took = steady_clock::now() - before;

        const bool isInTime = took >= milliseconds(2999) && took < milliseconds(4000);
        return isInTime && child.wait() == 128 + SIGKILL ? 0 : 1;
    });
}

TEST(ProcessCleanup, AfterRun_NothingIsStarted) {
    EXPECT_IN_A_PROCESS_OF_ITS_OWN([] {
        ProcessCleanup::shared().run();

        const int child = codeOf([] { Shell("exit 0", {}); });
        const int file = codeOf([] { TemporaryPath("keldo-test-", ""); });

        return child == ECANCELED && file == ECANCELED && hasNoChildren() ? 0 : 1;
    });
}

TEST(ProcessCleanup, RunWhileThreadsStartChildren_EndsThemAll) {
    EXPECT_IN_A_PROCESS_OF_ITS_OWN([] {
        std::vector<std::future<int>> children;
        for (int i = 0; i < 8; ++i) children.push_back(statusOfScript("exec sleep 600"));

        ProcessCleanup::shared().run();

        bool isWell = true;
        for (auto& child : children) {
            isWell = isWell && child.wait_for(longEnough) == std::future_status::ready;
            const int code = codeOf([&] { isWell = isWell && child.get() == 128 + SIGTERM; });
            isWell = isWell && (code == 0 || code == ECANCELED);
        }
        return isWell && hasNoChildren() ? 0 : 1;
    });
}

TEST(ProcessCleanup, Run_RemovesTheTemporaryFiles) {
    EXPECT_IN_A_PROCESS_OF_ITS_OWN([] {
        const TemporaryPath path("keldo-test-", ".log");
        std::ofstream(path.url()) << "text";

        ProcessCleanup::shared().run();

        return std::filesystem::exists(path.url()) ? 1 : 0;
    });
}

TEST(ProcessCleanup, Run_RemovesReservedNamesThatAreStillEmptyAndGivesNoMore) {
    EXPECT_IN_A_PROCESS_OF_ITS_OWN([] {
        const TestSupport::TemporaryFolder folder;
        const ReservedOutput empty(folder.path() / "empty.mov");
        const ReservedOutput written(folder.path() / "written.mov");
        std::ofstream(written.url()) << "picture";
        const ReservedOutput replaced(folder.path() / "replaced.mov");
        std::ofstream(folder.path() / "other");
        std::filesystem::rename(folder.path() / "other", replaced.url());

        ProcessCleanup::shared().run();

        const bool isWell = !std::filesystem::exists(empty.url()) &&
                            std::filesystem::exists(written.url()) &&
                            std::filesystem::exists(replaced.url());
        const int late = codeOf([&] { ReservedOutput(folder.path() / "late.mov"); });
        const bool isThere = std::filesystem::exists(folder.path() / "late.mov");
        return isWell && late == ECANCELED && !isThere ? 0 : 1;
    });
}

TEST(ProcessCleanup, ManyChildrenAndFiles_LeaveNoDescriptorBehind) {
    const auto openDescriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    Shell("exit 0", {}).wait();
    const auto before = openDescriptors();

    for (int i = 0; i < 50; ++i) {
        const TemporaryPath path("keldo-test-", "");
        EXPECT_EQ(Shell("exit 0", {}).wait(), 0);
    }

    EXPECT_EQ(openDescriptors(), before);
    EXPECT_TRUE(hasNoChildren());
}

}  // namespace

}  // namespace ReelCore
