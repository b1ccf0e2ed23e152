#include "keldo-app/Transcript/TranscriptViewModel.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Transcribe/DocxTranscriptWriter.h"
#include "ReelCore/Transcribe/SpeechClassifier.h"
#include "keldo-app/Support/Download.h"

#include <QTimer>
#include <algorithm>

namespace keldo_app {

using ReelCore::SpeechClassifier;
using ReelCore::URL;
using ReelCore::WhisperLocator;

namespace {

std::vector<InUse::Use> usesOf(const ReelCore::TranscribeRequest& request) {
    std::vector<InUse::Use> uses{{request.input, InUse::Purpose::reading},
                                 {request.documentURL(), InUse::Purpose::writing}};
    for (const auto& track : request.speakers) {
        if (track.fileURL) uses.push_back({*track.fileURL, InUse::Purpose::reading});
    }
    return uses;
}

}  // namespace

TranscriptViewModel::TranscriptViewModel(QObject* parent) : ViewModel(parent) {
    if (const auto model = WhisperLocator().model()) selectedModel_ = *model;
    connect(&InUse::shared(), &InUse::changed, this, &TranscriptViewModel::changed);
    connect(&speakers_, &RowModel::dataChanged, this, &TranscriptViewModel::changed);
    connect(&editableSpeakers_, &RowModel::dataChanged, this, &TranscriptViewModel::changed);
}

void TranscriptViewModel::chooseInput() {
    const auto chosen = desktop->chooseFile("Choose a clip to transcribe");
    if (!chosen || stage_ > Stage::probing) return;
    input_ = *chosen;
    stage_ = Stage::probing;
    probeJob_ =
        runOnce<ClipInfo>([clip = *chosen] { return ReelCore::AudioExtractor().probe(clip); },
                          [this](const ClipInfo& clip) { publish(clip); },
                          [](const std::exception&) { return ClipInfo(); });
    emit changed();
}

void TranscriptViewModel::publish(const ClipInfo& clip) {
    channelCount_ = static_cast<int>(clip.audioChannels);
    detectedTC_ = clip.startTimecode ? Format::text(clip.startTimecode->formatted()) : QString();
    std::vector<SpeakerRow> rows;
    for (int channel = 0; channel < channelCount_; ++channel) {
        rows.push_back({QStringLiteral("Speaker %1").arg(channel + 1), channel, true});
    }
    speakers_.reset(std::move(rows));
    stage_ = Stage::setup;
    emit changed();
}

void TranscriptViewModel::addFiles() {
    for (const URL& chosen :
         desktop->chooseFiles("Add one audio file per speaker (e.g. ISO WAVs)")) {
        const auto isIt = [&](const FileTrack& file) { return file.url == chosen; };
        if (std::ranges::any_of(fileTracks_.all(), isIt)) continue;
        fileTracks_.append({Format::path(chosen.stem()), Format::name(chosen), chosen});
    }
    emit changed();
}

void TranscriptViewModel::removeFile(qsizetype row) {
    if (row < 0 || row >= fileTracks_.count()) return;
    fileTracks_.remove(static_cast<std::size_t>(row));
    emit changed();
}

void TranscriptViewModel::chooseOutput() {
    const auto chosen = desktop->chooseFolder("Choose output folder");
    if (!chosen) return;
    outputDir_ = *chosen;
    emit changed();
}

QStringList TranscriptViewModel::models() const {
    QStringList names;
    for (const URL& model : availableModels_) {
        names.append(Format::text(WhisperLocator::displayName(model)));
    }
    return names;
}

int TranscriptViewModel::modelIndex() const {
    const auto at = std::find(availableModels_.begin(), availableModels_.end(), selectedModel_);
    return at == availableModels_.end() ? -1 : static_cast<int>(at - availableModels_.begin());
}

void TranscriptViewModel::setModelIndex(int index) {
    if (index < 0 || index >= std::ssize(availableModels_)) return;
    selectedModel_ = availableModels_[static_cast<std::size_t>(index)];
    emit changed();
}

void TranscriptViewModel::downloadModel(const QString& name) {
    if (!downloadingModel_.isEmpty()) return;
    downloadingModel_ = name;
    const URL target = WhisperLocator::modelsDirectory() / ("ggml-" + name.toStdString() + ".bin");
    Download& download = Download::start(QUrl(modelSource + name + ".bin"), target);
    connect(&download, &Download::succeeded, this, [this, target] {
        selectedModel_ = target;
        endDownload();
    });
    connect(&download, &Download::failed, this, &TranscriptViewModel::endDownload);
    emit changed();
}

void TranscriptViewModel::endDownload() {
    availableModels_ = WhisperLocator().availableModels();
    downloadingModel_.clear();
    emit changed();
}

void TranscriptViewModel::revealModelsFolder() {
    desktop->reveal(WhisperLocator::modelsDirectory());
}

bool TranscriptViewModel::hasVoices() const {
    if (speakerMode_ == SpeakerMode::diarize) return diarizeReady;
    if (speakerMode_ == SpeakerMode::files) return fileTracks_.count() > 0;
    return std::ranges::any_of(speakers_.all(), &SpeakerRow::isEnabled);
}

QString TranscriptViewModel::objection() const {
    if (!input_ || !outputDir_ || stage_ != Stage::setup) return {};
    for (const auto& use : usesOf(request())) {
        const QString objection = InUse::shared().objection(use);
        if (!objection.isEmpty()) return objection;
    }
    return {};
}

QString TranscriptViewModel::earlierDocument() const {
    if (!input_ || !outputDir_) return {};
    const URL document = request().documentURL();
    return ReelCore::FileSystem::exists(document) ? Format::name(document) : QString();
}

bool TranscriptViewModel::canStart() const {
    return input_ && outputDir_ && stage_ == Stage::setup && available && hasVoices() &&
           objection().isEmpty();
}

ReelCore::TranscribeRequest TranscriptViewModel::request() const {
    ReelCore::TranscribeRequest request;
    request.input = *input_;
    request.outputDirectory = *outputDir_;
    request.readSlate = readSlate_;
    request.appearanceHints = appearanceHints_;
    request.modelOverride = selectedModel_;
    if (speakerMode_ == SpeakerMode::diarize) {
        request.diarize.emplace();
        if (numSpeakers_ >= 1) request.diarize->numSpeakers = numSpeakers_;
    } else if (speakerMode_ == SpeakerMode::files) {
        for (const auto& file : fileTracks_.all()) {
            request.speakers.push_back({file.name.toStdString(), std::nullopt, file.url});
        }
    } else {
        for (const auto& row : speakers_.all()) {
            if (!row.isEnabled) continue;
            request.speakers.push_back({row.name.toStdString(), row.channel, std::nullopt});
        }
    }
    return request;
}

void TranscriptViewModel::start() {
    if (!canStart()) return;
    cancelFlag_->clear();
    isCancelling_ = false;
    progressPhase_ = progressSpeaker_ = QString();
    job_ = TranscriptJobs::run(request(), cancelFlag_, InUse::shared().take(usesOf(request())),
                               [this](TranscriptUIEvent event) { apply(std::move(event)); });
    stage_ = Stage::running;
    emit changed();
}

void TranscriptViewModel::cancel() {
    cancelFlag_->cancel();
    isCancelling_ = true;
    emit changed();
}

void TranscriptViewModel::apply(TranscriptUIEvent event) {
    if (const auto* progress = std::get_if<TranscriptUIEvent::Progress>(&event.value)) {
        progressPhase_ = Format::text(progress->phase);
        progressSpeaker_ = Format::text(progress->speaker.value_or(""));
    } else if (auto* result = std::get_if<TranscriptUIEvent::Finished>(&event.value)) {
        publish(std::move(*result));
    } else {
        errorMessage_ = Format::text(std::get<TranscriptUIEvent::Failed>(event.value).description);
        stage_ = Stage::finished;
    }
    emit changed();
}

void TranscriptViewModel::publish(TranscriptUIEvent::Finished result) {
    transcript_ = std::move(result.transcript);
    docxURL_ = result.document;
    appearancesByBucket_ = transcript_->appearances;
    std::vector<SpeakerEdit> speakers;
    for (const auto& speaker : distinctSpeakers(*transcript_)) {
        speakers.push_back({Format::text(speaker), Format::text(speaker), {}, {}});
        const auto hint = appearancesByBucket_.find(speaker);
        if (hint == appearancesByBucket_.end()) continue;
        speakers.back().note = Format::text(hint->second.note());
        speakers.back().atTimecode = Format::text(hint->second.atTimecode);
    }
    editableSpeakers_.reset(std::move(speakers));
    std::vector<LineEdit> lines;
    for (const auto& line : transcript_->segments) {
        const std::string timecode = transcript_->timecode(line).formatted();
        lines.push_back(
            {Format::text(line.speaker), Format::text(timecode), Format::text(line.text)});
    }
    editedSegments_.reset(std::move(lines));
    stage_ = Stage::finished;
}

std::vector<std::string> TranscriptViewModel::distinctSpeakers(
    const ReelCore::Transcript& transcript) {
    std::vector<std::string> speakers;
    for (const auto& line : transcript.segments) {
        const bool isKnown = std::ranges::find(speakers, line.speaker) != speakers.end();
        if (!isKnown && !SpeechClassifier::isNonSpeech(line.speaker))
            speakers.push_back(line.speaker);
    }
    return speakers;
}

QString TranscriptViewModel::startTimecode() const {
    return transcript_ ? Format::text(transcript_->startTimecode.formatted()) : QString();
}

QString TranscriptViewModel::slateLine() const {
    if (!transcript_ || !transcript_->slate || transcript_->slate->fieldCount() == 0) return {};
    return Format::text(ReelCore::DocxTranscriptWriter::slateLine(*transcript_->slate));
}

QStringList TranscriptViewModel::assignableBuckets() const {
    QStringList buckets;
    for (const auto& speaker : editableSpeakers_.all()) buckets.append(speaker.original);
    static_assert(std::ranges::is_sorted(SpeechClassifier::nonSpeechLabels));
    for (const auto label : SpeechClassifier::nonSpeechLabels) buckets.append(Format::text(label));
    return buckets;
}

QString TranscriptViewModel::displayName(const QString& bucket) const {
    const auto& speakers = editableSpeakers_.all();
    const auto speaker = std::ranges::find(speakers, bucket, &SpeakerEdit::original);
    const QString name = speaker == speakers.end() ? QString() : speaker->name.trimmed();
    return name.isEmpty() ? bucket : name;
}

QVariantMap TranscriptViewModel::displayNames() const {
    QVariantMap names;
    for (const auto& speaker : editableSpeakers_.all()) {
        names[speaker.original] = displayName(speaker.original);
    }
    return names;
}

void TranscriptViewModel::reassign(qsizetype line, const QString& bucket) {
    if (line < 0 || line >= editedSegments_.count()) return;
    editedSegments_.change(static_cast<std::size_t>(line),
                           [&](LineEdit& one) { one.bucket = bucket; });
}

ReelCore::Transcript TranscriptViewModel::edited() const {
    ReelCore::Transcript edited = *transcript_;
    for (std::size_t i = 0; i < edited.segments.size(); ++i) {
        edited.segments[i].speaker = displayName(editedSegments_[i].bucket).toStdString();
    }
    edited.appearances.clear();
    for (const auto& [bucket, hint] : appearancesByBucket_) {
        const std::string speaker = displayName(Format::text(bucket)).toStdString();
        edited.appearances[speaker] = hint;
        edited.appearances[speaker].speaker = speaker;
    }
    return edited;
}

void TranscriptViewModel::applyEdits() {
    if (!transcript_ || !docxURL_) return;
    isToBeSavedAgain_ = isSaving_;
    if (isSaving_) return;
    renameStatus_.clear();
    isSaving_ = true;
    const auto transcript = std::make_shared<const ReelCore::Transcript>(edited());
    const auto inUse = InUse::shared().take({{*docxURL_, InUse::Purpose::writing}});
    rewriteJob_ = runOnce<QString>(
        [transcript, document = *docxURL_, inUse] {
            ReelCore::DocxTranscriptWriter().write(*transcript, document);
            return QString("Applied edits and re-saved the .docx.");
        },
        [this, transcript](const QString& status) {
            transcript_ = *transcript;
            renameStatus_ = status;
            isSaving_ = false;
            if (isToBeSavedAgain_) QTimer::singleShot(0, this, &TranscriptViewModel::applyEdits);
            emit changed();
        },
        [](const std::exception&) { return QString("Edits applied; .docx rewrite failed."); });
    emit changed();
}

void TranscriptViewModel::openDocx() {
    if (docxURL_) desktop->open(*docxURL_);
}

void TranscriptViewModel::revealDocx() {
    if (docxURL_) desktop->reveal(*docxURL_);
}

void TranscriptViewModel::reset() {
    if (stage_ == Stage::running) return;
    rewriteJob_.reset();
    isSaving_ = isToBeSavedAgain_ = false;
    transcript_.reset();
    docxURL_.reset();
    errorMessage_ = renameStatus_ = QString();
    editableSpeakers_.reset();
    editedSegments_.reset();
    appearancesByBucket_.clear();
    stage_ = Stage::setup;
    emit changed();
}

}  // namespace keldo_app
