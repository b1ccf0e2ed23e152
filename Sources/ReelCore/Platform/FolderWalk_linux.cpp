#include "ReelCore/Platform/FolderWalk.h"
#include "ReelCore/Platform/OpenFolder.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace ReelCore {

namespace {

/// A folder that only this process can't read is not the card's fault, and leaving it out would
/// leave its files out of every copy.
void throwIfOwnLimit(int code, const URL& path) {
    const SystemError failure(code, path);
    if (failure.isOwnLimit()) throw failure;
}

/// Absent where the date lies outside what a Date can hold.
std::optional<Date> dateOf(const timespec& time) {
    constexpr auto limit = std::chrono::floor<std::chrono::seconds>(Date::max()).time_since_epoch();
    if (time.tv_sec >= limit.count() || time.tv_sec <= -limit.count()) return std::nullopt;
    return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

/// A strict walk fails where a listing breaks off, an entry's attributes can't be read, or no means
/// are left to read a folder; the other passes that over.
enum class Strictness { strict, lenient };

class Walk {
public:
    using Visit = std::function<void(std::string path, const struct stat& status)>;

    Walk(const URL& root, const std::function<bool(std::string_view)>& isIgnored,
         Strictness strictness, const Visit& visit)
        : root_(root), isIgnored_(isIgnored), strictness_(strictness), visit_(visit) {}

    /// What was passed over; nothing if that is the root.
    std::optional<UnreadFolders> run() {
        if (!visitFolder("", FolderLinks::follow)) return std::nullopt;
        while (!pending_.empty()) {
            const std::string path = std::move(pending_.back());
            pending_.pop_back();
            if (!visitFolder(path, FolderLinks::refuse)) passOver(path);
        }
        return std::move(unread_);
    }

private:
    /// The first one is the first by its path, whatever the order of the walk.
    void passOver(const std::string& path) {
        unread_.count += 1;
        if (unread_.count == 1 || path < unread_.first) unread_.first = path;
    }

    /// False, and nothing visited, if the folder is passed over.
    bool visitFolder(const std::string& path, FolderLinks links) {
        const URL place = path.empty() ? root_ : root_ / path;
        const OpenFolder folder = openFolder(place, links);
        if (!folder) {
            if (strictness_ == Strictness::strict) throwIfOwnLimit(errno, place);
            return false;
        }
        // Half a listing is not an unreadable folder: files that are known to be there would go
        // missing among those that were listed.
        const int failure = list(folder.get(), path.empty() ? "" : path + "/");
        if (failure != 0 && strictness_ == Strictness::strict) throw SystemError(failure, place);
        return true;
    }

    /// The `errno` value that ended the listing, 0 if there were no more entries.
    int list(DIR* folder, const std::string& prefix) {
        errno = 0;
        while (const dirent* entry = ::readdir(folder)) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != ".." && !isIgnored_(name)) {
                meet(folder, entry->d_name, prefix + std::string(name));
            }
            errno = 0;
        }
        return errno;
    }

    void meet(DIR* folder, const char* name, std::string path) {
        struct stat status {};
        if (::fstatat(::dirfd(folder), name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            const int code = errno;
            if (strictness_ == Strictness::strict) throw SystemError(code, root_ / path);
            status = {};
        }
        if (S_ISDIR(status.st_mode)) pending_.push_back(path);
        visit_(std::move(path), status);
    }

    const URL& root_;
    const std::function<bool(std::string_view)>& isIgnored_;
    const Strictness strictness_;
    const Visit& visit_;
    std::vector<std::string> pending_;
    UnreadFolders unread_;
};

/// Collects first, so that the visits come in the order of the paths.
bool visitEntries(const URL& root, const std::function<bool(std::string_view)>& isIgnored,
                  const std::function<bool(const URL&, const struct stat&)>& isWanted,
                  const std::function<void(const URL&)>& visit) {
    std::vector<URL> entries;
    const auto keep = [&](const std::string& path, const struct stat& status) {
        URL entry = root / path;
        if (isWanted(entry, status)) entries.push_back(std::move(entry));
    };
    if (!Walk(root, isIgnored, Strictness::lenient, keep).run()) return false;
    std::ranges::sort(entries, {}, &URL::native);
    std::ranges::for_each(entries, visit);
    return true;
}

bool isFileOrFolder(mode_t mode) {
    return S_ISREG(mode) || S_ISDIR(mode);
}

}  // namespace

std::optional<UnreadFolders> walkFolder(const URL& root,
                                        const std::function<bool(std::string_view name)>& isIgnored,
                                        const std::function<void(WalkedFile)>& visit) {
    return Walk(root, isIgnored, Strictness::strict,
                [&](std::string path, const struct stat& status) {
                    if (!S_ISREG(status.st_mode)) return;
                    visit({std::move(path), status.st_size, dateOf(status.st_mtim)});
                })
        .run();
}

bool walkEntries(const URL& root, const std::function<void(const URL&)>& visit) {
    const auto nothing = [](std::string_view) { return false; };
    const auto keepsNobodyWaiting = [](const URL& entry, const struct stat& status) {
        if (!S_ISLNK(status.st_mode)) return isFileOrFolder(status.st_mode);
        struct stat target {};
        return ::stat(entry.c_str(), &target) != 0 || isFileOrFolder(target.st_mode);
    };
    return visitEntries(root, nothing, keepsNobodyWaiting, visit);
}

bool walkReadableEntries(const URL& root,
                         const std::function<bool(std::string_view name)>& isIgnored,
                         const std::function<void(const URL&)>& visit) {
    const auto everything = [](const URL&, const struct stat&) { return true; };
    return visitEntries(root, isIgnored, everything, visit);
}

}  // namespace ReelCore
