#pragma once

#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Transcode/TranscodePreset.h"
#include "keldo-app/Support/ReportSaver.h"
#include "keldo-app/Support/Rows.h"
#include "keldo-app/Support/ViewModel.h"
#include "keldo-app/Transcode/TranscodeJobs.h"

#include <QVariantList>
#include <memory>
#include <optional>
#include <vector>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// A clip that could not be rendered.
struct FailureRow {
    Q_GADGET
    KELDO_FIELD(QString, name)
    KELDO_FIELD(QString, message)
};

/// All state and all actions of the Transcode screen: a batch of clips, one preset, one look.
class TranscodeViewModel : public keldo_app::ViewModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool ffmpegAvailable READ ffmpegAvailable CONSTANT)
    Q_PROPERTY(keldo_app::RowModel* inputs READ inputRows CONSTANT)
    Q_PROPERTY(keldo_app::RowModel* completed READ completedRows CONSTANT)
    Q_PROPERTY(keldo_app::RowModel* failures READ failureRows CONSTANT)
    /// Each a map of "text" and "heading", the edit system that it is for.
    Q_PROPERTY(QVariantList presets READ presets CONSTANT)
    Q_PROPERTY(int presetIndex READ presetIndex WRITE setPresetIndex NOTIFY changed)
    Q_PROPERTY(QString presetName READ presetName NOTIFY changed)
    /// Pixels; 0 for the size of the source.
    Q_PROPERTY(int scaleLongEdge READ scale WRITE setScale NOTIFY changed)
    Q_PROPERTY(QString currentName READ currentName NOTIFY changed)
    Q_PROPERTY(double fraction READ fraction NOTIFY changed)
    Q_PROPERTY(bool isClosing READ isClosing NOTIFY changed)
    Q_PROPERTY(QString speed READ speed NOTIFY changed)
    Q_PROPERTY(QString fps READ fps NOTIFY changed)
    Q_PROPERTY(QString reportStatus READ reportStatus NOTIFY changed)
    Q_PROPERTY(QString commandPreview READ commandPreview NOTIFY changed)
    Q_PROPERTY(bool canStart READ canStart NOTIFY changed)

public:
    enum class Stage { setup, running, finished };
    Q_ENUM(Stage)

    struct Failure {
        QString name;
        QString message;

        bool operator==(const Failure&) const = default;
    };

    using ViewModel::ViewModel;

    KELDO_PUBLISHED(Stage, stage, Stage::setup)
    KELDO_PUBLISHED(keldo_app::OptionalURL, outputDir, {})
    KELDO_PUBLISHED(keldo_app::OptionalURL, lutURL, {})
    KELDO_EDITED(bool, applyLUT, setApplyLUT, false)
    KELDO_PUBLISHED(int, currentIndex, 0)
    /// A cancel has been asked for, and the clip under way is being closed.
    KELDO_PUBLISHED(bool, isCancelling, false)

public:
    bool ffmpegAvailable() const { return ffmpegAvailable_; }
    const std::vector<ReelCore::URL>& inputs() const { return inputs_; }
    const ReelCore::TranscodePreset& preset() const;
    std::optional<std::int64_t> scaleLongEdge() const { return scaleLongEdge_; }
    const std::optional<ReelCore::TranscodeProgress>& progress() const { return progress_; }
    const std::vector<ReelCore::URL>& completed() const { return completed_; }
    const std::vector<Failure>& failures() const { return failures_; }
    const QString& reportStatus() const { return report_.status(); }
    bool canStart() const;

    /// The command of the first clip, for people; empty without a clip or a folder.
    QString commandPreview() const;

    void setPresetIndex(int index);

    Q_INVOKABLE void addInputs();
    Q_INVOKABLE void removeInput(qsizetype row);
    Q_INVOKABLE void chooseOutput();
    Q_INVOKABLE void chooseLUT();
    Q_INVOKABLE void start();
    /// Asks the batch to end once the clip under way is closed; asked again, ends it at once.
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void saveReport();
    /// Back to the setup with all that was chosen.
    Q_INVOKABLE void reset();

private:
    RowModel* inputRows() { return &inputRows_; }
    RowModel* completedRows() { return &completedRows_; }
    RowModel* failureRows() { return &failureRows_; }
    static QVariantList presets();
    int presetIndex() const { return presetIndex_; }
    QString presetName() const;
    int scale() const { return static_cast<int>(scaleLongEdge_.value_or(0)); }
    void setScale(int pixels);
    QString currentName() const { return inputName(static_cast<std::size_t>(currentIndex_)); }
    double fraction() const { return progress_ ? progress_->fractionComplete : 0; }
    /// The clip under way has all its pictures but is not done yet.
    bool isClosing() const;
    QString speed() const;
    QString fps() const;

    QString inputName(std::size_t index) const;
    ReelCore::TranscodeRequest makeRequest(const ReelCore::URL& input) const;
    std::optional<ReelCore::LUT> lut() const;
    void clearOutcome();
    void apply(const TranscodeEvent::Progress& event);
    void apply(const TranscodeEvent::FileFinished& event);
    void apply(const TranscodeEvent::FileFailed& event);
    void apply(const TranscodeEvent::AllDone& event);

    const bool ffmpegAvailable_ = ReelCore::FFmpegLocator().isAvailable();
    std::vector<ReelCore::URL> inputs_;
    Rows<PlaceRow> inputRows_;
    int presetIndex_ = indexOf(ReelCore::TranscodePreset::proRes422HQ);
    std::optional<std::int64_t> scaleLongEdge_;
    std::optional<ReelCore::TranscodeProgress> progress_;
    std::vector<ReelCore::URL> completed_;
    Rows<PlaceRow> completedRows_;
    std::vector<Failure> failures_;
    Rows<FailureRow> failureRows_;
    ReportSaver report_;

    static int indexOf(const ReelCore::TranscodePreset& preset);

    const std::shared_ptr<TranscodeFlags> flags_ = std::make_shared<TranscodeFlags>();
    std::optional<Job<TranscodeEvent>> job_;
};

}  // namespace keldo_app
