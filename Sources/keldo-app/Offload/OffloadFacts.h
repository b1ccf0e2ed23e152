#pragma once

#include "ReelCore/CardFormat/CardFormatter.h"
#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/SourceScanner.h"

#include <QObject>
#include <QString>
#include <QStringList>

namespace keldo_app {

/// A backup drive as a row shows it.
struct DriveRow {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString path MEMBER path)

public:
    QString name;
    QString path;
};

/// A scan as the source card sums it up.
struct ScanFacts {
    Q_GADGET
    Q_PROPERTY(QString camera MEMBER camera)
    Q_PROPERTY(qint64 fileCount MEMBER fileCount)
    Q_PROPERTY(QString total MEMBER total)

public:
    static ScanFacts of(const ReelCore::SourceScanner::ScanResult& scan);

    QString camera;
    qint64 fileCount = 0;
    QString total;
};

/// Where a run stands, as the running view shows it.
struct ProgressFacts {
    Q_GADGET
    Q_PROPERTY(QString phase MEMBER phase)
    Q_PROPERTY(double fraction MEMBER fraction)
    Q_PROPERTY(QString currentFile MEMBER currentFile)
    Q_PROPERTY(qint64 filesCompleted MEMBER filesCompleted)
    Q_PROPERTY(qint64 totalFiles MEMBER totalFiles)
    Q_PROPERTY(QString completed MEMBER completed)
    Q_PROPERTY(QString total MEMBER total)

public:
    static ProgressFacts of(const ReelCore::OffloadProgress& progress);

    QString phase;
    double fraction = 0;
    QString currentFile;
    qint64 filesCompleted = 0;
    qint64 totalFiles = 0;
    QString completed;
    QString total;
};

/// The outcome of a run, as the finished view shows it.
struct ResultFacts {
    Q_GADGET
    Q_PROPERTY(bool allVerified MEMBER allVerified)
    Q_PROPERTY(qint64 fileCount MEMBER fileCount)
    Q_PROPERTY(QString total MEMBER total)
    Q_PROPERTY(qint64 driveCount MEMBER driveCount)
    Q_PROPERTY(QString algorithm MEMBER algorithm)
    Q_PROPERTY(QStringList failedFiles MEMBER failedFiles)
    Q_PROPERTY(QStringList weakerProofs MEMBER weakerProofs)
    Q_PROPERTY(QStringList missingLists MEMBER missingLists)

public:
    static ResultFacts of(const ReelCore::OffloadResult& result);

    bool allVerified = false;
    qint64 fileCount = 0;
    QString total;
    qint64 driveCount = 0;
    QString algorithm;
    QStringList failedFiles;
    QStringList weakerProofs;  ///< A sentence for each drive whose read-back may be of memory.
    QStringList missingLists;  ///< A sentence for each drive that has no new hash list.
};

/// The verdict on erasing.
struct GateFacts {
    Q_GADGET
    Q_PROPERTY(bool eligible MEMBER eligible)
    Q_PROPERTY(QString reason MEMBER reason)

public:
    static GateFacts of(const ReelCore::CardFormatter::FormatGate& gate);

    bool eligible = false;
    QString reason;
};

}  // namespace keldo_app
