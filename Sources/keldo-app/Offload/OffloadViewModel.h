#pragma once

#include "ReelCore/CardFormat/CardFormatter.h"
#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "keldo-app/Offload/OffloadEvent.h"
#include "keldo-app/Offload/OffloadFacts.h"
#include "keldo-app/Support/CancellationFlag.h"
#include "keldo-app/Support/Desktop.h"
#include "keldo-app/Support/Job.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>
#include <vector>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// All state and all actions of the Offload screen. Main thread only; long work goes through jobs.
/// What is absent is an invalid QVariant or an empty text. `desktop` must be set before an action
/// and must outlive this.
class OffloadViewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(keldo_app::Desktop* desktop MEMBER desktop NOTIFY desktopChanged REQUIRED)
    Q_PROPERTY(Stage stage READ stage NOTIFY stageChanged)
    Q_PROPERTY(QString source READ sourceText NOTIFY sourceChanged)
    Q_PROPERTY(QVariant scan READ scanFacts NOTIFY scanChanged)
    Q_PROPERTY(QList<keldo_app::DriveRow> destinations READ driveRows NOTIFY destinationsChanged)
    Q_PROPERTY(QString reelName READ reelName WRITE setReelName NOTIFY reelNameChanged)
    Q_PROPERTY(QString algorithm READ algorithmName WRITE setAlgorithmName NOTIFY algorithmChanged)
    Q_PROPERTY(QStringList algorithms READ algorithmNames CONSTANT)
    Q_PROPERTY(QVariant progress READ progressFacts NOTIFY progressChanged)
    Q_PROPERTY(QVariant result READ resultFacts NOTIFY resultChanged)
    Q_PROPERTY(QVariant gate READ gateFacts NOTIFY gateChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(QString errorReason READ errorReason NOTIFY errorMessageChanged)
    Q_PROPERTY(QString formatStatus READ formatStatus NOTIFY formatStatusChanged)
    Q_PROPERTY(bool isFormatting READ isFormatting NOTIFY isFormattingChanged)
    Q_PROPERTY(QString reportStatus READ reportStatus NOTIFY reportStatusChanged)
    Q_PROPERTY(bool canStart READ canStart NOTIFY canStartChanged)
    Q_PROPERTY(QString formatCommand READ formatCommand NOTIFY formatPlanChanged)

public:
    enum class Stage { setup, scanning, running, finished };
    Q_ENUM(Stage)

    explicit OffloadViewModel(QObject* parent = nullptr);

    Stage stage() const { return stage_; }
    const std::optional<ReelCore::URL>& source() const { return source_; }
    const std::optional<ReelCore::SourceScanner::ScanResult>& scan() const { return scan_; }
    const std::vector<ReelCore::URL>& destinations() const { return destinations_; }
    QString reelName() const { return reelName_; }
    ReelCore::HashAlgorithm algorithm() const { return algorithm_; }
    const std::optional<ReelCore::OffloadProgress>& progress() const { return progress_; }
    /// Null while there is none. Shared, since a large card's result takes long to copy.
    const std::shared_ptr<const ReelCore::OffloadResult>& result() const { return result_; }
    const std::optional<ReelCore::CardFormatter::FormatGate>& gate() const { return gate_; }
    QString errorMessage() const { return errorMessage_; }
    /// What there is to add to the error; empty where its message says it all.
    QString errorReason() const { return errorReason_; }
    QString formatStatus() const { return formatStatus_; }
    bool isFormatting() const { return isFormatting_; }
    QString reportStatus() const { return reportStatus_; }

    void setReelName(const QString& reelName);

    /// True only at the setup stage with a source, a destination and a reel name.
    bool canStart() const;

    /// Absent without a source; otherwise the source, to become an exFAT volume named as the reel.
    std::optional<ReelCore::CardFormatter::FormatPlan> formatPlan() const;

    Q_INVOKABLE void chooseSource();
    Q_INVOKABLE void addDestination();
    Q_INVOKABLE void removeDestination(qsizetype row);
    Q_INVOKABLE void start();
    /// Takes in what a run tells. `start` sees to that.
    void apply(OffloadEvent event);
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void saveReport();
    Q_INVOKABLE void formatCard();
    /// Back to the setup with all that was chosen; not while an erase is running.
    Q_INVOKABLE void reset();

    Desktop* desktop = nullptr;

signals:
    void desktopChanged();
    void stageChanged();
    void sourceChanged();
    void scanChanged();
    void destinationsChanged();
    void reelNameChanged();
    void algorithmChanged();
    void progressChanged();
    void resultChanged();
    void gateChanged();
    void errorMessageChanged();
    void formatStatusChanged();
    void isFormattingChanged();
    void reportStatusChanged();
    void canStartChanged();
    void formatPlanChanged();

private:
    QString sourceText() const;
    QVariant scanFacts() const;
    QList<DriveRow> driveRows() const;
    QString algorithmName() const;
    void setAlgorithmName(const QString& name);
    QStringList algorithmNames() const;
    QVariant progressFacts() const;
    QVariant resultFacts() const { return resultFacts_; }
    QVariant gateFacts() const;
    QString formatCommand() const;

    void setStage(Stage stage);
    void setFormatStatus(const QString& status);
    void setReportStatus(const QString& status);
    void clearOutcome();
    void apply(OffloadEvent::Progress event);
    void apply(OffloadEvent::Finished event);
    void apply(OffloadEvent::Failed event);
    void applyReport(const std::vector<ReelCore::URL>& written, const ReelCore::URL& folder);

    Stage stage_ = Stage::setup;
    std::optional<ReelCore::URL> source_;
    std::optional<ReelCore::SourceScanner::ScanResult> scan_;
    std::vector<ReelCore::URL> destinations_;
    QString reelName_;
    ReelCore::HashAlgorithm algorithm_ = ReelCore::HashAlgorithm::xxhash64;
    std::optional<ReelCore::OffloadProgress> progress_;
    std::shared_ptr<const ReelCore::OffloadResult> result_;
    QVariant resultFacts_;
    std::optional<ReelCore::CardFormatter::FormatGate> gate_;
    QString errorMessage_;
    QString errorReason_;
    QString formatStatus_;
    bool isFormatting_ = false;
    QString reportStatus_;

    const std::shared_ptr<CancellationFlag> cancelFlag_ = std::make_shared<CancellationFlag>();
    std::optional<Job<std::optional<ReelCore::SourceScanner::ScanResult>>> scanJob_;
    std::optional<Job<OffloadEvent>> offloadJob_;
    std::optional<Job<std::vector<ReelCore::URL>>> reportJob_;
    std::optional<Job<QString>> formatJob_;
};

}  // namespace keldo_app
