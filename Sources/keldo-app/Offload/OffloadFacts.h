#pragma once

#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "keldo-app/Support/ViewModel.h"

#include <QString>
#include <QStringList>

namespace keldo_app {

/// A scan as the source card sums it up.
struct ScanFacts {
    Q_GADGET
    KELDO_FIELD(QString, camera)
    KELDO_FIELD(qint64, fileCount)
    KELDO_FIELD(QString, total)

    static ScanFacts of(const ReelCore::SourceScanner::ScanResult& scan);
};

/// Where a run stands, as the running view shows it.
struct ProgressFacts {
    Q_GADGET
    KELDO_FIELD(QString, phase)
    KELDO_FIELD(double, fraction)
    KELDO_FIELD(QString, currentFile)
    KELDO_FIELD(qint64, filesCompleted)
    KELDO_FIELD(qint64, totalFiles)
    KELDO_FIELD(QString, completed)
    KELDO_FIELD(QString, total)

    static ProgressFacts of(const ReelCore::OffloadProgress& progress);
};

/// The outcome of a run, as the finished view shows it.
struct ResultFacts {
    Q_GADGET
    KELDO_FIELD(bool, allVerified)
    KELDO_FIELD(qint64, fileCount)
    KELDO_FIELD(QString, total)
    KELDO_FIELD(qint64, driveCount)
    KELDO_FIELD(QString, algorithm)
    KELDO_FIELD(QStringList, weakerProofs)  ///< A sentence for each drive so proved.
    KELDO_FIELD(QStringList, missingLists)  ///< A sentence for each drive without a new hash list.

    static ResultFacts of(const ReelCore::OffloadResult& result);
    static std::vector<PlaceRow> failedFiles(const ReelCore::OffloadResult& result);
};

}  // namespace keldo_app
