#pragma once

#include "ReelCore/Transcode/FFmpegLocator.h"
#include "keldo-app/Recover/RecoverJobs.h"
#include "keldo-app/Support/Rows.h"
#include "keldo-app/Support/ViewModel.h"

#include <optional>
#include <vector>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// A clip of a scanned folder.
struct ReportRow {
    Q_GADGET
    KELDO_FIELD(QString, name)
    KELDO_FIELD(QString, label)      ///< The diagnosis.
    KELDO_FIELD(QString, diagnosis)  ///< "repairable", "healthy" or "unreadable".
};

/// Media in an image.
struct FindingRow {
    Q_GADGET
    KELDO_FIELD(QString, label)
};

/// What became of a repair or a carve.
struct OutcomeRow {
    Q_GADGET
    KELDO_FIELD(bool, succeeded)
    KELDO_FIELD(QString, name)
    KELDO_FIELD(QString, method)
    KELDO_FIELD(QString, detail)  ///< What came back, or why nothing did.
    KELDO_FIELD(QString, output)  ///< The file's name; empty where there is none.
};

/// All state and all actions of the Recover screen: the scan of a folder with its repairs, and the
/// scan of a card's image with what is carved out of it. The two know nothing of each other but
/// the reference and the output folder.
class RecoverViewModel : public keldo_app::ViewModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool ffmpegReady READ ffmpegReady CONSTANT)
    Q_PROPERTY(bool hasScan READ hasScan NOTIFY changed)
    Q_PROPERTY(int damagedCount READ damagedCount NOTIFY changed)
    Q_PROPERTY(int healthyCount READ healthyCount NOTIFY changed)
    Q_PROPERTY(keldo_app::RowModel* reports READ reportRows CONSTANT)
    Q_PROPERTY(keldo_app::RowModel* outcomes READ outcomeRows CONSTANT)
    Q_PROPERTY(keldo_app::RowModel* findings READ findingRows CONSTANT)
    Q_PROPERTY(keldo_app::RowModel* carveOutcomes READ carveOutcomeRows CONSTANT)
    Q_PROPERTY(bool canScan READ canScan NOTIFY changed)
    Q_PROPERTY(bool needsReference READ needsReference NOTIFY changed)
    Q_PROPERTY(bool canRepair READ canRepair NOTIFY changed)
    Q_PROPERTY(bool canCarve READ canCarve NOTIFY changed)
    Q_PROPERTY(QString scanObjection READ scanObjection NOTIFY changed)
    Q_PROPERTY(QString carveObjection READ carveObjection NOTIFY changed)

public:
    enum class Stage { setup, scanning, results, repairing };
    Q_ENUM(Stage)
    enum class CarveStage { idle, scanning, found, extracting, done };
    Q_ENUM(CarveStage)

    explicit RecoverViewModel(QObject* parent = nullptr);

    KELDO_PUBLISHED(keldo_app::OptionalURL, cardDir, {})
    KELDO_PUBLISHED(keldo_app::OptionalURL, outputDir, {})
    KELDO_PUBLISHED(keldo_app::OptionalURL, reference, {})
    KELDO_PUBLISHED(Stage, stage, Stage::setup)
    KELDO_PUBLISHED(int, repairDone, 0)
    KELDO_PUBLISHED(keldo_app::OptionalURL, imageURL, {})
    KELDO_PUBLISHED(CarveStage, carveStage, CarveStage::idle)
    KELDO_PUBLISHED(double, carveProgress, 0)
    /// What kept a batch or the scan of an image from being gone through; mostly empty.
    KELDO_PUBLISHED(QString, trouble, {})
    KELDO_PUBLISHED(QString, carveTrouble, {})

public:
    const std::optional<ReelCore::RecoveryScan>& scan() const { return scan_; }
    const std::vector<ReelCore::RepairOutcome>& outcomes() const { return outcomes_; }
    const std::vector<ReelCore::Finding>& carveFindings() const { return carveFindings_; }
    const std::vector<ReelCore::RepairOutcome>& carveOutcomes() const { return carveOutcomes_; }

    bool canScan() const;
    /// True if a clip without an index was found and there is nothing to rebuild it by.
    bool needsReference() const;
    bool canRepair() const;
    bool canCarve() const;

    /// Why the card can't be read now: it is being erased.
    QString scanObjection() const;

    /// Why nothing can be carved into the output folder now: an earlier carve still writes there.
    QString carveObjection() const;

    Q_INVOKABLE void chooseCard();
    Q_INVOKABLE void chooseReference();
    Q_INVOKABLE void chooseOutput();
    Q_INVOKABLE void chooseImage();
    Q_INVOKABLE void runScan();
    Q_INVOKABLE void runRepair();
    Q_INVOKABLE void scanImage();
    Q_INVOKABLE void extractAll();
    Q_INVOKABLE void reveal();
    /// Back to the setup with the card and the output folder. What is under way goes on unseen.
    Q_INVOKABLE void reset();

private:
    bool ffmpegReady() const { return ffmpegReady_; }
    bool hasScan() const { return scan_.has_value(); }
    int damagedCount() const { return static_cast<int>(damaged_.size()); }
    int healthyCount() const { return healthyCount_; }
    RowModel* reportRows() { return &reportRows_; }
    RowModel* outcomeRows() { return &outcomeRows_; }
    RowModel* findingRows() { return &findingRows_; }
    RowModel* carveOutcomeRows() { return &carveOutcomeRows_; }

    InUse::Use cardRead() const;
    InUse::Use carvedFiles() const;
    void publish(ReelCore::RecoveryScan scan);
    void dropOutcomes();
    void dropCarving();
    void apply(OutcomeEvent event);
    void applyCarved(OutcomeEvent event);
    void applyCarveScan(CarveScanEvent event);

    const bool ffmpegReady_ = ReelCore::FFmpegLocator().isAvailable();
    std::optional<ReelCore::RecoveryScan> scan_;
    std::vector<ReelCore::ClipReport> damaged_;  ///< Of the scan.
    int healthyCount_ = 0;
    Rows<ReportRow> reportRows_;
    std::vector<ReelCore::RepairOutcome> outcomes_;
    Rows<OutcomeRow> outcomeRows_;
    std::vector<ReelCore::Finding> carveFindings_;
    Rows<FindingRow> findingRows_;
    std::vector<ReelCore::RepairOutcome> carveOutcomes_;
    Rows<OutcomeRow> carveOutcomeRows_;

    std::optional<Job<ReelCore::RecoveryScan>> scanJob_;
    std::optional<Job<OutcomeEvent>> repairJob_;
    std::optional<Job<CarveScanEvent>> carveScanJob_;
    std::optional<Job<OutcomeEvent>> extractJob_;
};

}  // namespace keldo_app
