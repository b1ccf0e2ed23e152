#include "ReelCore/Platform/OpenFolder.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace ReelCore {

OpenFolder openFolder(const URL& path, FolderLinks links) {
    const int flags =
        O_RDONLY | O_DIRECTORY | O_CLOEXEC | (links == FolderLinks::refuse ? O_NOFOLLOW : 0);
    int descriptor = ::open(path.c_str(), flags | O_NOATIME);
    if (descriptor < 0 && errno == EPERM) descriptor = ::open(path.c_str(), flags);
    if (descriptor < 0) return nullptr;
    DIR* folder = ::fdopendir(descriptor);
    if (!folder) ::close(descriptor);
    return OpenFolder(folder);
}

}  // namespace ReelCore
