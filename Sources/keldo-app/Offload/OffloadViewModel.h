#pragma once

#include "ReelCore/CardFormat/CardFormatter.h"
#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "keldo-app/Offload/OffloadFacts.h"
#include "keldo-app/Offload/OffloadJobs.h"
#include "keldo-app/Support/Format.h"
#include "keldo-app/Support/ReportSaver.h"
#include "keldo-app/Support/Rows.h"
#include "keldo-app/Support/ViewModel.h"

#include <memory>
#include <optional>
#include <vector>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// All state and all actions of the Offload screen. What is absent is an invalid QVariant or an
/// empty text.
class OffloadViewModel : public keldo_app::ViewModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(keldo_app::RowModel* destinations READ destinationRows CONSTANT)
    Q_PROPERTY(QStringList algorithms READ algorithmNames CONSTANT)
    Q_PROPERTY(int algorithmIndex READ algorithmIndex WRITE setAlgorithmIndex NOTIFY changed)
    Q_PROPERTY(QVariant scan READ scanFacts NOTIFY changed)
    Q_PROPERTY(QVariant progress READ progressFacts NOTIFY changed)
    Q_PROPERTY(QVariant result READ resultFacts NOTIFY changed)
    Q_PROPERTY(keldo_app::RowModel* failedFiles READ failedFileRows CONSTANT)
    Q_PROPERTY(bool isEligible READ isEligible NOTIFY changed)
    Q_PROPERTY(QString gateReason READ gateReason NOTIFY changed)
    Q_PROPERTY(QString reportStatus READ reportStatus NOTIFY changed)
    Q_PROPERTY(QString startObjection READ startObjection NOTIFY changed)
    Q_PROPERTY(QString formatObjection READ formatObjection NOTIFY changed)
    Q_PROPERTY(bool canStart READ canStart NOTIFY changed)
    Q_PROPERTY(QString formatCommand READ formatCommand NOTIFY changed)

public:
    enum class Stage { setup, scanning, running, finished };
    Q_ENUM(Stage)

    explicit OffloadViewModel(QObject* parent = nullptr);

    KELDO_PUBLISHED(Stage, stage, Stage::setup)
    KELDO_PUBLISHED(keldo_app::OptionalURL, source, {})
    KELDO_EDITED(QString, reelName, setReelName, {})
    KELDO_PUBLISHED(QString, errorMessage, {})
    /// What there is to add to the error; empty where its message says it all.
    KELDO_PUBLISHED(QString, errorReason, {})
    KELDO_PUBLISHED(QString, formatStatus, {})
    KELDO_PUBLISHED(bool, isFormatting, false)

public:
    const std::optional<ReelCore::SourceScanner::ScanResult>& scan() const { return scan_; }
    const std::vector<ReelCore::URL>& destinations() const { return destinations_; }
    ReelCore::HashAlgorithm algorithm() const { return algorithm_; }
    const std::optional<ReelCore::OffloadProgress>& progress() const { return progress_; }
    /// Null while there is none. Shared, since a large card's result takes long to copy.
    const OffloadJobs::Result& result() const { return result_; }
    const std::optional<ReelCore::CardFormatter::FormatGate>& gate() const { return gate_; }
    const QString& reportStatus() const { return report_.status(); }

    /// Why the chosen places can't be offloaded now: another job works on one of them.
    QString startObjection() const;

    /// Why the card can't be erased now, though the gate may be open.
    QString formatObjection() const;

    /// True only at the setup stage with a source, a destination and a reel name, none of them in
    /// use.
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

private:
    RowModel* destinationRows() { return &destinationRows_; }
    RowModel* failedFileRows() { return &failedFiles_; }
    int algorithmIndex() const { return static_cast<int>(algorithm_); }
    void setAlgorithmIndex(int index);
    static QStringList algorithmNames() { return Format::rawValues<ReelCore::HashAlgorithm>(); }
    QVariant scanFacts() const { return factsOf<ScanFacts>(scan_); }
    QVariant progressFacts() const { return factsOf<ProgressFacts>(progress_); }
    QVariant resultFacts() const { return resultFacts_; }
    bool isEligible() const { return gate_ && gate_->eligible; }
    QString gateReason() const { return gate_ ? Format::text(gate_->reason) : QString(); }
    QString formatCommand() const;

    std::vector<InUse::Use> uses() const;
    void scanSource();
    void clearOutcome();
    void finish(OffloadJobs::Result result);

    std::optional<ReelCore::SourceScanner::ScanResult> scan_;
    std::vector<ReelCore::URL> destinations_;
    Rows<PlaceRow> destinationRows_;
    ReelCore::HashAlgorithm algorithm_ = ReelCore::HashAlgorithm::xxhash64;
    std::optional<ReelCore::OffloadProgress> progress_;
    OffloadJobs::Result result_;
    QVariant resultFacts_;
    Rows<PlaceRow> failedFiles_;
    std::optional<ReelCore::CardFormatter::FormatGate> gate_;
    ReportSaver report_;

    const std::shared_ptr<CancellationFlag> cancelFlag_ = std::make_shared<CancellationFlag>();
    std::optional<Job<OffloadJobs::ScanResult>> scanJob_;
    std::optional<Job<OffloadEvent>> offloadJob_;
    std::optional<Job<QString>> formatJob_;
};

}  // namespace keldo_app
