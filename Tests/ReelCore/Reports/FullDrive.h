#pragma once

#include "Support/FolderTree.h"

#include <fstream>

namespace TestSupport {

/// Writes until a small drive takes no more byte.
inline void fill(const ReelCore::URL& drive) {
    std::ofstream file(drive / "last copy.mov", std::ios::binary);
    for (const std::string block = noise(65'536); file; file.flush()) file << block;
    std::ofstream rest(drive / "rest", std::ios::binary);
    while (rest) rest.put('x').flush();
}

}  // namespace TestSupport
