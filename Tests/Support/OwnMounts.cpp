#include "Support/OwnMounts.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/Forked.h"

#include <cstdlib>

#include <sched.h>
#include <sys/mount.h>

namespace TestSupport {

namespace {

void separateMounts() {
    if (::unshare(CLONE_NEWNS) != 0) ReelCore::throwSystemError();
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        ReelCore::throwSystemError("/");
    }
}

}  // namespace

int statusInOwnMounts(const std::function<int()>& body) {
    return statusOfForked([&] {
        separateMounts();
        return body();
    });
}

std::string ownMountsMissing() {
    return statusInOwnMounts([] { return 0; }) == 0 ? "" : "needs the right to mount, as root has";
}

void mountEmptyFolder(const ReelCore::URL& folder) {
    if (::mount("tmpfs", folder.c_str(), "tmpfs", 0, nullptr) != 0) {
        ReelCore::throwSystemError(folder);
    }
}

void hideMediaTools() {
    ::unsetenv("FFMPEG_PATH");
    ::unsetenv("FFPROBE_PATH");
    for (const ReelCore::URL folder : {"/opt", "/usr/local/bin"}) {
        if (ReelCore::FileSystem::isFolder(folder)) mountEmptyFolder(folder);
    }
    for (const ReelCore::URL tool : {"/usr/bin/ffmpeg", "/usr/bin/ffprobe"}) {
        if (!ReelCore::FileSystem::exists(tool)) continue;
        if (::mount("/dev/null", tool.c_str(), nullptr, MS_BIND, nullptr) != 0) {
            ReelCore::throwSystemError(tool);
        }
    }
}

}  // namespace TestSupport
