#include "keldo-app/Offload/OffloadFacts.h"

#include "keldo-app/Support/Format.h"

#include <algorithm>

namespace keldo_app {

namespace {

using ReelCore::DestinationState;
using ReelCore::OffloadResult;

/// The folder's name, or its path where another drive's folder has that name as well.
QString driveName(const OffloadResult& result, std::size_t drive) {
    const auto& drives = result.request.destinations;
    const QString name = Format::name(drives[drive]);
    const auto alike = std::ranges::count(drives, name, &Format::name);
    return alike == 1 ? name : Format::path(drives[drive]);
}

QString missingList(const QString& drive, DestinationState::HashList list) {
    if (list == DestinationState::HashList::cardHasItsName) {
        return QStringLiteral(
                   "%1 has no new hash list: the card brought a file of the list's name, "
                   "and its copy was kept.")
            .arg(drive);
    }
    return QStringLiteral("%1 has no hash list: it could not be written.").arg(drive);
}

void addStates(ResultFacts& facts, const OffloadResult& result) {
    const auto& states = result.destinationStates;
    for (std::size_t i = 0; i < states.size(); ++i) {
        const QString drive = driveName(result, i);
        if (!states[i].readPastTheCache) {
            facts.weakerProofs.append(
                QStringLiteral("The proof is weaker on %1: the copies were read back, but this "
                               "computer may have answered from its memory and not from the drive.")
                    .arg(drive));
        }
        if (states[i].hashList != DestinationState::HashList::written) {
            facts.missingLists.append(missingList(drive, states[i].hashList));
        }
    }
}

}  // namespace

ScanFacts ScanFacts::of(const ReelCore::SourceScanner::ScanResult& scan) {
    return {Format::text(rawValue(scan.cameraFormat)), scan.fileCount(),
            Format::bytes(scan.totalBytes())};
}

ProgressFacts ProgressFacts::of(const ReelCore::OffloadProgress& progress) {
    return {Format::text(rawValue(progress.phase)),
            progress.fractionComplete(),
            Format::text(progress.currentFile.value_or("")),
            progress.filesCompleted,
            progress.totalFiles,
            Format::bytes(progress.bytesCompleted),
            Format::bytes(progress.totalBytes)};
}

ResultFacts ResultFacts::of(const ReelCore::OffloadResult& result) {
    ResultFacts facts{result.allVerified(),
                      static_cast<qint64>(result.files.size()),
                      Format::bytes(result.totalBytes()),
                      static_cast<qint64>(result.request.destinations.size()),
                      Format::text(rawValue(result.request.algorithm)),
                      {},
                      {}};
    addStates(facts, result);
    return facts;
}

std::vector<PlaceRow> ResultFacts::failedFiles(const ReelCore::OffloadResult& result) {
    std::vector<PlaceRow> rows;
    for (const auto& one : result.files) {
        if (!one.verified()) rows.push_back(PlaceRow::of(one.file.relativePath));
    }
    return rows;
}

}  // namespace keldo_app
