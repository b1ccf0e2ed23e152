#include "ReelCore/Offload/HeldTree.h"

#include <utility>

namespace ReelCore {

HeldTree::HeldTree(HeldFolder root, MissingFolders missing)
    : root_(std::move(root)), missing_(missing) {}

bool HeldTree::hasAtHand(const std::string& relativePath) const {
    const auto slash = relativePath.rfind('/');
    const auto length = slash == std::string::npos ? 0 : slash;
    return parent_ && relativePath.compare(0, length, way_.native()) == 0 &&
           parent_->isStillThere();
}

const HeldFolder& HeldTree::parentOf(const std::string& relativePath) {
    if (!hasAtHand(relativePath)) {
        way_ = URL(relativePath).parent_path();
        parent_.reset();
        parent_ = root_.below(way_, missing_);
    }
    return *parent_;
}

}  // namespace ReelCore
