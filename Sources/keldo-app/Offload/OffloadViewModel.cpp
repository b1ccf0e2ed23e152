#include "keldo-app/Offload/OffloadViewModel.h"

#include "ReelCore/Reports/Report.h"

#include <algorithm>
#include <utility>

namespace keldo_app {

using ReelCore::CardFormatter;
using ReelCore::URL;
using Purpose = InUse::Purpose;

namespace {

constexpr std::int64_t minimumCopies = 2;

}  // namespace

OffloadViewModel::OffloadViewModel(QObject* parent) : ViewModel(parent) {
    connect(&InUse::shared(), &InUse::changed, this, [this] {
        if (stage_ == Stage::setup && source_ && !scan_) scanSource();
        emit changed();
    });
}

bool OffloadViewModel::canStart() const {
    return source_ && !destinations_.empty() && !reelName_.isEmpty() && stage_ == Stage::setup &&
           startObjection().isEmpty();
}

std::vector<InUse::Use> OffloadViewModel::uses() const {
    std::vector<InUse::Use> uses{{*source_, Purpose::reading}};
    for (const URL& drive : destinations_) {
        uses.push_back({drive / reelName_.toStdString(), Purpose::writing});
    }
    return uses;
}

QString OffloadViewModel::startObjection() const {
    if (!source_ || stage_ != Stage::setup) return {};
    for (const InUse::Use& use : uses()) {
        const QString objection = InUse::shared().objection(use);
        if (!objection.isEmpty()) return objection;
    }
    return {};
}

QString OffloadViewModel::formatObjection() const {
    if (!source_ || isFormatting_) return {};
    return InUse::shared().objection({*source_, Purpose::erasing});
}

std::optional<CardFormatter::FormatPlan> OffloadViewModel::formatPlan() const {
    if (!source_) return std::nullopt;
    return CardFormatter::plan(*source_, reelName_.toStdString(), CardFormatter::FileSystem::exFAT);
}

void OffloadViewModel::chooseSource() {
    const auto chosen =
        desktop->chooseFolder("Choose Camera Card / Source", FirstPlace::removableMedia);
    if (!chosen) return;
    source_ = *chosen;
    reelName_ = Format::defaultReel(*chosen);
    scan_.reset();
    scanSource();
}

void OffloadViewModel::scanSource() {
    // A card under erase is let be: whoever reads it keeps it from being unmounted.
    const bool isFree = InUse::shared().objection({*source_, Purpose::reading}).isEmpty();
    stage_ = isFree ? Stage::scanning : Stage::setup;
    emit changed();
    if (!isFree) return;
    scanJob_ = OffloadJobs::scan(*source_, [this](auto scan) {
        scan_ = std::move(scan);
        stage_ = Stage::setup;
        emit changed();
    });
}

void OffloadViewModel::addDestination() {
    const auto chosen = desktop->chooseFolder("Add Backup Drive", FirstPlace::removableMedia);
    if (!chosen || std::ranges::find(destinations_, *chosen) != destinations_.end()) return;
    destinations_.push_back(*chosen);
    destinationRows_.append(PlaceRow::of(*chosen));
    emit changed();
}

void OffloadViewModel::removeDestination(qsizetype row) {
    if (row < 0 || row >= std::ssize(destinations_)) return;
    destinations_.erase(destinations_.begin() + row);
    destinationRows_.remove(static_cast<std::size_t>(row));
    emit changed();
}

void OffloadViewModel::start() {
    if (!canStart()) return;
    cancelFlag_->clear();
    clearOutcome();
    stage_ = Stage::running;
    offloadJob_ =
        OffloadJobs::offload({*source_, destinations_, algorithm_, reelName_.toStdString()},
                             InUse::shared().take(uses()), cancelFlag_,
                             [this](OffloadEvent event) { apply(std::move(event)); });
    emit changed();
}

void OffloadViewModel::apply(OffloadEvent event) {
    if (const auto* progress = std::get_if<OffloadEvent::Progress>(&event.value)) {
        progress_ = progress->progress;
    } else if (const auto* failed = std::get_if<OffloadEvent::Failed>(&event.value)) {
        errorMessage_ = Format::text(failed->description);
        errorReason_ = Format::text(failed->reason);
        stage_ = Stage::finished;
    } else {
        finish(std::get<OffloadEvent::Finished>(event.value).result);
    }
    emit changed();
}

void OffloadViewModel::finish(OffloadJobs::Result result) {
    result_ = std::move(result);
    resultFacts_ = QVariant::fromValue(ResultFacts::of(*result_));
    failedFiles_.reset(ResultFacts::failedFiles(*result_));
    gate_ = CardFormatter::gate(*result_, minimumCopies);
    stage_ = Stage::finished;
}

void OffloadViewModel::cancel() {
    cancelFlag_->cancel();
}

void OffloadViewModel::saveReport() {
    if (!result_) return;
    report_.save(
        *desktop, "Save Offload Report to…",
        [result = result_] {
            return ReelCore::Report::offload(*result, std::nullopt, std::nullopt);
        },
        [this] { emit changed(); });
}

void OffloadViewModel::formatCard() {
    const auto plan = formatPlan();
    if (!gate_ || !gate_->eligible || !plan || isFormatting_) return;
    if (!formatObjection().isEmpty()) return;
    isFormatting_ = true;
    formatStatus_.clear();
    formatJob_ = OffloadJobs::format(*plan, *gate_, result_,
                                     InUse::shared().take({{*source_, Purpose::erasing}}),
                                     [this](const QString& status) {
                                         formatStatus_ = status;
                                         isFormatting_ = false;
                                         emit changed();
                                     });
    emit changed();
}

void OffloadViewModel::reset() {
    if (isFormatting_) return;
    clearOutcome();
    stage_ = Stage::setup;
    emit changed();
}

void OffloadViewModel::clearOutcome() {
    progress_.reset();
    result_.reset();
    resultFacts_.clear();
    failedFiles_.reset();
    gate_.reset();
    errorMessage_.clear();
    errorReason_.clear();
    formatStatus_.clear();
}

void OffloadViewModel::setAlgorithmIndex(int index) {
    const auto all = ReelCore::allCases<ReelCore::HashAlgorithm>();
    if (index < 0 || index >= std::ssize(all)) return;
    algorithm_ = all[static_cast<std::size_t>(index)];
    emit changed();
}

QString OffloadViewModel::formatCommand() const {
    const auto plan = formatPlan();
    return plan ? Format::text(plan->command()) : "";
}

}  // namespace keldo_app
