#pragma once

#include "ReelCore/Platform/HeldFolder.h"

#include <optional>
#include <string>

namespace ReelCore {

/// A held folder and, of the folders below it, the one that was asked for last: files mostly come
/// one folder after the other. Movable; one thread.
class HeldTree {
public:
    HeldTree(HeldFolder root, MissingFolders missing);

    const HeldFolder& root() const { return root_; }

    /// True if the folder of `relativePath` is the one at hand and its path still leads to it.
    bool hasAtHand(const std::string& relativePath) const;

    /// The folder of the file at `relativePath`, found without following a link below the root. It
    /// stays until the next call. Throws SystemError if a part of the way is missing or no folder.
    const HeldFolder& parentOf(const std::string& relativePath);

private:
    HeldFolder root_;
    MissingFolders missing_;
    URL way_;
    std::optional<HeldFolder> parent_;
};

}  // namespace ReelCore
