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

/// A folder that only this process can't open is not the card's fault, and leaving it out would
/// leave its files out of every copy.
bool isOwnLimit(int code) {
    return code == EMFILE || code == ENFILE || code == ENOMEM || code == ENAMETOOLONG;
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
        const OpenFolder top = openFolder(root_, FolderLinks::follow);
        if (!top) return false;
        list(top.get(), "");
        while (!pending_.empty()) {
            const std::string prefix = std::move(pending_.back());
            pending_.pop_back();
            const OpenFolder folder = openFolder(root_ / prefix, FolderLinks::refuse);
            if (folder) {
                list(folder.get(), prefix);
            } else if (isOwnLimit(errno)) {
                throwSystemError(root_ / prefix);
            }
        }
        return true;
    }

private:
    void list(DIR* folder, const std::string& prefix) {
        while (const dirent* entry = ::readdir(folder)) {
            const std::string_view name = entry->d_name;
            if (name == "." || name == ".." || isIgnored_(name)) continue;
            meet(folder, *entry, prefix + std::string(name));
        }
    }

    void meet(DIR* folder, const dirent& entry, std::string path) {
        if (entry.d_type == DT_DIR) return pending_.push_back(path + "/");
        if (entry.d_type != DT_REG && entry.d_type != DT_UNKNOWN) return;
        struct stat status {};
        if (::fstatat(::dirfd(folder), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            throwSystemError(root_ / path);
        }
        switch (kindOf(status.st_mode)) {
            case Kind::folder:
                return pending_.push_back(path + "/");
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
