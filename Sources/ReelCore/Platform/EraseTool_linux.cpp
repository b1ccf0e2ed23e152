#include "ReelCore/Platform/EraseTool.h"
#include "ReelCore/Platform/FileSystem.h"

#include <system_error>

namespace ReelCore {

URL eraseTool() {
    const URL system = "/usr/sbin/diskutil";
    if (FileSystem::exists(system)) return system;
    std::error_code ignored;
    const URL program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return program.parent_path().parent_path() / "libexec/keldobay/diskutil";
}

}  // namespace ReelCore
