#include "keldo-app/Sync/SyncViewModel.h"

#include "ReelCore/Reports/Report.h"
#include "keldo-app/Support/Format.h"

#include <utility>

#include <fmt/format.h>

namespace keldo_app {

using ReelCore::SyncGroup;

namespace {

/// The plus is literal: a recorder that rolled later has "+-5.00s".
QString metaLine(const SyncGroup::Match& sound) {
    QStringList parts{Format::text(fmt::format("+{:.2f}s", sound.audioOffset))};
    if (sound.clip->scene) parts.append("sc " + Format::text(*sound.clip->scene));
    if (sound.clip->take) parts.append("tk " + Format::text(*sound.clip->take));
    QStringList tracks;
    for (const auto& name : sound.clip->trackNames) tracks.append(Format::text(name));
    if (!tracks.isEmpty()) parts.append(tracks.join(", "));
    return parts.join(" · ");
}

QString others(std::size_t takes) {
    if (takes < 2) return {};
    return QStringLiteral("+%1 more take%2 overlap").arg(takes - 1).arg(takes == 2 ? "" : "s");
}

QString shortened(std::int64_t clips) {
    if (clips == 0) return {};
    return Format::count(clips, "clip") + (clips == 1 ? " ends where its" : " end where their") +
           " sound ends, before the picture does.";
}

}  // namespace

GroupRow GroupRow::of(const SyncGroup& group) {
    const auto& start = group.video.startTimecode;
    GroupRow row{Format::name(group.video.url),
                 start ? Format::text(start->formatted()) : "no TC",
                 {},
                 {},
                 {},
                 {}};
    const auto best = group.best();
    if (!best) return row;
    row.sound = Format::name(best->clip->url);
    row.meta = metaLine(*best);
    row.coverage = Format::percent(best->coverage);
    row.others = keldo_app::others(group.audio.size());
    return row;
}

bool SyncViewModel::canMux() const {
    return outputDir_ && ffmpegReady_ && result_ && syncedCount_ >= 1 && stage_ == Stage::results;
}

void SyncViewModel::chooseMediaDir() {
    const auto chosen =
        desktop->chooseFolder("Choose the day's media folder (camera clips + sound WAVs)");
    if (!chosen) return;
    mediaDir_ = *chosen;
    emit changed();
}

void SyncViewModel::chooseOutput() {
    const auto chosen = desktop->chooseFolder("Choose where to write synced clips");
    if (!chosen) return;
    outputDir_ = *chosen;
    emit changed();
}

InUse::Token SyncViewModel::mediaRead() const {
    return InUse::shared().take({{*mediaDir_, InUse::Purpose::reading}});
}

void SyncViewModel::scan() {
    if (!canScan()) return;
    stage_ = Stage::scanning;
    setResult(nullptr);
    errorMessage_.clear();
    muxStatus_.clear();
    muxShortened_.clear();
    scanJob_ = SyncJobs::scan(*mediaDir_, mediaRead(), [this](SyncJobs::Result result) {
        stage_ = result ? Stage::results : Stage::setup;
        if (!result) errorMessage_ = "Could not scan that folder.";
        setResult(std::move(result));
        emit changed();
    });
    emit changed();
}

void SyncViewModel::setResult(SyncJobs::Result result) {
    result_ = std::move(result);
    std::vector<GroupRow> groups;
    std::vector<PlaceRow> unmatched;
    if (result_) {
        for (const auto& group : result_->groups) groups.push_back(GroupRow::of(group));
        for (const auto& clip : result_->unmatchedAudio) {
            unmatched.push_back(PlaceRow::of(clip.url));
        }
    }
    syncedCount_ = result_ ? static_cast<int>(result_->syncedCount()) : 0;
    groupRows_.reset(std::move(groups));
    unmatchedRows_.reset(std::move(unmatched));
}

void SyncViewModel::saveReport() {
    if (!result_) return;
    std::optional<std::string> day;
    if (mediaDir_) day = ReelCore::lastPathComponent(*mediaDir_);
    report_.save(
        *desktop, "Save Sync Report to…",
        [result = result_, day] { return ReelCore::Report::sync(*result, day); },
        [this] { emit changed(); });
}

void SyncViewModel::exportEditorial() {
    if (!result_) return;
    const auto folder = desktop->chooseFolder("Export FCPXML + ALE to…");
    if (!folder) return;
    exportStatus_.clear();
    const std::string day = mediaDir_ ? ReelCore::lastPathComponent(*mediaDir_) : "keldobay_sync";
    exportJob_ =
        SyncJobs::exportEditorial(result_, *folder, day, [this, folder](const auto& written) {
            tellExported(written, *folder);
            emit changed();
        });
    emit changed();
}

void SyncViewModel::tellExported(const SyncJobs::URLs& written, const ReelCore::URL& folder) {
    if (written.empty()) {
        exportStatus_ = "Export failed.";
        return;
    }
    QStringList kinds;
    for (const auto& url : written) {
        kinds.append(Format::text(ReelCore::lowerCasedExtension(url)).toUpper());
    }
    exportStatus_ =
        QStringLiteral("Exported %1 to %2.").arg(kinds.join(" + "), Format::name(folder));
    desktop->reveal(written);
}

void SyncViewModel::mux() {
    const auto ffmpeg = ReelCore::FFmpegLocator().ffmpeg();
    if (!canMux() || !ffmpeg) return;
    stage_ = Stage::muxing;
    muxDone_ = 0;
    muxStatus_.clear();
    muxShortened_.clear();
    muxJob_ = SyncJobs::mux(result_, *outputDir_, *ffmpeg, mediaRead(),
                            [this](const MuxEvent& event) { apply(event); });
    emit changed();
}

void SyncViewModel::apply(const MuxEvent& event) {
    if (const auto* progress = std::get_if<MuxEvent::Progress>(&event.value)) {
        muxDone_ = static_cast<int>(progress->done);
    } else {
        const auto& end = std::get<MuxEvent::End>(event.value);
        muxStatus_ = QStringLiteral("Created %1 of %2 in %3.")
                         .arg(end.created)
                         .arg(Format::count(end.total, "synced clip"), outputDir_.name());
        muxShortened_ = shortened(end.shortened);
        stage_ = Stage::results;
    }
    emit changed();
}

void SyncViewModel::reveal() {
    if (outputDir_) desktop->reveal(*outputDir_);
}

void SyncViewModel::reset() {
    scanJob_.reset();
    muxJob_.reset();
    stage_ = Stage::setup;
    setResult(nullptr);
    errorMessage_.clear();
    muxStatus_.clear();
    muxShortened_.clear();
    report_.clear();
    emit changed();
}

}  // namespace keldo_app
