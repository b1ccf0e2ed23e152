#include "ReelCore/Platform/EraseTool.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"

#include <system_error>

namespace ReelCore {

URL eraseTool() {
    const URL system = "/usr/sbin/diskutil";
    if (FileSystem::exists(system)) return system;
    const URL self = "/proc/self/exe";
    std::error_code failure;
    const URL program = std::filesystem::read_symlink(self, failure);
    if (failure) throw SystemError(failure.value(), self);
    return program.parent_path().parent_path() / "libexec/keldobay/diskutil";
}

}  // namespace ReelCore
