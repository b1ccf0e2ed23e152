#include "ReelCore/Offload/ReelFolder.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"

#include <system_error>
#include <utility>

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
    : source_(source),
      destination_(destination),
      reelName_(reelName),
      path_(append(destination, reelName)) {
    if (destination.empty()) {
        throw OffloadError(OffloadError::DestinationNotWritable{destination, ""});
    }
}

void ReelFolder::requireOutsideSource() const {
    const bool within = [&] {
        try {
            return liesInSource(path_);
        } catch (const SystemError&) {
            return true;
        }
    }();
    if (!within) return;
    throw OffloadError(OffloadError::DestinationNotWritable{
        destination_, "The reel folder would lie on the card itself."});
}

bool ReelFolder::liesInSource(const URL& path) const {
    return FileLocation(path).pathWithin(source_).has_value();
}

void ReelFolder::create() {
    try {
        FileSystem::createFolders(destination_);
        const URL way = URL("/" + reelName_).relative_path();
        HeldFolder folder = HeldFolder(destination_).below(way, MissingFolders::make);
        cache_.emplace(folder.descriptor());
        if (FileSystem::numbersFilesAnew(folder.descriptor())) numbersDoNotLastSince_ = now();
        tree_.emplace(std::move(folder), MissingFolders::make);
    } catch (const SystemError&) {
        throw OffloadError(OffloadError::DestinationNotWritable{destination_, ""});
    }
    try {
        flush();
    } catch (const SystemError&) {
        // What others wrote and lost before this run says nothing about its copies.
    }
}

void ReelFolder::lock() {
    bool isOurs = tree_->root().lock(FolderLock::alone);
    std::error_code failure;
    const URL whole = std::filesystem::canonical(path_, failure);
    for (URL folder = whole.parent_path(); isOurs && folder != folder.parent_path();
         folder = folder.parent_path()) {
        try {
            isOurs = above_.emplace_back(folder).lock(FolderLock::shared);
        } catch (const SystemError&) {
            // Who may not open it can't make it a reel folder either.
        }
    }
    if (isOurs) return;
    throw OffloadError(OffloadError::DestinationNotWritable{
        destination_, "Another offload is writing into this reel folder."});
}

bool ReelFolder::isStillThere() const {
    return tree_ && tree_->root().isStillThere();
}

void ReelFolder::flush() const {
    tree_->root().flushFileSystem();
}

URL ReelFolder::targetFor(const std::string& relativePath) const {
    return append(path_, relativePath);
}

const HeldFolder& ReelFolder::parentFor(const std::string& relativePath) {
    if (tree_ && tree_->hasAtHand(relativePath)) return tree_->parentOf(relativePath);
    const URL target = targetFor(relativePath);
    if (!isStillThere()) {
        throw OffloadError(OffloadError::WriteFailed{target, "the drive is no longer there"});
    }
    if (liesInSource(target.parent_path())) {
        throw OffloadError(OffloadError::DestinationNotWritable{
            destination_, "A folder of the reel lies on the card itself."});
    }
    return tree_->parentOf(relativePath);
}

bool ReelFolder::wasMadeHere(const HeldFolder::Entry& entry) const {
    return numbersDoNotLastSince_ && entry.born && *entry.born > *numbersDoNotLastSince_;
}

}  // namespace ReelCore
