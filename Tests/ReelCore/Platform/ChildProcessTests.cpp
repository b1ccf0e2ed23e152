#include "ReelCore/Platform/ChildProcess.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <new>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ReelCore {

namespace {

using TestSupport::TemporaryFolder;

ChildProcess::Outcome shell(const std::string& script) {
    return ChildProcess::run("/bin/sh", {"-c", script});
}

TEST(ChildProcess, ExitStatus_IsGivenBack) {
    EXPECT_EQ(shell("exit 0").status, 0);
    EXPECT_EQ(shell("exit 42").status, 42);
    EXPECT_EQ(shell("exit 255").status, 255);
}

TEST(ChildProcess, ChildEndedByASignal_Is128AndItsNumber) {
    EXPECT_EQ(shell("kill -KILL $$").status, 128 + SIGKILL);
    EXPECT_EQ(shell("kill -TERM $$").status, 128 + SIGTERM);
}

TEST(ChildProcess, Arguments_ArePassedWithoutAShell) {
    const auto outcome = ChildProcess::run(
        "/usr/bin/printf", {"[%s]", "", "a b", "$HOME", "'\"`*", "\xFF", "two\nlines"});

    EXPECT_EQ(outcome.output, "[][a b][$HOME]['\"`*][\xFF][two\nlines]");
}

TEST(ChildProcess, BothStreams_ComeInTheOrderWritten) {
    EXPECT_EQ(shell("echo 1; echo 2 >&2; echo 3; echo 4 >&2").output, "1\n2\n3\n4\n");
}

TEST(ChildProcess, OutputLargerThanThePipe_IsReadWhole) {
    EXPECT_EQ(shell("head -c 3000000 /dev/zero").output, std::string(3'000'000, '\0'));
}

TEST(ChildProcess, OutputOfAChildThatOutlivesItsParent_IsReadToItsEnd) {
    EXPECT_EQ(shell("(sleep 0.2; echo late) & echo early").output, "early\nlate\n");
}

TEST(ChildProcess, StandardInput_IsEmpty) {
    EXPECT_EQ(shell("cat; echo end").output, "end\n");
}

constexpr const char* tenMegabytesToOutput = "head -c 10000000 /dev/zero; echo err >&2; exit 3";
constexpr const char* tenMegabytesToError = "head -c 10000000 /dev/zero >&2; echo out; exit 3";

TEST(ChildProcess, ReadError_OfAChildThatWritesMuchElsewhere_IsTheErrorsAlone) {
    const auto outcome = ChildProcess::readError("/bin/sh", {"-c", tenMegabytesToOutput});

    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "err\n");
}

TEST(ChildProcess, ReadOutput_OfAChildThatWritesMuchElsewhere_IsTheOutputAlone) {
    const auto outcome = ChildProcess::readOutput("/bin/sh", {"-c", tenMegabytesToError});

    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "out\n");
}

TEST(ChildProcess, Status_OfAChildThatWritesMuch_IsItsExitStatus) {
    EXPECT_EQ(ChildProcess::status("/bin/sh", {"-c", tenMegabytesToOutput}), 3);
    EXPECT_EQ(ChildProcess::status("/bin/sh", {"-c", tenMegabytesToError}), 3);
    EXPECT_EQ(ChildProcess::status("/bin/sh", {"-c", "kill -KILL $$"}), 128 + SIGKILL);
}

TEST(ChildProcess, ProgramThatCannotBeStarted_FailsInEachForm) {
    const URL missing = "/no/such/program";

    EXPECT_THROW(ChildProcess::readOutput(missing, {}), SystemError);
    EXPECT_THROW(ChildProcess::readError(missing, {}), SystemError);
    EXPECT_THROW(ChildProcess::status(missing, {}), SystemError);
}

TEST(ChildProcess, MissingProgram_FailsWithItsPath) {
    try {
        ChildProcess::run("/no/such/program", {});
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), ENOENT);
        EXPECT_EQ(error.description(), "No such file or directory: /no/such/program");
    }
}

TEST(ChildProcess, FileThatIsNoProgram_Fails) {
    const TemporaryFolder folder;
    TestSupport::writeFile(folder.path() / "text", "no program");

    try {
        ChildProcess::run(folder.path() / "text", {});
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), EACCES);
    }
}

TEST(ChildProcess, NameWithoutAFolder_IsNotSearchedFor) {
    EXPECT_THROW(ChildProcess::run("sh", {"-c", "true"}), SystemError);
}

TEST(ChildProcess, OpenFiles_AreNotPassedOn) {
    const TemporaryFolder folder;
    TestSupport::writeFile(folder.path() / "card", "x");
    const int open = ::open((folder.path() / "card").c_str(), O_RDONLY);  // not close-on-exec
    ASSERT_GT(open, STDERR_FILENO);

    const auto outcome = shell("readlink /proc/self/fd/*");
    ::close(open);

    EXPECT_EQ(outcome.output.find("card"), std::string::npos) << outcome.output;
}

TEST(ChildProcess, BlockedAndIgnoredSignals_AreNotPassedOn) {
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    auto* handler = ::signal(SIGPIPE, SIG_IGN);

    const int terminated = shell("kill -TERM $$; exit 0").status;
    const int pipeBroken = shell("kill -PIPE $$; exit 0").status;

    ::signal(SIGPIPE, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(terminated, 128 + SIGTERM);
    EXPECT_EQ(pipeBroken, 128 + SIGPIPE);
}

// Where nobody wants to hear of ended children, the system forgets how they ended.
TEST(ChildProcess, EndThatTheSystemDoesNotTell_IsAFailureAndNoSuccess) {
    const int status = TestSupport::statusOfForked([] {
        ::signal(SIGCHLD, SIG_IGN);
        try {
            return shell("exit 7").status;
        } catch (const SystemError& error) {
            return error.code() == ECHILD ? 100 : 101;
        }
    });

    EXPECT_EQ(status, 100);
}

TEST(ChildProcess, MemoryDoesNotSufficeForTheOutput_LeavesNoChildBehind) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer needs more room for addresses";
#endif
    const int status = TestSupport::statusOfForked([] {
        const rlimit room{rlim_t{1} << 28U, rlim_t{1} << 28U};
        if (::setrlimit(RLIMIT_AS, &room) != 0) return 101;
        try {
            shell("exec head -c 1000000000 /dev/zero");
            return 102;
        } catch (const std::bad_alloc&) {
            return ::waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD ? 100 : 103;
        }
    });

    EXPECT_EQ(status, 100);
}

TEST(ChildProcess, ManyThreads_GetEachItsOwnOutcome) {
    std::vector<std::future<ChildProcess::Outcome>> runs;
    for (int i = 0; i < 32; ++i) {
        runs.push_back(std::async(std::launch::async, [i] {
            return shell("echo " + std::to_string(i) + "; exit " + std::to_string(i));
        }));
    }
    for (int i = 0; i < 32; ++i) {
        const auto outcome = runs[static_cast<std::size_t>(i)].get();
        EXPECT_EQ(outcome.status, i);
        EXPECT_EQ(outcome.output, std::to_string(i) + "\n");
    }
}

}  // namespace

}  // namespace ReelCore
