#include "ReelCore/Platform/ChildProcess.h"
#include "ReelCore/Platform/SystemError.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <optional>
#include <set>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace ReelCore {

namespace {

/// The children that some thread waits for. A child leaves the list before it is reaped, so that
/// its number can't belong to somebody else when endAll uses it.
class RunningChildren {
public:
    static RunningChildren& shared() {
        static RunningChildren children;
        return children;
    }

    /// Starts a child and puts it on the list in one step: endAll finds it or comes before it.
    template <class Start>
    pid_t add(Start start) {
        const std::lock_guard guard(lock_);
        return *children_.insert(start()).first;
    }

    void remove(pid_t child) {
        const std::lock_guard guard(lock_);
        children_.erase(child);
    }

    void end() {
        const std::lock_guard guard(lock_);
        for (const pid_t child : children_) ::kill(child, SIGTERM);
    }

private:
    std::mutex lock_;
    std::set<pid_t> children_;
};

class Pipe {
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

    std::string readAll() const {
        std::string text;
        std::array<char, 65536> block;
        for (;;) {
            const ssize_t count = ::read(ends_[0], block.data(), block.size());
            if (count > 0) text.append(block.data(), static_cast<std::size_t>(count));
            if (count == 0 || (count < 0 && errno != EINTR)) return text;
        }
    }

private:
    static void close(int& end) {
        if (end >= 0) ::close(end);
        end = -1;
    }

    std::array<int, 2> ends_{-1, -1};
};

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

/// No signal is blocked or ignored in the child, whatever the calling thread has set up.
class SpawnAttributes {
public:
    SpawnAttributes() {
        ::posix_spawnattr_init(&attributes_);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

std::vector<char*> argumentVector(const URL& program, const std::vector<std::string>& arguments) {
    std::vector<char*> vector{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        vector.push_back(const_cast<char*>(argument.c_str()));
    }
    vector.push_back(nullptr);
    return vector;
}

pid_t start(const URL& program, const std::vector<std::string>& arguments, int output) {
    const SpawnAttributes attributes;
    SpawnActions actions;
    ::posix_spawn_file_actions_addopen(actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(actions.get(), output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(actions.get(), output, STDERR_FILENO);
    ::posix_spawn_file_actions_addclosefrom_np(actions.get(), STDERR_FILENO + 1);
    pid_t child = 0;
    const int failure = ::posix_spawn(&child, program.c_str(), actions.get(), attributes.get(),
                                      argumentVector(program, arguments).data(), environ);
    if (failure != 0) throw SystemError(failure, program);
    return child;
}

/// One running program. It never stays behind: left without `wait`, as by an exception, it loses
/// whom it writes to, and is waited for all the same.
class Child {
public:
    Child(const URL& program, const std::vector<std::string>& arguments)
        : number_(RunningChildren::shared().add(
              [&] { return start(program, arguments, output_.writeEnd()); })) {
        output_.closeWriteEnd();
    }
    ~Child() {
        output_.closeReadEnd();
        if (!isReaped_) static_cast<void>(reap());
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    std::string readOutput() const { return output_.readAll(); }

    /// Throws SystemError if the system does not tell how the child has ended, as where the process
    /// ignores the signal of that.
    int wait() {
        const std::optional<int> status = reap();
        if (!status) throwSystemError();
        return WIFEXITED(*status) ? WEXITSTATUS(*status) : 128 + WTERMSIG(*status);
    }

private:
    /// Absent, with `errno` set, if the system does not tell.
    std::optional<int> reap() {
        siginfo_t ended{};
        while (::waitid(P_PID, static_cast<id_t>(number_), &ended, WEXITED | WNOWAIT) != 0 &&
               errno == EINTR) {
        }
        RunningChildren::shared().remove(number_);
        isReaped_ = true;
        int status = 0;
        while (::waitpid(number_, &status, 0) < 0) {
            if (errno != EINTR) return std::nullopt;
        }
        return status;
    }

    Pipe output_;
    pid_t number_;
    bool isReaped_ = false;
};

}  // namespace

ChildProcess::Outcome ChildProcess::run(const URL& program,
                                        const std::vector<std::string>& arguments) {
    Child child(program, arguments);
    Outcome outcome;
    outcome.output = child.readOutput();
    outcome.status = child.wait();
    return outcome;
}

void ChildProcess::endAll() {
    RunningChildren::shared().end();
}

}  // namespace ReelCore
