#include "ReelCore/Platform/ProcessCleanup.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <linux/ioprio.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace ReelCore {

namespace {

constexpr std::chrono::milliseconds betweenLooks(5);

class SpawnActions {
public:
    SpawnActions() { ::posix_spawn_file_actions_init(&actions_); }
    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    posix_spawn_file_actions_t* get() { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// No signal is blocked or ignored in the child, whatever the calling thread has set up, and it
/// leads a process group, so that what it starts itself can be ended with it.
class SpawnAttributes {
public:
    SpawnAttributes() {
        ::posix_spawnattr_init(&attributes_);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

/// As the system takes a list of texts, which must outlive it.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

/// This process's variables, those named with the values given.
std::vector<std::string> environmentWith(const std::map<std::string, std::string>& more) {
    std::vector<std::string> variables;
    for (char** one = environ; *one; ++one) {
        const std::string variable = *one;
        if (!more.contains(variable.substr(0, variable.find('=')))) variables.push_back(variable);
    }
    for (const auto& [name, value] : more) variables.push_back(name + "=" + value);
    return variables;
}

/// All threads of the child's group, also those that it has started by now.
void yieldToOthers(pid_t child) {
    const int niceness = std::max(10, ::getpriority(PRIO_PROCESS, 0));
    constexpr int lowest = IOPRIO_PRIO_VALUE(IOPRIO_CLASS_BE, 7);
    ::setpriority(PRIO_PGRP, static_cast<id_t>(child), niceness);
    ::syscall(SYS_ioprio_set, IOPRIO_WHO_PGRP, child, lowest);
}

struct Descriptors {
    int output;
    int error;
    int input;
};

/// The same stream under a number that is no standard stream's: those are taken for the child's own
/// while it starts. Where a standard stream of this process is closed, any file may have its
/// number.
class RaisedDescriptor {
public:
    explicit RaisedDescriptor(int descriptor) {
        if (descriptor < 0) return;
        number_ = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        if (number_ < 0) throwSystemError();
    }
    ~RaisedDescriptor() {
        if (number_ >= 0) ::close(number_);
    }
    RaisedDescriptor(const RaisedDescriptor&) = delete;
    RaisedDescriptor& operator=(const RaisedDescriptor&) = delete;

    int number() const { return number_; }

private:
    int number_ = -1;
};

/// -1 is nowhere.
void connect(SpawnActions& actions, int descriptor, int stream) {
    if (descriptor >= 0) {
        ::posix_spawn_file_actions_adddup2(actions.get(), descriptor, stream);
    } else {
        const int access = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY;
        ::posix_spawn_file_actions_addopen(actions.get(), stream, "/dev/null", access, 0);
    }
}

pid_t start(const URL& program, const std::vector<std::string>& arguments, Descriptors streams,
            const RunningChild::Surroundings& surroundings) {
    const RaisedDescriptor output(streams.output);
    const RaisedDescriptor error(streams.error);
    const RaisedDescriptor input(streams.input);
    const SpawnAttributes attributes;
    SpawnActions actions;
    connect(actions, input.number(), STDIN_FILENO);
    connect(actions, output.number(), STDOUT_FILENO);
    connect(actions, error.number(), STDERR_FILENO);
    ::posix_spawn_file_actions_addclosefrom_np(actions.get(), STDERR_FILENO + 1);
    if (!surroundings.workingFolder.empty()) {
        ::posix_spawn_file_actions_addchdir_np(actions.get(), surroundings.workingFolder.c_str());
    }
    std::vector<std::string> words{program.native()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const auto variables = environmentWith(surroundings.environment);
    pid_t child = 0;
    const int failure = ::posix_spawn(&child, program.c_str(), actions.get(), attributes.get(),
                                      pointersTo(words).data(), pointersTo(variables).data());
    if (failure != 0) throw SystemError(failure, program);
    if (surroundings.yields) yieldToOthers(child);
    return child;
}

}  // namespace

class RunningChild::Pipe {
public:
    Pipe() {
        if (::pipe2(ends_.data(), O_CLOEXEC) != 0) throwSystemError();
    }
    ~Pipe() {
        closeWriteEnd();
        closeReadEnd();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int writeEnd() const { return ends_[1]; }

    void closeWriteEnd() { close(ends_[1]); }
    void closeReadEnd() { close(ends_[0]); }

    /// Negative patience has no end.
    std::optional<std::size_t> read(std::span<char> into,
                                    std::chrono::milliseconds patience) const {
        if (ends_[0] < 0) return 0;
        pollfd readable{.fd = ends_[0], .events = POLLIN, .revents = 0};
        const int ready = ::poll(&readable, 1, static_cast<int>(patience.count()));
        if (ready == 0) return std::nullopt;
        const ssize_t count = ready < 0 ? -1 : ::read(ends_[0], into.data(), into.size());
        if (count < 0 && errno == EINTR) return std::nullopt;
        if (count < 0) throwSystemError();
        return static_cast<std::size_t>(count);
    }

private:
    static void close(int& end) {
        if (end >= 0) ::close(end);
        end = -1;
    }

    std::array<int, 2> ends_{-1, -1};
};

RunningChild::RunningChild(const URL& program, const std::vector<std::string>& arguments,
                           const Streams& streams)
    : RunningChild(program, arguments, streams, Surroundings()) {}

RunningChild::RunningChild(const URL& program, const std::vector<std::string>& arguments,
                           const Streams& streams, const Surroundings& surroundings)
    : pipe_(std::make_unique<Pipe>()) {
    const auto descriptor = [&](const ChildStream& stream) {
        return stream.kind_ == ChildStream::Kind::pipe ? pipe_->writeEnd() : stream.descriptor_;
    };
    const Descriptors descriptors{descriptor(streams.output), descriptor(streams.error),
                                  streams.input};
    number_ = ProcessCleanup::shared().addChild(
        [&] { return start(program, arguments, descriptors, surroundings); });
    pipe_->closeWriteEnd();
}

RunningChild::~RunningChild() {
    end();
}

std::optional<std::size_t> RunningChild::read(std::span<char> into,
                                              std::chrono::milliseconds patience) {
    return pipe_->read(into, patience);
}

std::string RunningChild::readAll() {
    std::string text;
    readAll([&](std::string_view piece) { text += piece; });
    return text;
}

void RunningChild::readAll(const std::function<void(std::string_view)>& take) {
    constexpr std::chrono::milliseconds withoutEnd(-1);
    std::array<char, 65536> block;
    for (;;) {
        const auto count = pipe_->read(block, withoutEnd);
        if (count == 0U) return;
        if (count) take({block.data(), *count});
    }
}

void RunningChild::askToEnd() {
    if (isReaped_) return;
    ::kill(-number_, SIGTERM);
    // One that is stopped hears of it only when it goes on.
    ::kill(-number_, SIGCONT);
}

void RunningChild::kill() {
    if (!isReaped_) ::kill(-number_, SIGKILL);
}

void RunningChild::end() {
    askToEnd();
    waitForEnd(std::chrono::seconds(3));
    kill();
    pipe_->closeReadEnd();
    static_cast<void>(reap());
}

int RunningChild::wait() {
    const std::optional<int> status = reap();
    if (!status) throwSystemError();
    return WIFEXITED(*status) ? WEXITSTATUS(*status) : 128 + WTERMSIG(*status);
}

bool RunningChild::waitForEnd(std::chrono::milliseconds patience) {
    const auto limit = std::chrono::steady_clock::now() + patience;
    for (bool isAtEnd = false;;) {
        isAtEnd = isAtEnd || dropWhatComes();
        if (isAtEnd && hasEnded()) return true;
        if (std::chrono::steady_clock::now() >= limit) return false;
        if (isAtEnd) std::this_thread::sleep_for(betweenLooks);
    }
}

/// True at the end of the stream.
bool RunningChild::dropWhatComes() {
    std::array<char, 65536> block;
    try {
        return pipe_->read(block, betweenLooks) == 0U;
    } catch (const Error&) {
        return true;
    }
}

bool RunningChild::hasEnded() const {
    if (isReaped_) return true;
    siginfo_t ended{};
    const int failure =
        ::waitid(P_PID, static_cast<id_t>(number_), &ended, WEXITED | WNOWAIT | WNOHANG);
    return failure != 0 || ended.si_pid != 0;
}

/// Absent, with `errno` set, if the system does not tell, or has told before: the number may then
/// be another child's.
std::optional<int> RunningChild::reap() {
    if (isReaped_) {
        errno = ECHILD;
        return std::nullopt;
    }
    siginfo_t ended{};
    while (::waitid(P_PID, static_cast<id_t>(number_), &ended, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    ProcessCleanup::shared().removeChild(number_);
    isReaped_ = true;
    int status = 0;
    while (::waitpid(number_, &status, 0) < 0) {
        if (errno != EINTR) return std::nullopt;
    }
    return status;
}

}  // namespace ReelCore
