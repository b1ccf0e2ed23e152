#include "keldo-app/Offload/OffloadFacts.h"

#include "keldo-app/Support/Format.h"

namespace keldo_app {

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
                      {}};
    for (const auto& one : result.files) {
        if (!one.verified()) facts.failedFiles.append(Format::text(one.file.relativePath));
    }
    return facts;
}

GateFacts GateFacts::of(const ReelCore::CardFormatter::FormatGate& gate) {
    return {gate.eligible, Format::text(gate.reason)};
}

}  // namespace keldo_app
