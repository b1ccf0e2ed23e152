#include "keldo-app/Offload/OffloadViewModel.h"

#include "keldo-app/Offload/OffloadJobs.h"
#include "keldo-app/Support/Format.h"

#include <algorithm>
#include <utility>

namespace keldo_app {

using ReelCore::CardFormatter;
using ReelCore::URL;

namespace {

constexpr std::int64_t minimumCopies = 2;

template <class Facts, class Value>
QVariant facts(const std::optional<Value>& value) {
    return value ? QVariant::fromValue(Facts::of(*value)) : QVariant();
}

}  // namespace

OffloadViewModel::OffloadViewModel(QObject* parent) : QObject(parent) {
    for (const auto changed :
         {&OffloadViewModel::stageChanged, &OffloadViewModel::sourceChanged,
          &OffloadViewModel::destinationsChanged, &OffloadViewModel::reelNameChanged}) {
        connect(this, changed, this, &OffloadViewModel::canStartChanged);
    }
    connect(this, &OffloadViewModel::sourceChanged, this, &OffloadViewModel::formatPlanChanged);
    connect(this, &OffloadViewModel::reelNameChanged, this, &OffloadViewModel::formatPlanChanged);
}

bool OffloadViewModel::canStart() const {
    return source_ && !destinations_.empty() && !reelName_.isEmpty() && stage_ == Stage::setup;
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
    emit sourceChanged();
    setReelName(Format::defaultReel(*chosen));
    scan_.reset();
    emit scanChanged();
    setStage(Stage::scanning);
    scanJob_ = OffloadJobs::scan(*chosen, [this](auto scan) {
        scan_ = std::move(scan);
        emit scanChanged();
        setStage(Stage::setup);
    });
}

void OffloadViewModel::addDestination() {
    const auto chosen = desktop->chooseFolder("Add Backup Drive", FirstPlace::removableMedia);
    if (!chosen || std::ranges::find(destinations_, *chosen) != destinations_.end()) return;
    destinations_.push_back(*chosen);
    emit destinationsChanged();
}

void OffloadViewModel::removeDestination(qsizetype row) {
    if (row < 0 || row >= std::ssize(destinations_)) return;
    const URL removed = destinations_[static_cast<std::size_t>(row)];
    std::erase(destinations_, removed);
    emit destinationsChanged();
}

void OffloadViewModel::start() {
    if (!canStart()) return;
    cancelFlag_->clear();
    clearOutcome();
    setStage(Stage::running);
    offloadJob_ =
        OffloadJobs::offload({*source_, destinations_, algorithm_, reelName_.toStdString()},
                             cancelFlag_, [this](OffloadEvent event) { apply(std::move(event)); });
}

void OffloadViewModel::apply(OffloadEvent event) {
    std::visit([this](auto one) { apply(std::move(one)); }, std::move(event.value));
}

void OffloadViewModel::cancel() {
    cancelFlag_->cancel();
}

void OffloadViewModel::apply(OffloadEvent::Progress event) {
    progress_ = std::move(event.progress);
    emit progressChanged();
}

void OffloadViewModel::apply(OffloadEvent::Finished event) {
    result_ = std::move(event.result);
    resultFacts_ = QVariant::fromValue(ResultFacts::of(*result_));
    gate_ = CardFormatter::gate(*result_, minimumCopies);
    emit resultChanged();
    emit gateChanged();
    setStage(Stage::finished);
}

void OffloadViewModel::apply(OffloadEvent::Failed event) {
    errorMessage_ = Format::text(event.description);
    errorReason_ = Format::text(event.reason);
    emit errorMessageChanged();
    setStage(Stage::finished);
}

void OffloadViewModel::saveReport() {
    if (!result_) return;
    const auto folder = desktop->chooseFolder("Save Offload Report to…");
    if (!folder) return;
    setReportStatus({});
    reportJob_ = OffloadJobs::report(
        result_, *folder, [this, folder](const auto& written) { applyReport(written, *folder); });
}

void OffloadViewModel::applyReport(const std::vector<URL>& written, const URL& folder) {
    if (written.empty()) return setReportStatus("Could not write report.");
    setReportStatus(
        QStringLiteral("Saved %1 file(s) to %2.").arg(written.size()).arg(Format::name(folder)));
    const auto pdf =
        std::ranges::find_if(written, [](const URL& url) { return url.extension() == ".pdf"; });
    if (pdf != written.end()) desktop->reveal(*pdf);
}

void OffloadViewModel::formatCard() {
    const auto plan = formatPlan();
    if (!gate_ || !gate_->eligible || !plan || isFormatting_) return;
    isFormatting_ = true;
    emit isFormattingChanged();
    setFormatStatus({});
    formatJob_ = OffloadJobs::format(*plan, *gate_, result_, [this](const QString& status) {
        setFormatStatus(status);
        isFormatting_ = false;
        emit isFormattingChanged();
    });
}

void OffloadViewModel::reset() {
    if (isFormatting_) return;
    clearOutcome();
    setStage(Stage::setup);
}

void OffloadViewModel::clearOutcome() {
    progress_.reset();
    emit progressChanged();
    result_.reset();
    resultFacts_.clear();
    emit resultChanged();
    gate_.reset();
    emit gateChanged();
    errorMessage_.clear();
    errorReason_.clear();
    emit errorMessageChanged();
    setFormatStatus({});
}

void OffloadViewModel::setStage(Stage stage) {
    stage_ = stage;
    emit stageChanged();
}

void OffloadViewModel::setReelName(const QString& reelName) {
    if (reelName_ == reelName) return;
    reelName_ = reelName;
    emit reelNameChanged();
}

void OffloadViewModel::setFormatStatus(const QString& status) {
    formatStatus_ = status;
    emit formatStatusChanged();
}

void OffloadViewModel::setReportStatus(const QString& status) {
    reportStatus_ = status;
    emit reportStatusChanged();
}

void OffloadViewModel::setAlgorithmName(const QString& name) {
    const auto chosen = ReelCore::fromRawValue<ReelCore::HashAlgorithm>(name.toStdString());
    if (!chosen || *chosen == algorithm_) return;
    algorithm_ = *chosen;
    emit algorithmChanged();
}

QString OffloadViewModel::algorithmName() const {
    return Format::text(rawValue(algorithm_));
}

QStringList OffloadViewModel::algorithmNames() const {
    QStringList names;
    for (const auto one : ReelCore::allCases<ReelCore::HashAlgorithm>()) {
        names.append(Format::text(rawValue(one)));
    }
    return names;
}

QString OffloadViewModel::sourceText() const {
    return source_ ? Format::path(*source_) : "";
}

QList<DriveRow> OffloadViewModel::driveRows() const {
    QList<DriveRow> rows;
    for (const URL& url : destinations_) rows.append({Format::name(url), Format::path(url)});
    return rows;
}

QString OffloadViewModel::formatCommand() const {
    const auto plan = formatPlan();
    return plan ? Format::text(plan->command()) : "";
}

QVariant OffloadViewModel::scanFacts() const {
    return facts<ScanFacts>(scan_);
}
QVariant OffloadViewModel::progressFacts() const {
    return facts<ProgressFacts>(progress_);
}
QVariant OffloadViewModel::gateFacts() const {
    return facts<GateFacts>(gate_);
}

}  // namespace keldo_app
