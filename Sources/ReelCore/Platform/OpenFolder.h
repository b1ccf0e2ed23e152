#pragma once

#include "ReelCore/Platform/URL.h"

#include <memory>

#include <dirent.h>

namespace ReelCore {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

/// A folder that is open to be listed.
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

enum class FolderLinks { follow, refuse };

/// Opens a folder, leaving its access time alone where the system allows it. Null, with `errno`
/// set, if that fails; what is no folder is refused, and so is a link to one where asked for.
OpenFolder openFolder(const URL& path, FolderLinks links);

}  // namespace ReelCore
