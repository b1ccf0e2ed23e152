#include "ReelCore/Offload/OffloadEngine.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Offload/OffloadRun.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"

#include <utility>

namespace ReelCore {

using Phase = OffloadProgress::Phase;

OffloadEngine::OffloadEngine(std::size_t bufferSize_, std::function<bool()> isCancelled_)
    : bufferSize(bufferSize_), isCancelled(std::move(isCancelled_)) {
    if (bufferSize < 1) fatal("an offload needs a buffer");
    if (!isCancelled) fatal("an offload needs to be told whether it is cancelled");
}

OffloadResult OffloadEngine::run(const OffloadRequest& request, const Progress& progress) {
    if (!progress) fatal("an offload needs somebody to tell how it goes");
    if (request.destinations.empty()) throw OffloadError(OffloadError::NoDestinations{});
    const Date startedAt = now();
    progress({Phase::scanning, std::nullopt, 0, 0, 0, 0});
    OffloadRun offload(request, bufferSize, isCancelled);
    SourceScanner::ScanResult scan = SourceScanner::scan(request.source);
    OffloadProgress standing{Phase::copying, {}, 0, scan.fileCount(), 0, scan.totalBytes()};
    offload.makeReels();
    const auto report = [&](Phase phase) {
        standing.phase = phase;
        progress(standing);
    };

    OffloadResult result{request, scan.cameraFormat, {}, startedAt, {}, {}, scan.unreadFolders};
    result.files.reserve(scan.files.size());
    for (MediaFile& file : scan.files) result.files.push_back({std::move(file), {}, {}});
    scan.files = {};
    for (FileVerification& copied : result.files) {
        throwIfCancelled();
        standing.currentFile = copied.file.relativePath;
        report(Phase::copying);
        const std::int64_t scannedSize = copied.file.size;
        copied = offload.copy(std::move(copied.file));
        report(Phase::verifying);
        copied.destinations.reserve(offload.driveCount());
        for (std::size_t drive = 0; drive < offload.driveCount(); ++drive) {
            throwIfCancelled();
            copied.destinations.push_back(offload.readBack(drive, copied));
        }
        standing.filesCompleted += 1;
        standing.bytesCompleted = checkedAdd(standing.bytesCompleted, scannedSize);
    }
    if (standing.currentFile) offload.requireMedium(*standing.currentFile);

    standing.currentFile.reset();
    report(Phase::writingReport);
    offload.flush(result.files);
    result.finishedAt = now();
    result.destinationStates = offload.writeHashLists(result);
    report(Phase::done);
    return result;
}

std::string OffloadEngine::copy(const URL& source, const std::vector<URL>& targets,
                                HashAlgorithm algorithm) const {
    const std::string name = source.filename().native();
    File input = openToRead(name, [&] { return File::openForReading(source); });
    std::vector<CopyTarget> outputs;
    for (const URL& target : targets) {
        try {
            outputs.push_back({File::create(target), target});
        } catch (const SystemError&) {
            throw OffloadError(OffloadError::WriteFailed{target, "could not create file"});
        }
    }
    const AlignedBuffer memory(bufferSize);
    WorkerThread worker;
    return copyBytes(input, name, outputs, algorithm, memory.bytes().first(bufferSize), worker,
                     isCancelled)
        .hash;
}

std::string OffloadEngine::hashFile(const URL& file, HashAlgorithm algorithm) const {
    File opened = openToRead(file.filename().native(), [&] { return File::openForReading(file); });
    const DriveCache cache(opened.descriptor());
    const AlignedBuffer memory(bufferSize);
    WorkerThread worker;
    DeviceReader reader(std::move(opened), cache, memory.bytes(), worker);
    return hashOf(reader, algorithm);
}

void OffloadEngine::applyMetadata(const MediaFile& file, const std::vector<URL>& targets) {
    if (!file.modificationDate) return;
    for (const URL& target : targets) {
        try {
            FileSystem::setModificationDate(target, *file.modificationDate);
        } catch (const SystemError&) {
            // A date is a nicety: what is proved is the content.
        }
    }
}

void OffloadEngine::throwIfCancelled() const {
    if (isCancelled()) throw OffloadError(OffloadError::Cancelled{});
}

}  // namespace ReelCore
