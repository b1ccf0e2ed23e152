#include "Support/SystemServices.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <array>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace TestSupport {

namespace {

using ReelCore::URL;

const URL udevd = "/lib/systemd/systemd-udevd";
const URL busSocket = "/run/dbus/system_bus_socket";

constexpr std::string_view busConfiguration = R"(<busconfig>
  <listen>unix:path=/run/dbus/system_bus_socket</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>)";

void mountFresh(const URL& folder) {
    if (!ReelCore::FileSystem::isFolder(folder)) return;
    if (::mount("tmpfs", folder.c_str(), "tmpfs", 0, nullptr) != 0) {
        ReelCore::throwSystemError(folder);
    }
}

void waitFor(const URL& path) {
    for (int attempt = 0; attempt < 1000; ++attempt) {
        if (ReelCore::FileSystem::exists(path)) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("did not come up: " + path.native());
}

void replacePrograms(const std::map<std::string, std::optional<std::string>>& programs) {
    const URL folder = "/usr/sbin";
    std::filesystem::create_directories("/run/programs/upper");
    std::filesystem::create_directories("/run/programs/work");
    const char* layers =
        "lowerdir=/usr/sbin,upperdir=/run/programs/upper,workdir=/run/programs/work";
    if (::mount("overlay", folder.c_str(), "overlay", 0, layers) != 0) {
        ReelCore::throwSystemError(folder);
    }
    for (const auto& [name, script] : programs) {
        std::filesystem::remove(folder / name);
        if (!script) continue;
        writeFile(folder / name, "#!/bin/sh\n" + *script);
        std::filesystem::permissions(folder / name, std::filesystem::perms(0755));
    }
}

}  // namespace

/// The process's own mount table and network, given back at the end where the process may.
class SystemServices::World {
public:
    World() : before_(::open("/proc/self/ns/mnt", O_RDONLY | O_CLOEXEC)) {
        if (::unshare(CLONE_NEWNS | CLONE_NEWNET) != 0) ReelCore::throwSystemError();
        if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
            ReelCore::throwSystemError("/");
        }
        // For udev's links, which would else stay in the machine's own /dev.
        std::filesystem::create_directories("/dev/disk");
        for (const char* folder : {"/run", "/media", "/var/lib/udisks2", "/dev/disk"}) {
            mountFresh(folder);
        }
        for (const char* folder : {"/run/dbus", "/run/udev", "/run/lock"}) {
            std::filesystem::create_directories(folder);
        }
    }
    ~World() {
        ::setns(before_, CLONE_NEWNS);
        ::close(before_);
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;

private:
    int before_;
};

/// A service that runs until the object, or the process, is gone.
class SystemServices::Daemon {
public:
    Daemon(const URL& log, std::vector<std::string> command, const std::string& locale) {
        std::vector<char*> arguments;
        for (std::string& word : command) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        process_ = ::fork();
        if (process_ < 0) ReelCore::throwSystemError();
        if (process_ > 0) return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int output = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(output, STDOUT_FILENO);
        ::dup2(output, STDERR_FILENO);
        ::setenv("LC_ALL", locale.c_str(), 1);
        ::execvp(arguments.front(), arguments.data());
        ::_exit(127);
    }
    ~Daemon() {
        ::kill(process_, SIGTERM);
        ::waitpid(process_, nullptr, 0);
    }
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

private:
    pid_t process_ = 0;
};

SystemServices::SystemServices(const Setup& setup) : world_(std::make_unique<World>()) {
    if (!setup.programs.empty()) replacePrograms(setup.programs);
    const URL configuration = folder_.path() / "bus.conf";
    const URL log = folder_.path() / "log";
    writeFile(configuration, busConfiguration);
    const auto start = [&](const std::vector<std::string>& command) {
        daemons_.push_back(std::make_unique<Daemon>(log, command, setup.locale));
    };
    start({"dbus-daemon", "--nofork", "--nopidfile", "--config-file=" + configuration.native()});
    start({udevd.native()});
    waitFor(busSocket);
    waitFor("/run/udev/control");
    if (setup.diskService.empty()) return;
    start(setup.diskService);
    const auto answer =
        runTool("gdbus", {"wait", "--system", "--timeout", "60", "org.freedesktop.UDisks2"});
    if (answer.status != 0) throw std::runtime_error("no disk service: " + readFile(log));
}

SystemServices::~SystemServices() {
    while (!daemons_.empty()) daemons_.pop_back();
}

void SystemServices::settle() {
    outputOf("udevadm", {"settle", "--timeout=60"});
}

std::string SystemServices::missing() {
    if (!LoopMount::isAvailable()) return "needs root and loop devices";
    for (const URL& program : {URL(udisksd), udevd}) {
        if (!ReelCore::FileSystem::exists(program)) return "needs " + program.native();
    }
    for (const char* tool : {"dbus-daemon", "gdbus", "udevadm", "blkid", "mkfs.exfat"}) {
        if (!hasTool(tool)) return std::string("needs ") + tool;
    }
    return {};
}

}  // namespace TestSupport
