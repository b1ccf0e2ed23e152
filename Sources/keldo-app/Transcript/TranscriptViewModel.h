#pragma once

#include "ReelCore/Diarize/DiarizationModels.h"
#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Transcribe/AudioExtractor.h"
#include "ReelCore/Transcribe/WhisperLocator.h"
#include "keldo-app/Support/Format.h"
#include "keldo-app/Support/Rows.h"
#include "keldo-app/Support/ViewModel.h"
#include "keldo-app/Transcript/TranscriptJobs.h"

#include <QVariantMap>
#include <map>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// One channel of the clip.
struct SpeakerRow {
    Q_GADGET
    KELDO_FIELD(QString, name)
    KELDO_FIELD(int, channel)  ///< From 0.
    KELDO_FIELD(bool, isEnabled)
};

/// One separate audio file.
struct FileTrack {
    Q_GADGET
    KELDO_FIELD(QString, name)
    KELDO_FIELD(QString, fileName)
    ReelCore::URL url;
};

/// One speaker of the result. A bucket is the label that a line had when the run ended; it stays
/// the key while names are edited.
struct SpeakerEdit {
    Q_GADGET
    KELDO_FIELD(QString, original)  ///< The bucket.
    KELDO_FIELD(QString, name)
    KELDO_FIELD(QString, note)  ///< Of the hint, as is `atTimecode`; empty without one.
    KELDO_FIELD(QString, atTimecode)
};

/// One line of the result.
struct LineEdit {
    Q_GADGET
    KELDO_FIELD(QString, bucket)
    KELDO_FIELD(QString, timecode)
    KELDO_FIELD(QString, text)
};

/// All state and all actions of the Transcript screen: one clip into a Word document, and the
/// corrections of who says what.
class TranscriptViewModel : public keldo_app::ViewModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool whisperReady MEMBER whisperReady CONSTANT)
    Q_PROPERTY(bool ffmpegReady MEMBER ffmpegReady CONSTANT)
    Q_PROPERTY(bool available MEMBER available CONSTANT)
    Q_PROPERTY(bool diarizeReady MEMBER diarizeReady CONSTANT)
    Q_PROPERTY(QString modelsFolder MEMBER modelsFolder CONSTANT)
    Q_PROPERTY(QStringList models READ models NOTIFY changed)
    /// -1 for none, and for one that stands elsewhere.
    Q_PROPERTY(int modelIndex READ modelIndex WRITE setModelIndex NOTIFY changed)
    Q_PROPERTY(bool hasVoices READ hasVoices NOTIFY changed)
    Q_PROPERTY(QString objection READ objection NOTIFY changed)
    Q_PROPERTY(bool canStart READ canStart NOTIFY changed)
    Q_PROPERTY(QString startTimecode READ startTimecode NOTIFY changed)
    Q_PROPERTY(QString slateLine READ slateLine NOTIFY changed)
    Q_PROPERTY(bool hasHints READ hasHints NOTIFY changed)
    Q_PROPERTY(QString earlierDocument READ earlierDocument NOTIFY changed)
    Q_PROPERTY(QStringList assignableBuckets READ assignableBuckets NOTIFY changed)
    /// `displayName` of the speakers by their buckets.
    Q_PROPERTY(QVariantMap displayNames READ displayNames NOTIFY changed)

public:
    enum class Stage { setup, probing, running, finished };
    Q_ENUM(Stage)
    enum class SpeakerMode { diarize, iso, files };
    Q_ENUM(SpeakerMode)

    explicit TranscriptViewModel(QObject* parent = nullptr);

    // Looked for once: whoever installs one opens the screen anew.
    const bool whisperReady = ReelCore::WhisperLocator().isAvailable();
    const bool ffmpegReady = ReelCore::FFmpegLocator().isAvailable();
    const bool available = whisperReady && ffmpegReady;
    const bool diarizeReady = ReelCore::DiarizationModels().isAvailable();
    const QString modelsFolder = Format::path(ReelCore::WhisperLocator::modelsDirectory());
    /// What stands before a model's name where models are fetched. Tests have their own server.
    QString modelSource = "https://huggingface.co/ggerganov/whisper.cpp/resolve/main/ggml-";

    KELDO_PUBLISHED(Stage, stage, Stage::setup)
    KELDO_PUBLISHED(keldo_app::OptionalURL, input, {})
    KELDO_PUBLISHED(int, channelCount, 0)
    KELDO_PUBLISHED(QString, detectedTC, {})
    KELDO_ROWS(SpeakerRow, speakers)
    KELDO_ROWS(FileTrack, fileTracks)
    KELDO_EDITED(SpeakerMode, speakerMode, setSpeakerMode, SpeakerMode::diarize)
    KELDO_EDITED(int, numSpeakers, setNumSpeakers, 0)  ///< 0 means automatic.
    KELDO_PUBLISHED(keldo_app::OptionalURL, outputDir, {})
    KELDO_EDITED(bool, readSlate, setReadSlate, true)
    KELDO_EDITED(bool, appearanceHints, setAppearanceHints, true)
    KELDO_PUBLISHED(keldo_app::OptionalURL, selectedModel, {})
    KELDO_PUBLISHED(QString, downloadingModel, {})
    KELDO_PUBLISHED(QString, progressPhase, {})
    KELDO_PUBLISHED(QString, progressSpeaker, {})
    KELDO_PUBLISHED(bool, isCancelling, false)  ///< Asked to end, but not at its end yet.
    KELDO_PUBLISHED(keldo_app::OptionalURL, docxURL, {})
    KELDO_PUBLISHED(QString, errorMessage, {})
    KELDO_ROWS(SpeakerEdit, editableSpeakers)
    KELDO_ROWS(LineEdit, editedSegments)
    KELDO_PUBLISHED(QString, renameStatus, {})
    KELDO_PUBLISHED(bool, isSaving, false)

public:
    const std::optional<ReelCore::Transcript>& transcript() const { return transcript_; }
    QStringList models() const;
    int modelIndex() const;
    void setModelIndex(int index);

    /// True if there is somebody to be told apart, in the way that is chosen.
    bool hasVoices() const;
    /// Why what a run would read or write can't be used now; mostly empty.
    QString objection() const;
    bool canStart() const;

    QString startTimecode() const;
    QString slateLine() const;  ///< Empty where no field of the slate is known.
    bool hasHints() const { return !appearancesByBucket_.empty(); }
    QString earlierDocument() const;  ///< The name of what a run would replace; mostly empty.
    /// The speakers in order of first appearance, without what is no speech.
    static std::vector<std::string> distinctSpeakers(const ReelCore::Transcript& transcript);
    /// The buckets that a line can be moved to: the speakers, then what is no speech.
    QStringList assignableBuckets() const;
    QString displayName(const QString& bucket) const;
    QVariantMap displayNames() const;

    Q_INVOKABLE void chooseInput();
    Q_INVOKABLE void addFiles();
    Q_INVOKABLE void removeFile(qsizetype row);
    Q_INVOKABLE void chooseOutput();
    /// Fetches a model such as "base.en" beside the others and selects it.
    Q_INVOKABLE void downloadModel(const QString& name);
    Q_INVOKABLE void revealModelsFolder();
    Q_INVOKABLE void start();
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void openDocx();
    Q_INVOKABLE void revealDocx();
    Q_INVOKABLE void reassign(qsizetype line, const QString& bucket);
    /// Writes the document anew with the names and lines as they stand.
    Q_INVOKABLE void applyEdits();
    /// Back to the setup with all that was chosen there.
    Q_INVOKABLE void reset();

private:
    using ClipInfo = ReelCore::AudioExtractor::ClipInfo;

    void publish(const ClipInfo& clip);
    void publish(TranscriptUIEvent::Finished result);
    void apply(TranscriptUIEvent event);
    ReelCore::TranscribeRequest request() const;
    ReelCore::Transcript edited() const;
    void endDownload();

    std::vector<ReelCore::URL> availableModels_ = ReelCore::WhisperLocator().availableModels();
    std::optional<ReelCore::Transcript> transcript_;
    std::map<std::string, ReelCore::AppearanceHint> appearancesByBucket_;

    const std::shared_ptr<CancellationFlag> cancelFlag_ = std::make_shared<CancellationFlag>();
    std::optional<Job<ClipInfo>> probeJob_;
    std::optional<Job<TranscriptUIEvent>> job_;
    std::optional<Job<QString>> rewriteJob_;
    bool isToBeSavedAgain_ = false;  ///< Edits came while the document was being written.
};

}  // namespace keldo_app
