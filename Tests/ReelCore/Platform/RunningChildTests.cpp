#include "ReelCore/Platform/RunningChild.h"

#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/SystemError.h"
#include "Shell.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>
#include <linux/ioprio.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ReelCore {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using TestSupport::TemporaryFolder;

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

constexpr const char* toBoth = "echo out; echo err >&2";

TEST(RunningChild, OutputToPipe_ErrorsGoNowhere) {
    Shell child(toBoth, {.output = ChildStream::pipe(), .error = ChildStream::nowhere()});

    EXPECT_EQ(child.readAll(), "out\n");
    EXPECT_EQ(child.wait(), 0);
}

TEST(RunningChild, ErrorsToPipe_OutputGoesNowhere) {
    Shell child(toBoth, {.output = ChildStream::nowhere(), .error = ChildStream::pipe()});

    EXPECT_EQ(child.readAll(), "err\n");
    EXPECT_EQ(child.wait(), 0);
}

TEST(RunningChild, BothToPipe_ComeTogetherInTheOrderWritten) {
    Shell child(toBoth, {.output = ChildStream::pipe(), .error = ChildStream::pipe()});

    EXPECT_EQ(child.readAll(), "out\nerr\n");
    EXPECT_EQ(child.wait(), 0);
}

TEST(RunningChild, NeitherToPipe_StreamIsAtItsEndWhenTheChildIs) {
    Shell child(toBoth, {});

    EXPECT_EQ(child.readAll(), "");
    EXPECT_EQ(child.wait(), 0);
}

TEST(RunningChild, StreamToFile_GoesOnWhereTheFileStands) {
    const TemporaryFolder folder;
    File log = File::create(folder.path() / "log");
    log.write(std::as_bytes(std::span("before\n", 7)));

    Shell child(toBoth, {.output = ChildStream::pipe(), .error = ChildStream::file(log)});
    const std::string output = child.readAll();

    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(output, "out\n");
    EXPECT_EQ(TestSupport::readFile(folder.path() / "log"), "before\nerr\n");
}

TEST(RunningChild, BothToOneFile_StandThereInTheOrderWritten) {
    const TemporaryFolder folder;
    const File log = File::create(folder.path() / "log");

    EXPECT_EQ(Shell(toBoth, {ChildStream::file(log), ChildStream::file(log)}).wait(), 0);

    EXPECT_EQ(TestSupport::readFile(folder.path() / "log"), "out\nerr\n");
}

TEST(RunningChild, ReadOfAChildThatSaysNothing_ComesBackAfterThePatience) {
    Shell child("exec sleep 600");
    std::array<char, 16> block{};

    const auto before = steady_clock::now();
    const auto count = child.read(block, milliseconds(50));

    EXPECT_EQ(count, std::nullopt);
    EXPECT_GE(steady_clock::now() - before, milliseconds(49));
}

TEST(RunningChild, Read_GivesWhatIsThereAndThenTheEnd) {
    Shell child("printf abcde");
    std::array<char, 3> block{};

    EXPECT_EQ(child.read(block, longEnough), 3U);
    EXPECT_EQ(std::string(block.data(), 3), "abc");
    EXPECT_EQ(child.read(block, longEnough), 2U);
    EXPECT_EQ(std::string(block.data(), 2), "de");
    EXPECT_EQ(child.read(block, longEnough), 0U);
    EXPECT_EQ(child.wait(), 0);
}

TEST(RunningChild, Wait_TellsHowTheChildEnded) {
    EXPECT_EQ(Shell("exit 7", {}).wait(), 7);
    EXPECT_EQ(Shell("kill -TERM $$", {}).wait(), 128 + SIGTERM);
}

TEST(RunningChild, GrandchildThatOutlivesTheChild_IsReadToItsEnd) {
    Shell child("(sleep 0.2; echo late) & echo early");

    EXPECT_EQ(child.readAll(), "early\nlate\n");
    EXPECT_EQ(child.wait(), 0);
}

TEST(RunningChild, InheritsNothingButTheThreeStreams) {
    const TemporaryFolder folder;
    const File log = File::create(folder.path() / "log");
    const int left = ::dup(log.descriptor());  // not close-on-exec
    Shell other("exec sleep 600");

    Shell child("ls /proc/$$/fd", {.output = ChildStream::pipe(), .error = ChildStream::file(log)});
    const std::string descriptors = child.readAll();
    ::close(left);

    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(descriptors, "0\n1\n2\n");
}

// A file or a pipe of this process then has a number of 0 to 2.
TEST(RunningChild, StandardStreamsOfThisProcessClosed_ChildHasItsOwnAllTheSame) {
    const TemporaryFolder folder;
    const int status = TestSupport::statusOfForked([&] {
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::close(stream);
        const File log = File::create(folder.path() / "log");
        Shell child("cat; echo out; echo err >&2",
                    {.output = ChildStream::pipe(), .error = ChildStream::file(log)});
        return child.readAll() == "out\n" && child.wait() == 0 ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
    EXPECT_EQ(TestSupport::readFile(folder.path() / "log"), "err\n");
}

TEST(RunningChild, InheritsEnvironmentAndWorkingFolder) {
    const int status = TestSupport::statusOfForked([] {
        ::setenv("REEL", "A001", 1);
        std::filesystem::current_path("/usr");
        return Shell("test $REEL = A001 && test $(pwd) = /usr", {}).wait();
    });

    EXPECT_EQ(status, 0);
}

TEST(RunningChild, WorkingFolderNamed_IsTheChildsAndNotOurs) {
    const TemporaryFolder folder;
    const URL before = std::filesystem::current_path();

    RunningChild child("/bin/pwd", {}, {.output = ChildStream::pipe()},
                       {.workingFolder = folder.path()});

    EXPECT_EQ(child.readAll(), std::filesystem::canonical(folder.path()).native() + "\n");
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(std::filesystem::current_path(), before);
}

TEST(RunningChild, WorkingFolderMissing_IsNotStarted) {
    const TemporaryFolder folder;

    EXPECT_THROW(RunningChild("/bin/true", {}, {}, {.workingFolder = folder.path() / "missing"}),
                 SystemError);

    EXPECT_TRUE(hasNoChildren());
}

TEST(RunningChild, EnvironmentNamed_StandsBesideOursAndInItsPlace) {
    const TestSupport::EnvironmentVariable ours("REEL", "A001");
    const TestSupport::EnvironmentVariable kept("ROLL", "7");

    RunningChild child("/bin/sh", {"-c", "env | grep -c ^REEL; echo $REEL $ROLL $TAKE"},
                       {.output = ChildStream::pipe()},
                       {.environment = {{"REEL", "B002"}, {"TAKE", "a=b"}}});

    EXPECT_EQ(child.readAll(), "1\nB002 7 a=b\n");
    EXPECT_EQ(child.wait(), 0);
    EXPECT_STREQ(std::getenv("REEL"), "A001");
}

int niceness(pid_t process) {
    return ::getpriority(PRIO_PROCESS, static_cast<id_t>(process));
}

long drivePriority(pid_t process) {
    return ::syscall(SYS_ioprio_get, IOPRIO_WHO_PROCESS, process);
}

TEST(RunningChild, ChildThatYields_HasLowPriorityAndSoHasWhatItStarts) {
    const int before = niceness(0);
    RunningChild child("/bin/sh", {"-c", "echo $$; sleep 600 & echo $!; wait"},
                       {.output = ChildStream::pipe()}, {.yields = true});
    std::string text;
    std::array<char, 64> block{};
    while (std::ranges::count(text, '\n') < 2) {
        text.append(block.data(), child.read(block, longEnough).value_or(0));
    }

    for (const std::string_view number : piecesOf(text, "\n")) {
        const pid_t process = std::stoi(std::string(number));
        EXPECT_EQ(niceness(process), std::max(10, niceness(0)));
        EXPECT_EQ(drivePriority(process), IOPRIO_PRIO_VALUE(IOPRIO_CLASS_BE, 7));
    }
    EXPECT_EQ(niceness(0), before) << "this process keeps its own";
}

TEST(RunningChild, ChildThatDoesNotYield_HasOurPriority) {
    Shell child("echo $$; exec sleep 600");
    const pid_t process = child.readNumber();

    EXPECT_EQ(niceness(process), niceness(0));
    EXPECT_EQ(drivePriority(process), drivePriority(0));
}

TEST(RunningChild, ProgramThatCannotBeStarted_LeavesNoDescriptorAndNoProcess) {
    const TemporaryFolder folder;
    TestSupport::writeFile(folder.path() / "text", "no program");
    const auto before = openDescriptors();

    for (const URL& program : {folder.path() / "missing", folder.path() / "text", folder.path(),
                               URL(""), folder.path() / "text" / "below"}) {
        EXPECT_THROW(RunningChild(program, {}, {.output = ChildStream::pipe()}), SystemError)
            << program;
    }

    EXPECT_EQ(openDescriptors(), before);
    EXPECT_TRUE(hasNoChildren());
}

TEST(RunningChild, ChildThatCameAndWent_LeavesNoDescriptorAndNoProcess) {
    Shell("true").wait();  // The watchdog comes with the first child and stays.
    const auto before = openDescriptors();

    Shell("echo out").wait();
    Shell("exec sleep 600").end();
    Shell("exec sleep 600");

    EXPECT_EQ(openDescriptors(), before);
    EXPECT_TRUE(hasNoChildren());
}

}  // namespace

}  // namespace ReelCore
