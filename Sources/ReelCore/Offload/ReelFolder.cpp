#include "ReelCore/Offload/ReelFolder.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/FileLocation.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"

namespace ReelCore {

namespace {

// Not the path's own operator /, which would let a part with a leading slash replace the folder.
URL append(const URL& folder, const std::string& part) {
    return folder.native() + "/" + part;
}

}  // namespace

ReelFolder::ReelFolder(const URL& source, const URL& destination, const std::string& reelName)
    : source_(source), destination_(destination), path_(append(destination, reelName)) {}

void ReelFolder::requireOutsideSource() const {
    if (liesWithin(path_, source_)) {
        throw OffloadError(OffloadError::DestinationNotWritable{destination_});
    }
}

void ReelFolder::create() {
    try {
        FileSystem::createFolders(path_);
        held_.emplace(path_);
    } catch (const SystemError&) {
        throw OffloadError(OffloadError::DestinationNotWritable{destination_});
    }
}

bool ReelFolder::isStillThere() const {
    return held_ && held_->isStillThere();
}

URL ReelFolder::targetFor(const std::string& relativePath) const {
    return append(path_, relativePath);
}

void ReelFolder::prepareParent(const URL& target) {
    if (!isStillThere()) {
        throw OffloadError(OffloadError::WriteFailed{target, "the drive is no longer there"});
    }
    const URL parent = target.parent_path();
    if (parent == preparedParent_) return;
    if (liesWithin(parent, source_)) {
        throw OffloadError(OffloadError::DestinationNotWritable{destination_});
    }
    FileSystem::createFolders(parent);
    preparedParent_ = parent;
}

}  // namespace ReelCore
