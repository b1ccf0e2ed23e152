#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/SystemError.h"
#include "Shell.h"
#include "Support/FolderTree.h"

#include <csignal>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using TestSupport::TemporaryFolder;

/// False for a process that nobody has waited for.
bool isGone(pid_t process) {
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

/// A grandchild becomes the child of another process, which needs its time to wait for it.
bool isGoneInTime(pid_t process) {
    const auto limit = steady_clock::now() + longEnough;
    while (!isGone(process)) {
        if (steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(milliseconds(5));
    }
    return true;
}

TEST(RunningChild, EndOfAChildThatRuns_AsksItToEnd) {
    const TemporaryFolder folder;
    const URL asked = folder.path() / "asked";
    Shell child("trap 'touch " + asked.native() +
                "; exit' TERM; echo $$; while :; do sleep 0.01; done");
    const pid_t number = child.readNumber();

    child.end();

    EXPECT_TRUE(isGone(number));
    EXPECT_TRUE(std::filesystem::exists(asked));
}

TEST(RunningChild, EndOfAChildThatHasEnded_LeavesNothingOfIt) {
    Shell child("echo $$");
    const pid_t number = child.readNumber();
    child.readAll();

    child.end();

    EXPECT_TRUE(isGone(number));
}

TEST(RunningChild, EndOfAChildThatIgnoresTheRequest_EndsItAfterThreeSeconds) {
    Shell child("trap '' TERM; echo $$; while :; do sleep 0.01; done");
    const pid_t number = child.readNumber();

    const auto before = steady_clock::now();
    child.end();
    const auto took = steady_clock::now() - before;

    EXPECT_TRUE(isGone(number));
    EXPECT_GE(took, milliseconds(2999)) << "it was given no time";
    EXPECT_LT(took, milliseconds(4000));
}

TEST(RunningChild, EndOfAChildThatIsStopped_EndsItWithinASecond) {
    Shell child("echo $$; kill -STOP $$; sleep 600");
    const pid_t number = child.readNumber();
    siginfo_t stopped{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(number), &stopped, WSTOPPED | WNOWAIT), 0);

    const auto before = steady_clock::now();
    child.end();

    EXPECT_TRUE(isGone(number));
    EXPECT_LT(steady_clock::now() - before, milliseconds(1000));
}

TEST(RunningChild, EndOfAChildThatWritesWithoutPause_DoesNotWaitForItsReader) {
    Shell child("echo $$; trap '' TERM PIPE; exec yes");
    const pid_t number = child.readNumber();

    child.end();

    EXPECT_TRUE(isGone(number));
}

TEST(RunningChild, AfterEnd_StreamIsAtItsEndAndMoreEndsDoNothing) {
    Shell child("echo $$; exec sleep 600");
    const pid_t number = child.readNumber();
    std::array<char, 16> block{};
    child.end();

    child.end();

    EXPECT_EQ(child.read(block, longEnough), 0U);
    EXPECT_EQ(child.readAll(), "");
    EXPECT_TRUE(isGone(number));
}

TEST(RunningChild, AfterWait_EndLeavesOtherProcessesAlone) {
    Shell child("exit 0", {});
    EXPECT_EQ(child.wait(), 0);

    child.end();

    EXPECT_TRUE(hasNoChildren());
}

TEST(RunningChild, WaitAfterEndOrAnotherWait_LeavesOtherChildrenAlone) {
    Shell ended("exec sleep 600");
    ended.end();
    Shell waitedFor("exit 0", {});
    waitedFor.wait();
    Shell other("exit 7");

    EXPECT_THROW(ended.wait(), SystemError);
    EXPECT_THROW(waitedFor.wait(), SystemError);

    EXPECT_EQ(other.wait(), 7);
}

TEST(RunningChild, AskedToEnd_HasTheTimeThatItNeedsAndIsReadToItsEnd) {
    Shell child(
        "trap 'sleep 0.8; yes | head -c 1000000; exit 7' TERM; echo $$; "
        "while :; do sleep 0.01; done");
    const pid_t number = child.readNumber();

    child.askToEnd();

    EXPECT_FALSE(child.waitForEnd(milliseconds(100)));
    EXPECT_FALSE(isGone(number));
    EXPECT_TRUE(child.waitForEnd(longEnough));
    EXPECT_EQ(child.wait(), 7);
}

// A wrapper ends at once; what it has started still has the stream.
TEST(RunningChild, WaitForEndOfAChildWhoseOwnChildIsStillAtIt_WaitsForThatToo) {
    const TemporaryFolder folder;
    const URL closed = folder.path() / "closed";
    Shell child("sh -c 'trap \"sleep 0.5; touch " + closed.native() +
                "; exit\" TERM; echo ready; while :; do sleep 0.01; done' & wait");
    child.readLine();

    child.askToEnd();

    EXPECT_TRUE(child.waitForEnd(longEnough));
    EXPECT_TRUE(std::filesystem::exists(closed));
    EXPECT_EQ(child.wait(), 128 + SIGTERM);
}

TEST(RunningChild, Kill_EndsWhoIgnoresTheRequestAtOnce) {
    Shell child("trap '' TERM; echo $$; while :; do sleep 0.01; done");
    child.readLine();
    child.askToEnd();

    const auto before = steady_clock::now();
    child.kill();

    EXPECT_TRUE(child.waitForEnd(longEnough));
    EXPECT_EQ(child.wait(), 128 + SIGKILL);
    EXPECT_LT(steady_clock::now() - before, milliseconds(1000));
}

TEST(RunningChild, LeftByAnException_IsEnded) {
    pid_t number = 0;
    const auto failingWork = [&] {
        Shell child("echo $$; exec sleep 600");
        number = child.readNumber();
        throw std::runtime_error("no room");
    };

    EXPECT_THROW(failingWork(), std::runtime_error);

    ASSERT_GT(number, 0);
    EXPECT_TRUE(isGone(number));
}

// A wrapper that starts the tool as a child of its own is no way for the tool to run on.
TEST(RunningChild, End_EndsWhatTheChildHasStartedToo) {
    Shell child("sleep 600 & echo $!; wait");
    const pid_t grandchild = child.readNumber();

    child.end();

    EXPECT_TRUE(isGoneInTime(grandchild));
}

TEST(RunningChild, EndWithAGrandchildThatIgnoresTheRequest_EndsItAfterThreeSeconds) {
    Shell child("sh -c 'trap \"\" TERM; echo $$; while :; do sleep 0.01; done' & wait");
    const pid_t grandchild = child.readNumber();

    const auto before = steady_clock::now();
    child.end();

    EXPECT_LT(steady_clock::now() - before, milliseconds(4000));
    EXPECT_TRUE(isGoneInTime(grandchild));
}

}  // namespace

}  // namespace ReelCore
