#include "ReelCore/Offload/ReelFolder.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/SystemError.h"

namespace ReelCore {

namespace {

// Not the path's own operator /, which would let a part with a leading slash replace the folder.
URL append(const URL& folder, const std::string& part) {
    const bool hasSlash = folder.native().ends_with('/');
    return folder.native() + (hasSlash ? "" : "/") + part;
}

}  // namespace

ReelFolder::ReelFolder(const FileLocation& source, const URL& destination,
                       const std::string& reelName)
    : source_(source), destination_(destination), path_(append(destination, reelName)) {
    if (destination.empty()) throw OffloadError(OffloadError::DestinationNotWritable{destination});
}

void ReelFolder::requireOutsideSource() const {
    const bool within = [&] {
        try {
            return liesInSource(path_);
        } catch (const SystemError&) {
            return true;
        }
    }();
    if (within) throw OffloadError(OffloadError::DestinationNotWritable{destination_});
}

bool ReelFolder::liesInSource(const URL& path) const {
    return FileLocation(path).pathWithin(source_).has_value();
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

void ReelFolder::flush() const {
    try {
        if (held_) held_->flushFileSystem();
    } catch (const SystemError& error) {
        throw OffloadError(OffloadError::WriteFailed{path_, error.sentence()});
    }
}

URL ReelFolder::targetFor(const std::string& relativePath) const {
    return append(path_, relativePath);
}

void ReelFolder::prepareParent(const URL& target) {
    if (!isStillThere()) {
        throw OffloadError(OffloadError::WriteFailed{target, "the drive is no longer there"});
    }
    const URL parent = target.parent_path();
    const bool isPrepared = parent == preparedParent_ && preparedIdentity_ &&
                            FileSystem::identity(parent) == preparedIdentity_;
    if (isPrepared) return;
    if (liesInSource(parent)) {
        throw OffloadError(OffloadError::DestinationNotWritable{destination_});
    }
    FileSystem::createFolders(parent);
    preparedParent_ = parent;
    preparedIdentity_ = FileSystem::identity(parent);
}

}  // namespace ReelCore
