#pragma once

#include "ReelCore/Transcode/FFmpegLocator.h"
#include "keldo-app/Support/ReportSaver.h"
#include "keldo-app/Support/Rows.h"
#include "keldo-app/Support/ViewModel.h"
#include "keldo-app/Sync/SyncJobs.h"

#include <optional>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// A clip with its sound.
struct GroupRow {
    Q_GADGET
    KELDO_FIELD(QString, video)
    KELDO_FIELD(QString, timecode)  ///< "no TC" where the clip has none.
    KELDO_FIELD(QString, sound)     ///< The best recording; empty without one.
    KELDO_FIELD(QString, meta)      ///< Offset, scene, take and tracks of the best.
    KELDO_FIELD(QString, coverage)  ///< Of the best, in whole percent.
    KELDO_FIELD(QString, others)    ///< How many more overlap; empty without any.

    static GroupRow of(const ReelCore::SyncGroup& group);
};

/// All state and all actions of the Sync screen: one day's media grouped by time of day, and what
/// is made of the groups.
class SyncViewModel : public keldo_app::ViewModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool ffmpegReady READ ffmpegReady CONSTANT)
    Q_PROPERTY(bool hasResult READ hasResult NOTIFY changed)
    Q_PROPERTY(int syncedCount READ syncedCount NOTIFY changed)
    Q_PROPERTY(keldo_app::RowModel* groups READ groupRows CONSTANT)
    Q_PROPERTY(keldo_app::RowModel* unmatchedAudio READ unmatchedRows CONSTANT)
    Q_PROPERTY(QString reportStatus READ reportStatus NOTIFY changed)
    Q_PROPERTY(bool canScan READ canScan NOTIFY changed)
    Q_PROPERTY(bool canMux READ canMux NOTIFY changed)

public:
    enum class Stage { setup, scanning, results, muxing };
    Q_ENUM(Stage)

    using ViewModel::ViewModel;

    KELDO_PUBLISHED(keldo_app::OptionalURL, mediaDir, {})
    KELDO_PUBLISHED(keldo_app::OptionalURL, outputDir, {})
    KELDO_PUBLISHED(Stage, stage, Stage::setup)
    KELDO_PUBLISHED(QString, errorMessage, {})
    KELDO_PUBLISHED(QString, muxStatus, {})
    /// How many of the created clips lack pictures at their end; empty where none does.
    KELDO_PUBLISHED(QString, muxShortened, {})
    KELDO_PUBLISHED(int, muxDone, 0)
    KELDO_PUBLISHED(QString, exportStatus, {})

public:
    bool ffmpegReady() const { return ffmpegReady_; }
    /// Null while there is none.
    const SyncJobs::Result& result() const { return result_; }
    const QString& reportStatus() const { return report_.status(); }
    bool canScan() const { return mediaDir_ && stage_ != Stage::scanning; }
    bool canMux() const;

    Q_INVOKABLE void chooseMediaDir();
    Q_INVOKABLE void chooseOutput();
    Q_INVOKABLE void scan();
    Q_INVOKABLE void saveReport();
    Q_INVOKABLE void exportEditorial();
    Q_INVOKABLE void mux();
    Q_INVOKABLE void reveal();
    /// Back to the setup with the folders. What is under way goes on unseen.
    Q_INVOKABLE void reset();

private:
    bool hasResult() const { return result_ != nullptr; }
    int syncedCount() const { return syncedCount_; }
    RowModel* groupRows() { return &groupRows_; }
    RowModel* unmatchedRows() { return &unmatchedRows_; }

    InUse::Token mediaRead() const;
    void setResult(SyncJobs::Result result);
    void tellExported(const SyncJobs::URLs& written, const ReelCore::URL& folder);
    void apply(const MuxEvent& event);

    const bool ffmpegReady_ = ReelCore::FFmpegLocator().isAvailable();
    SyncJobs::Result result_;
    int syncedCount_ = 0;
    Rows<GroupRow> groupRows_;
    Rows<PlaceRow> unmatchedRows_;
    ReportSaver report_;

    std::optional<Job<SyncJobs::Result>> scanJob_;
    std::optional<Job<SyncJobs::URLs>> exportJob_;
    std::optional<Job<MuxEvent>> muxJob_;
};

}  // namespace keldo_app
