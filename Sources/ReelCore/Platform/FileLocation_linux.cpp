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

URL resolve(const URL& path) {
    std::error_code failure;
    const URL resolved =
        std::filesystem::weakly_canonical(std::filesystem::absolute(path), failure);
    return failure ? FileSystem::standardised(path) : withoutTrailingSlash(resolved);
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
    return hasPathPrefix(inner.path, outer.path) ||
           (inner.device == outer.device &&
            hasPathPrefix(inner.pathInFileSystem, outer.pathInFileSystem));
}

}  // namespace ReelCore
