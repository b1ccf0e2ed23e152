#include "ReelCore/Platform/FolderWalk.h"
#include "ReelCore/Platform/OpenFolder.h"
#include "ReelCore/Platform/SystemError.h"

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

enum class Kind { file, folder, other };

Kind kindOf(mode_t mode) {
    return S_ISREG(mode) ? Kind::file : S_ISDIR(mode) ? Kind::folder : Kind::other;
}

class Walk {
public:
    Walk(const URL& root, const std::function<bool(std::string_view)>& isIgnored,
         const std::function<void(WalkedFile)>& visit)
        : root_(root), isIgnored_(isIgnored), visit_(visit) {}

    bool run() {
        if (!visitFolder("", FolderLinks::follow)) return false;
        while (!pending_.empty()) {
            const std::string path = std::move(pending_.back());
            pending_.pop_back();
            visitFolder(path, FolderLinks::refuse);
        }
        return true;
    }

private:
    /// False, and nothing visited, if the folder is passed over.
    bool visitFolder(const std::string& path, FolderLinks links) {
        const URL place = path.empty() ? root_ : root_ / path;
        const OpenFolder folder = openFolder(place, links);
        if (!folder) {
            throwIfOwnLimit(errno, place);
            return false;
        }
        // Half a listing is not an unreadable folder: files that are known to be there would go
        // missing among those that were listed.
        const int failure = list(folder.get(), path.empty() ? "" : path + "/");
        if (failure != 0) throw SystemError(failure, place);
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
            throw SystemError(code, root_ / path);
        }
        switch (kindOf(status.st_mode)) {
            case Kind::folder:
                return pending_.push_back(std::move(path));
            case Kind::file:
                return visit_({std::move(path), status.st_size, dateOf(status.st_mtim)});
            case Kind::other:
                return;
        }
    }

    const URL& root_;
    const std::function<bool(std::string_view)>& isIgnored_;
    const std::function<void(WalkedFile)>& visit_;
    std::vector<std::string> pending_;
};

}  // namespace

bool walkFolder(const URL& root, const std::function<bool(std::string_view name)>& isIgnored,
                const std::function<void(WalkedFile)>& visit) {
    return Walk(root, isIgnored, visit).run();
}

}  // namespace ReelCore
