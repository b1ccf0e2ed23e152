#include "ReelCore/Offload/NestedReels.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <unordered_set>

namespace ReelCore {

namespace {

/// True if the card holds a path both as it is and below `way`.
bool clashes(const URL& way, const std::vector<MediaFile>& files, const std::string& listName) {
    std::unordered_set<std::string> keys;
    for (const MediaFile& file : files) keys.insert(Text::alikeKey(file.relativePath));
    const auto isOnTheCardBelowTheWay = [&](const std::string& path) {
        return keys.contains(Text::alikeKey(way.native() + "/" + path));
    };
    return isOnTheCardBelowTheWay(listName) ||
           std::ranges::any_of(files, isOnTheCardBelowTheWay, &MediaFile::relativePath);
}

}  // namespace

void requireNoClash(const std::vector<ReelFolder>& reels, const std::vector<MediaFile>& files,
                    const std::string& listName) {
    if (reels.size() < 2) return;
    std::vector<FileLocation> places;
    for (const ReelFolder& reel : reels) places.emplace_back(reel.path());
    for (std::size_t inner = 0; inner < reels.size(); ++inner) {
        for (const FileLocation& outer : places) {
            const auto way = places[inner].pathWithin(outer);
            if (!way || *way == "." || !clashes(*way, files, listName)) continue;
            throw OffloadError(OffloadError::DestinationNotWritable{reels[inner].destination()});
        }
    }
}

}  // namespace ReelCore
