#include "ReelCore/Platform/FileLocation.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/MountTable.h"

#include <system_error>

namespace ReelCore {

namespace {

URL withoutTrailingSlash(const URL& path) {
    return path.has_filename() ? path : path.parent_path();
}

// Twice, since ".." behind a part that is still to be made can lead back to a link.
URL resolve(const URL& path) {
    std::error_code failure;
    URL resolved = std::filesystem::weakly_canonical(FileSystem::absolute(path), failure);
    if (!failure) resolved = std::filesystem::weakly_canonical(resolved, failure);
    return failure ? FileSystem::standardised(path) : withoutTrailingSlash(resolved);
}

std::optional<URL> relativePath(const URL& path, const URL& folder) {
    if (!hasPathPrefix(path, folder)) return std::nullopt;
    return path.lexically_relative(folder);
}

/// The same where `folder` is met on the way up from `path`, however it is spelt: names that differ
/// in the case of letters can be the same folder.
std::optional<URL> relativePathByIdentity(const URL& path, const URL& folder) {
    const auto wanted = FileSystem::identity(folder);
    if (!wanted) return std::nullopt;
    URL above = path;
    while (FileSystem::identity(above) != wanted) {
        if (above == above.parent_path()) return std::nullopt;
        above = above.parent_path();
    }
    return path.lexically_relative(above);
}

}  // namespace

FileLocation::FileLocation(const URL& path) : path_(resolve(path)), pathInFileSystem_(path_) {
    const auto mount = mountOf(path_, mountTable());
    if (!mount) return;
    const URL inside = mount->root / path_.lexically_relative(mount->mountPoint);
    device_ = mount->device;
    pathInFileSystem_ = withoutTrailingSlash(inside.lexically_normal());
}

std::optional<URL> FileLocation::pathWithin(const FileLocation& folder) const {
    if (auto way = relativePath(path_, folder.path_)) return way;
    if (auto way = relativePathByIdentity(path_, folder.path_)) return way;
    if (device_ != folder.device_) return std::nullopt;
    return relativePath(pathInFileSystem_, folder.pathInFileSystem_);
}

}  // namespace ReelCore
