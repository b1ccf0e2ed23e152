#include "ReelCore/Sync/SyncTypes.h"

#include <algorithm>

namespace ReelCore {

std::optional<SyncGroup::Match> SyncGroup::best() const {
    const auto found = std::ranges::max_element(audio, {}, &Match::coverage);
    if (found == audio.end()) return std::nullopt;
    return *found;
}

FrameRate SyncResult::timelineRate() const {
    if (groups.empty() || !groups.front().video.frameRate.isCountable()) return FrameRate::fps24;
    return groups.front().video.frameRate;
}

std::int64_t SyncResult::syncedCount() const {
    return std::ranges::count_if(groups, &SyncGroup::isSynced);
}

}  // namespace ReelCore
