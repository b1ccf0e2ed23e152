#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

/// One mounted file system, as the kernel tells it.
struct Mount {
    URL mountPoint;
    URL root;                ///< The folder inside the file system that is mounted.
    std::string device;      ///< "major:minor" of the file system.
    std::string source;      ///< What was mounted, for a disk its device node.
    std::string fileSystem;  ///< The kernel's name of the type.
    bool readOnly = false;
    std::uint64_t id = 0;  ///< The kernel's number of the mount.
};

/// What is mounted now, in the order of mounting: a later mount hides an earlier one at the same
/// point. Empty where the kernel does not tell.
std::vector<Mount> mountTable();

/// Reads the text of the kernel's table (proc(5), mountinfo). Lines that have not its form are
/// passed over.
std::vector<Mount> parseMountTable(const std::string& text);

/// The mount that an absolute, resolved path lies on: the one that the kernel names for its deepest
/// part that exists, since an older mount may lie hidden below a later one. Where the kernel does
/// not tell, or the table has no such mount, the one with the longest mount point.
std::optional<Mount> mountOf(const URL& path, const std::vector<Mount>& table);

/// True if `path` is `folder` or below it, going by their parts alone.
bool hasPathPrefix(const URL& path, const URL& folder);

}  // namespace ReelCore
