#include "keldo-app/Recover/RecoverViewModel.h"

#include "keldo-app/Support/Format.h"

#include <algorithm>
#include <utility>

namespace keldo_app {

using ReelCore::ClipDiagnosis;
using ReelCore::ClipDoctor;
using ReelCore::RepairOutcome;
using ReelCore::URL;

namespace {

ReportRow rowOf(const ReelCore::ClipReport& report) {
    const ClipDiagnosis& diagnosis = report.diagnosis;
    return {Format::text(report.name()), Format::text(diagnosis.label()),
            diagnosis.isHealthy()      ? "healthy"
            : diagnosis.isRepairable() ? "repairable"
                                       : "unreadable"};
}

OutcomeRow rowOf(const RepairOutcome& outcome) {
    return {outcome.succeeded, Format::name(outcome.source), Format::text(outcome.method),
            Format::text(outcome.detail),
            outcome.output ? Format::name(*outcome.output) : QString()};
}

bool isMovie(const ReelCore::ClipReport& report) {
    return std::ranges::find(ClipDoctor::movieExtensions,
                             ReelCore::lowerCasedExtension(report.url)) !=
           ClipDoctor::movieExtensions.end();
}

/// The largest healthy movie, the first of those that share its size.
OptionalURL referenceOf(const std::vector<ReelCore::ClipReport>& healthy) {
    const ReelCore::ClipReport* largest = nullptr;
    for (const auto& report : healthy) {
        if (isMovie(report) && (!largest || report.size > largest->size)) largest = &report;
    }
    if (!largest) return {};
    return largest->url;
}

}  // namespace

RecoverViewModel::RecoverViewModel(QObject* parent) : ViewModel(parent) {
    connect(&InUse::shared(), &InUse::changed, this, &RecoverViewModel::changed);
}

bool RecoverViewModel::canScan() const {
    return cardDir_ && stage_ != Stage::scanning && stage_ != Stage::repairing &&
           scanObjection().isEmpty();
}

QString RecoverViewModel::scanObjection() const {
    if (!cardDir_) return {};
    return InUse::shared().objection(cardRead());
}

bool RecoverViewModel::needsReference() const {
    return !reference_ && std::ranges::any_of(damaged_, [](const auto& report) {
        return report.diagnosis.template is<ClipDiagnosis::MissingIndex>();
    });
}

bool RecoverViewModel::canRepair() const {
    return outputDir_ && stage_ == Stage::results && !damaged_.empty();
}

bool RecoverViewModel::canCarve() const {
    return imageURL_ && outputDir_ && carveStage_ == CarveStage::found &&
           carveObjection().isEmpty();
}

QString RecoverViewModel::carveObjection() const {
    if (!outputDir_ || carveStage_ != CarveStage::found) return {};
    return InUse::shared().objection(carvedFiles());
}

InUse::Use RecoverViewModel::cardRead() const {
    return {*cardDir_, InUse::Purpose::reading};
}

InUse::Use RecoverViewModel::carvedFiles() const {
    // One name stands for all: a carve numbers its files from 001 and replaces those of one before.
    return {*outputDir_ / "carved_001", InUse::Purpose::writing};
}

void RecoverViewModel::chooseCard() {
    const auto chosen =
        desktop->chooseFolder("Choose the card or folder to scan", FirstPlace::removableMedia);
    if (!chosen) return;
    cardDir_ = *chosen;
    emit changed();
}

void RecoverViewModel::chooseReference() {
    const auto chosen = desktop->chooseFile("Pick a HEALTHY clip from the same camera/settings");
    if (!chosen) return;
    reference_ = *chosen;
    emit changed();
}

void RecoverViewModel::chooseOutput() {
    const auto chosen = desktop->chooseFolder("Choose where to write recovered clips");
    if (!chosen) return;
    outputDir_ = *chosen;
    emit changed();
}

void RecoverViewModel::chooseImage() {
    const auto chosen = desktop->chooseFile(
        "Choose the raw card image (.img / .dmg made with ddrescue)", FirstPlace::removableMedia);
    if (!chosen) return;
    imageURL_ = *chosen;
    dropCarving();
    emit changed();
}

void RecoverViewModel::runScan() {
    if (!canScan()) return;
    stage_ = Stage::scanning;
    scan_.reset();
    damaged_.clear();
    dropOutcomes();
    scanJob_ = RecoverJobs::scan(*cardDir_, InUse::shared().take({cardRead()}),
                                 [this](auto scan) { publish(std::move(scan)); });
    emit changed();
}

void RecoverViewModel::publish(ReelCore::RecoveryScan scan) {
    scan_ = std::move(scan);
    damaged_ = scan_->damaged();
    const auto healthy = scan_->healthy();
    healthyCount_ = static_cast<int>(healthy.size());
    reference_ = referenceOf(healthy);
    std::vector<ReportRow> rows;
    for (const auto& report : scan_->reports) rows.push_back(rowOf(report));
    reportRows_.reset(std::move(rows));
    stage_ = Stage::results;
    emit changed();
}

void RecoverViewModel::runRepair() {
    if (!canRepair()) return;
    stage_ = Stage::repairing;
    dropOutcomes();
    repairDone_ = 0;
    repairJob_ =
        RecoverJobs::repair(damaged_, reference_, *outputDir_, InUse::shared().take({cardRead()}),
                            [this](OutcomeEvent event) { apply(std::move(event)); });
    emit changed();
}

void RecoverViewModel::apply(OutcomeEvent event) {
    if (const auto* outcome = std::get_if<RepairOutcome>(&event.value)) {
        outcomes_.push_back(*outcome);
        outcomeRows_.append(rowOf(*outcome));
        ++repairDone_;
    } else {
        trouble_ = Format::text(std::get<OutcomeEvent::End>(event.value).trouble);
        stage_ = Stage::results;
    }
    emit changed();
}

void RecoverViewModel::scanImage() {
    const bool isBusy =
        carveStage_ == CarveStage::scanning || carveStage_ == CarveStage::extracting;
    if (!imageURL_ || isBusy) return;
    dropCarving();
    carveStage_ = CarveStage::scanning;
    carveProgress_ = 0;
    carveScanJob_ = RecoverJobs::scanImage(
        *imageURL_, [this](CarveScanEvent event) { applyCarveScan(std::move(event)); });
    emit changed();
}

void RecoverViewModel::applyCarveScan(CarveScanEvent event) {
    if (const auto* fraction = std::get_if<double>(&event.value)) {
        carveProgress_ = *fraction;
    } else {
        auto& found = std::get<CarveScanEvent::Found>(event.value);
        carveTrouble_ = Format::text(found.trouble);
        carveFindings_ = std::move(found.findings);
        std::vector<FindingRow> rows;
        for (const auto& finding : carveFindings_) rows.push_back({Format::text(finding.label())});
        findingRows_.reset(std::move(rows));
        carveStage_ = CarveStage::found;
    }
    emit changed();
}

void RecoverViewModel::extractAll() {
    if (!canCarve()) return;
    carveStage_ = CarveStage::extracting;
    carveOutcomes_.clear();
    carveOutcomeRows_.reset();
    extractJob_ = RecoverJobs::extract(
        carveFindings_, *imageURL_, reference_, *outputDir_, InUse::shared().take({carvedFiles()}),
        [this](OutcomeEvent event) { applyCarved(std::move(event)); });
    emit changed();
}

void RecoverViewModel::applyCarved(OutcomeEvent event) {
    if (const auto* outcome = std::get_if<RepairOutcome>(&event.value)) {
        carveOutcomes_.push_back(*outcome);
        carveOutcomeRows_.append(rowOf(*outcome));
    } else {
        carveTrouble_ = Format::text(std::get<OutcomeEvent::End>(event.value).trouble);
        carveStage_ = CarveStage::done;
    }
    emit changed();
}

void RecoverViewModel::reveal() {
    if (outputDir_) desktop->reveal(*outputDir_);
}

void RecoverViewModel::reset() {
    scanJob_.reset();
    repairJob_.reset();
    stage_ = Stage::setup;
    scan_.reset();
    damaged_.clear();
    reportRows_.reset();
    dropOutcomes();
    reference_.reset();
    imageURL_.reset();
    dropCarving();
    emit changed();
}

void RecoverViewModel::dropOutcomes() {
    outcomes_.clear();
    outcomeRows_.reset();
    trouble_.clear();
}

void RecoverViewModel::dropCarving() {
    carveScanJob_.reset();
    extractJob_.reset();
    carveFindings_.clear();
    findingRows_.reset();
    carveOutcomes_.clear();
    carveOutcomeRows_.reset();
    carveStage_ = CarveStage::idle;
    carveTrouble_.clear();
}

}  // namespace keldo_app
