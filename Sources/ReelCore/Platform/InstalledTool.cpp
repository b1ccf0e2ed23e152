#include "ReelCore/Platform/InstalledTool.h"

#include "ReelCore/Platform/FileSystem.h"

#include <cstdlib>

namespace ReelCore {

std::optional<URL> installedTool(const char* name, const char* variable,
                                 std::span<const char* const> folders) {
    const char* const named = std::getenv(variable);
    if (named && FileSystem::isExecutable(named)) return named;
    for (const URL folder : folders) {
        if (FileSystem::isExecutable(folder / name)) return folder / name;
    }
    return std::nullopt;
}

}  // namespace ReelCore
