#pragma once

#include "ReelCore/Platform/URL.h"

#include <array>
#include <optional>
#include <span>

namespace ReelCore {

/// Where tools are commonly installed, in the order of search.
inline constexpr std::array toolFolders{"/opt/homebrew/bin", "/usr/local/bin", "/opt/local/bin",
                                        "/usr/bin"};

/// Where the variable of the environment points, if an executable file stands there, else `name` in
/// the first of the folders where it is executable; the path as found, links unresolved. Never on
/// the search path. Asks the environment and the file system anew each time; any thread.
std::optional<URL> installedTool(const char* name, const char* variable,
                                 std::span<const char* const> folders = toolFolders);

}  // namespace ReelCore
