#include "keldo-app/Transcode/TranscodeViewModel.h"

#include "ReelCore/Reports/Report.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "keldo-app/Support/Format.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace keldo_app {

using ReelCore::TranscodePreset;
using ReelCore::URL;

int TranscodeViewModel::indexOf(const TranscodePreset& preset) {
    const auto all = TranscodePreset::all();
    return static_cast<int>(std::ranges::find(all, preset) - all.begin());
}

const TranscodePreset& TranscodeViewModel::preset() const {
    return TranscodePreset::all()[static_cast<std::size_t>(presetIndex_)];
}

QVariantList TranscodeViewModel::presets() {
    QVariantList entries;
    for (const TranscodePreset& preset : TranscodePreset::all()) {
        entries.append(QVariantMap{{"text", Format::text(preset.name)},
                                   {"heading", Format::text(preset.editor)}});
    }
    return entries;
}

QString TranscodeViewModel::presetName() const {
    return Format::text(preset().name);
}

void TranscodeViewModel::setPresetIndex(int index) {
    if (index < 0 || index >= std::ssize(TranscodePreset::all())) return;
    presetIndex_ = index;
    emit changed();
}

void TranscodeViewModel::setScale(int pixels) {
    scaleLongEdge_ = pixels > 0 ? std::optional<std::int64_t>(pixels) : std::nullopt;
    emit changed();
}

bool TranscodeViewModel::canStart() const {
    return !inputs_.empty() && outputDir_ && stage_ == Stage::setup && ffmpegAvailable_;
}

QString TranscodeViewModel::commandPreview() const {
    if (inputs_.empty() || !outputDir_) return {};
    QStringList words{"ffmpeg"};
    for (const auto& word : ReelCore::Transcoder::arguments(makeRequest(inputs_.front()))) {
        words.append(Format::text(word));
    }
    return words.join(" ");
}

QString TranscodeViewModel::inputName(std::size_t index) const {
    return index < inputs_.size() ? Format::name(inputs_[index]) : "?";
}

bool TranscodeViewModel::isClosing() const {
    return fraction() >= 1 && std::ssize(completed_) + std::ssize(failures_) == currentIndex_;
}

QString TranscodeViewModel::speed() const {
    return progress_ && progress_->speed ? Format::text(*progress_->speed) : QString();
}

QString TranscodeViewModel::fps() const {
    // ffmpeg says 0 as long as it has measured nothing.
    if (!progress_ || progress_->fps.value_or(0) == 0) return {};
    return Format::text(fmt::format("{:.0f} fps", *progress_->fps));
}

void TranscodeViewModel::addInputs() {
    std::vector<PlaceRow> rows;
    for (const URL& chosen : desktop->chooseFiles("Add clips to transcode")) {
        if (std::ranges::find(inputs_, chosen) != inputs_.end()) continue;
        inputs_.push_back(chosen);
        rows.push_back(PlaceRow::of(chosen));
    }
    inputRows_.appendAll(std::move(rows));
    emit changed();
}

void TranscodeViewModel::removeInput(qsizetype row) {
    if (row < 0 || row >= std::ssize(inputs_)) return;
    inputs_.erase(inputs_.begin() + row);
    inputRows_.remove(static_cast<std::size_t>(row));
    emit changed();
}

void TranscodeViewModel::chooseOutput() {
    const auto chosen = desktop->chooseFolder("Choose output folder");
    if (!chosen) return;
    outputDir_ = *chosen;
    emit changed();
}

void TranscodeViewModel::chooseLUT() {
    const auto chosen = desktop->chooseFile("Choose a .cube LUT");
    if (!chosen) return;
    lutURL_ = *chosen;
    applyLUT_ = true;
    emit changed();
}

std::optional<ReelCore::LUT> TranscodeViewModel::lut() const {
    if (!applyLUT_ || !lutURL_) return std::nullopt;
    return ReelCore::LUT{*lutURL_};
}

ReelCore::TranscodeRequest TranscodeViewModel::makeRequest(const URL& input) const {
    return {input, *outputDir_, preset(), lut(), scaleLongEdge_};
}

void TranscodeViewModel::start() {
    if (!canStart()) return;
    stage_ = Stage::running;
    flags_->cancel.clear();
    flags_->endNow.clear();
    isCancelling_ = false;
    clearOutcome();
    std::vector<ReelCore::TranscodeRequest> requests;
    std::vector<InUse::Use> uses;
    for (const URL& input : inputs_) {
        requests.push_back(makeRequest(input));
        uses.push_back({input, InUse::Purpose::reading});
    }
    job_ = TranscodeJobs::run(std::move(requests), flags_, InUse::shared().take(std::move(uses)),
                              [this](const TranscodeEvent& event) {
                                  std::visit([this](const auto& one) { apply(one); }, event.value);
                                  emit changed();
                              });
    emit changed();
}

void TranscodeViewModel::apply(const TranscodeEvent::Progress& event) {
    currentIndex_ = static_cast<int>(event.fileIndex);
    progress_ = event.progress;
}

void TranscodeViewModel::apply(const TranscodeEvent::FileFinished& event) {
    completed_.push_back(event.url);
    completedRows_.append(PlaceRow::of(event.url));
}

void TranscodeViewModel::apply(const TranscodeEvent::FileFailed& event) {
    failures_.push_back({inputName(event.fileIndex), Format::text(event.description)});
    failureRows_.append({failures_.back().name, failures_.back().message});
}

void TranscodeViewModel::apply(const TranscodeEvent::AllDone& event) {
    if (!event.trouble.empty()) {
        apply(TranscodeEvent::FileFailed{completed_.size() + failures_.size(), event.trouble});
    }
    stage_ = Stage::finished;
}

void TranscodeViewModel::cancel() {
    if (isCancelling_) flags_->endNow.cancel();
    flags_->cancel.cancel();
    isCancelling_ = true;
    emit changed();
}

void TranscodeViewModel::saveReport() {
    const auto lut = this->lut();
    std::optional<std::string> lutName;
    if (lut) lutName = ReelCore::lastPathComponent(lut->url);
    std::vector<ReelCore::Report::Failure> failures;
    for (const Failure& one : failures_) {
        failures.push_back({one.name.toStdString(), one.message.toStdString()});
    }
    report_.save(
        *desktop, "Save Transcode Report to…",
        [preset = preset(), lutName, scale = scaleLongEdge_, outputs = completed_, failures] {
            return ReelCore::Report::transcode(preset, lutName, scale, outputs, failures,
                                               std::nullopt);
        },
        [this] { emit changed(); });
}

void TranscodeViewModel::reset() {
    if (stage_ == Stage::running) return;
    clearOutcome();
    stage_ = Stage::setup;
    emit changed();
}

void TranscodeViewModel::clearOutcome() {
    currentIndex_ = 0;
    progress_.reset();
    completed_.clear();
    completedRows_.reset();
    failures_.clear();
    failureRows_.reset();
    report_.clear();
}

}  // namespace keldo_app
