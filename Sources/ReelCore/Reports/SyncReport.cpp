#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Sync/SyncTypes.h"

#include <cmath>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

using Row = std::vector<std::string>;

std::string timeOfDay(double seconds) {
    const std::int64_t whole = checkedInteger(std::round(seconds));
    return fmt::format("{:02}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string startOf(const VideoClip& video) {
    return video.startTimecode ? video.startTimecode->formatted() : timeOfDay(video.startSeconds);
}

std::string slate(const AudioClip& clip) {
    Row parts;
    if (clip.scene) parts.push_back("sc " + *clip.scene);
    if (clip.take) parts.push_back("tk " + *clip.take);
    return fmt::format("{}", fmt::join(parts, " "));
}

Row row(const SyncGroup& group) {
    const auto best = group.best();
    if (!best) return {group.video.name(), startOf(group.video), "—", "", "", ""};
    return {group.video.name(), startOf(group.video),
            best->clip->name(), fmt::format("+{:.2f}s", best->audioOffset),
            slate(*best->clip), fmt::format("{}%", checkedInteger(best->coverage * 100))};
}

Report::Table table(const SyncResult& result) {
    Report::Table clips{{"Clip", "TC", "Audio", "Offset", "Scene/Take", "Coverage"}, {}};
    for (const SyncGroup& group : result.groups) clips.rows.push_back(row(group));
    for (const AudioClip& clip : result.unmatchedAudio) {
        clips.rows.push_back({"(unmatched)", "", clip.name(), "", slate(clip), ""});
    }
    return clips;
}

}  // namespace

Report Report::sync(const SyncResult& result, const std::optional<std::string>& day) {
    const Date generatedAt = now();
    return {.title = "Sync Report",
            .subtitle = day,
            .summary = {{"Day", day ? *day : dateTime(generatedAt)},
                        {"Video clips", std::to_string(result.groups.size())},
                        {"Synced", std::to_string(result.syncedCount())},
                        {"Unmatched audio", std::to_string(result.unmatchedAudio.size())}},
            .table = ReelCore::table(result),
            .generatedAt = generatedAt,
            .tool = toolOnPaper()};
}

}  // namespace ReelCore
