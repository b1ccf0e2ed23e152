#include "ReelCore/Platform/FileSystem.h"

#include "ReelCore/Platform/OpenFolder.h"
#include "ReelCore/Platform/SystemError.h"

#include <cerrno>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ReelCore {

namespace fs = std::filesystem;

bool FileSystem::isFolder(const URL& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

bool FileSystem::exists(const URL& path) {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(path, ignored));
}

bool FileSystem::leadsSomewhere(const URL& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

bool FileSystem::isPipeOrDevice(const URL& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

bool FileSystem::isExecutable(const URL& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && ::access(path.c_str(), X_OK) == 0;
}

std::vector<std::string> FileSystem::names(const URL& folder) {
    const OpenFolder open = openFolder(folder, FolderLinks::follow);
    if (!open) throwSystemError(folder);
    std::vector<std::string> result;
    errno = 0;
    while (const dirent* entry = ::readdir(open.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") result.emplace_back(name);
        errno = 0;
    }
    if (errno != 0) throwSystemError(folder);
    return result;
}

void FileSystem::createFolders(const URL& folder) {
    std::error_code failure;
    fs::create_directories(folder, failure);
    if (failure) throw SystemError(failure.value(), folder);
    if (!isFolder(folder)) throw SystemError(ENOTDIR, folder);
}

void FileSystem::flushFolder(const URL& folder) {
    const OpenFolder open = openFolder(folder, FolderLinks::follow);
    if (!open && errno == EACCES) return;
    if (!open) throwSystemError(folder);
    while (::fsync(::dirfd(open.get())) != 0) {
        if (errno == EINVAL) return;
        if (errno != EINTR) throwSystemError(folder);
    }
}

std::optional<FileIdentity> FileSystem::identity(const URL& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

std::optional<FileIdentity> FileSystem::identity(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

std::optional<std::int64_t> FileSystem::sizeOf(const URL& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return status.st_size;
}

void FileSystem::removeIfEmpty(const URL& path, const FileIdentity& meant) {
    if (identity(path) != meant || sizeOf(path) != 0) return;
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

void FileSystem::setModificationDate(const URL& path, Date date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
    const timespec access{0, UTIME_OMIT};
    const timespec modification{seconds.time_since_epoch().count(), (date - seconds).count()};
    const timespec times[2] = {access, modification};
    if (::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0) {
        throwSystemError(path);
    }
}

URL FileSystem::absolute(const URL& path) {
    std::error_code failure;
    URL result = fs::absolute(path, failure);
    if (failure) throw SystemError(failure.value(), path);
    return result;
}

URL FileSystem::standardised(const URL& path) {
    const URL normal = absolute(path).lexically_normal();
    return normal.has_filename() || !normal.has_relative_path() ? normal : normal.parent_path();
}

}  // namespace ReelCore
