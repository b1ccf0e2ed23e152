#include "ReelCore/Offload/SourceScanner.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/FolderWalk.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

namespace ReelCore {

namespace {

CameraFormat cameraFormatOf(const URL& root) {
    try {
        return detect(FileSystem::names(root));
    } catch (const SystemError&) {
        return CameraFormat::generic;
    }
}

/// Below the root of all folders no path begins with "//", so there only names are kept.
std::string pathBelow(const URL& root, std::string walkedPath) {
    if (root != root.root_path()) return walkedPath;
    return walkedPath.substr(walkedPath.rfind('/') + 1);
}

/// What a broken card says of its files' sizes must not end the process.
void requireCountable(const std::vector<MediaFile>& files) {
    std::int64_t total = 0;
    for (const MediaFile& file : files) total = exactSum(total, file.size);
}

void sortByPath(std::vector<MediaFile>& files) {
    std::vector<std::pair<std::string, MediaFile>> keyed;
    keyed.reserve(files.size());
    for (MediaFile& file : files) {
        std::string key = Text::orderingKey(file.relativePath);
        keyed.emplace_back(std::move(key), std::move(file));
    }
    std::ranges::stable_sort(
        keyed, {}, [](const auto& one) -> const auto& { return one.first; });
    std::ranges::transform(keyed, files.begin(), [](auto& one) { return std::move(one.second); });
}

}  // namespace

std::int64_t SourceScanner::ScanResult::fileCount() const {
    return static_cast<std::int64_t>(files.size());
}

std::int64_t SourceScanner::ScanResult::totalBytes() const {
    std::int64_t total = 0;
    for (const MediaFile& file : files) total = checkedAdd(total, file.size);
    return total;
}

bool SourceScanner::isIgnored(std::string_view name) {
    return std::ranges::find(ignoredNames, name) != ignoredNames.end();
}

HeldFolder SourceScanner::hold(const URL& root) {
    try {
        return HeldFolder(root);
    } catch (const SystemError& error) {
        // A name that is too long leads nowhere: nothing can stand there.
        if (error.isOwnLimit() && error.code() != ENAMETOOLONG) throw;
        throw OffloadError(OffloadError::SourceNotFound{root});
    }
}

SourceScanner::ScanResult SourceScanner::scan(const URL& root) {
    const HeldFolder held = hold(root);
    ScanResult result{root, {}, cameraFormatOf(root), {}};
    const URL standardisedRoot = FileSystem::standardised(root);
    auto unread = walkFolder(root, isIgnored, [&](WalkedFile file) {
        result.files.push_back({pathBelow(standardisedRoot, std::move(file.relativePath)),
                                file.size, file.modificationDate});
    });
    // Where a card has gone, the folders still to be read were passed over like unreadable ones.
    if (!unread || !held.isStillThere()) throw OffloadError(OffloadError::SourceNotFound{root});
    requireCountable(result.files);
    result.unreadFolders = *std::move(unread);
    sortByPath(result.files);
    return result;
}

}  // namespace ReelCore
