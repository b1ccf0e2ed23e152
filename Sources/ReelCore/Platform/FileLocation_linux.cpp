#include "ReelCore/Platform/FileLocation.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/MountTable.h"

#include <string>
#include <system_error>

namespace ReelCore {

namespace {

/// Where a path leads: with all links resolved, and as the place inside its file system.
struct Place {
    URL path;
    std::string device;
    URL pathInFileSystem;
};

URL withoutTrailingSlash(const URL& path) {
    return path.has_filename() ? path : path.parent_path();
}

// Twice, since ".." behind a part that is still to be made can lead back to a link.
URL resolve(const URL& path) {
    std::error_code failure;
    URL resolved = std::filesystem::weakly_canonical(std::filesystem::absolute(path), failure);
    if (!failure) resolved = std::filesystem::weakly_canonical(resolved, failure);
    return failure ? FileSystem::standardised(path) : withoutTrailingSlash(resolved);
}

/// True if `folder` is met on the way up from `path`, however it is spelt: names that differ in
/// the case of letters can be the same folder.
bool leadsThrough(URL path, const URL& folder) {
    const auto wanted = FileSystem::identity(folder);
    if (!wanted) return false;
    while (FileSystem::identity(path) != wanted) {
        if (path == path.parent_path()) return false;
        path = path.parent_path();
    }
    return true;
}

Place placeOf(const URL& path) {
    const URL resolved = resolve(path);
    const auto mount = mountOf(resolved, mountTable());
    if (!mount) return {resolved, "", resolved};
    const URL inside = mount->root / resolved.lexically_relative(mount->mountPoint);
    return {resolved, mount->device, withoutTrailingSlash(inside.lexically_normal())};
}

}  // namespace

bool liesWithin(const URL& path, const URL& folder) {
    const Place inner = placeOf(path);
    const Place outer = placeOf(folder);
    return hasPathPrefix(inner.path, outer.path) || leadsThrough(inner.path, outer.path) ||
           (inner.device == outer.device &&
            hasPathPrefix(inner.pathInFileSystem, outer.pathInFileSystem));
}

}  // namespace ReelCore
