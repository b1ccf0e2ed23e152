#include "Support/Snapshot.h"

#include "ReelCore/Platform/SystemError.h"

#include <array>
#include <memory>
#include <stdexcept>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TestSupport {

namespace {

using ReelCore::Date;
using ReelCore::throwSystemError;
using ReelCore::URL;

Date dateOf(const timespec& time) {
    return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

timespec timespecOf(Date date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    return {seconds.time_since_epoch().count(), (date - seconds).count()};
}

struct stat statusOf(const URL& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) throwSystemError(path);
    return status;
}

int openUnseen(const URL& path, int flags) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NOATIME | O_CLOEXEC | flags);
    if (descriptor < 0) throwSystemError(path);
    return descriptor;
}

std::vector<std::string> namesIn(const URL& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> open(::fdopendir(openUnseen(folder, O_DIRECTORY)),
                                                   ::closedir);
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(open.get())) names.emplace_back(entry->d_name);
    std::erase(names, ".");
    std::erase(names, "..");
    return names;
}

std::string contentOf(const URL& file) {
    const int descriptor = openUnseen(file, 0);
    std::string content;
    std::array<char, 65536> block;
    ssize_t count = 0;
    while ((count = ::read(descriptor, block.data(), block.size())) > 0) {
        content.append(block.data(), static_cast<std::size_t>(count));
    }
    ::close(descriptor);
    if (count < 0) throw std::runtime_error("could not read " + file.native());
    return content;
}

void collect(const URL& path, const std::string& below, Snapshot& snapshot) {
    const struct stat status = statusOf(path);
    Trace trace{status.st_ino,          status.st_mode,         status.st_size,
                dateOf(status.st_mtim), dateOf(status.st_atim), {}};
    if (S_ISREG(status.st_mode)) trace.content = contentOf(path);
    if (S_ISLNK(status.st_mode)) {
        trace.content = std::filesystem::read_symlink(path).native();
        trace.accessed = {};
    }
    snapshot[below] = trace;
    if (!S_ISDIR(status.st_mode)) return;
    for (const std::string& name : namesIn(path)) {
        collect(path / name, below.empty() ? name : below + "/" + name, snapshot);
    }
}

void setDates(const URL& path, timespec accessed, timespec modified) {
    const timespec dates[2] = {accessed, modified};
    if (::utimensat(AT_FDCWD, path.c_str(), dates, AT_SYMLINK_NOFOLLOW) != 0) {
        throwSystemError(path);
    }
}

}  // namespace

Snapshot snapshotOf(const URL& folder) {
    Snapshot snapshot;
    collect(folder, "", snapshot);
    return snapshot;
}

void ageAccessDates(const URL& folder) {
    const timespec longAgo{981'173'106, 0};
    const timespec unchanged{0, UTIME_OMIT};
    for (const auto& [below, trace] : snapshotOf(folder)) {
        setDates(below.empty() ? folder : folder / below, longAgo, unchanged);
    }
}

void setModificationDate(const URL& path, Date date) {
    setDates(path, {0, UTIME_OMIT}, timespecOf(date));
}

Date modificationDate(const URL& path) {
    return dateOf(statusOf(path).st_mtim);
}

}  // namespace TestSupport
