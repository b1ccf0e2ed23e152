#include "ReelCore/Platform/OpenFolder.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace ReelCore {

namespace {

int openRetrying(const URL& path, int flags) {
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), flags);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

}  // namespace

OpenFolder openFolder(const URL& path, FolderLinks links) {
    const int flags =
        O_RDONLY | O_DIRECTORY | O_CLOEXEC | (links == FolderLinks::refuse ? O_NOFOLLOW : 0);
    int descriptor = openRetrying(path, flags | O_NOATIME);
    if (descriptor < 0 && errno == EPERM) descriptor = openRetrying(path, flags);
    if (descriptor < 0) return nullptr;
    DIR* folder = ::fdopendir(descriptor);
    if (!folder) {
        const int code = errno;
        ::close(descriptor);
        errno = code;
    }
    return OpenFolder(folder);
}

}  // namespace ReelCore
