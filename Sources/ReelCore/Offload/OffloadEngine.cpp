#include "ReelCore/Offload/OffloadEngine.h"

#include "ReelCore/Models/Version.h"
#include "ReelCore/Offload/AlikePaths.h"
#include "ReelCore/Offload/NestedReels.h"
#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Offload/ReelFolder.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/AlignedBuffer.h"
#include "ReelCore/Platform/DeviceReader.h"
#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Reports/MHLWriter.h"

#include <algorithm>
#include <exception>
#include <span>
#include <utility>

namespace ReelCore {

namespace {

using Phase = OffloadProgress::Phase;

// All are looked at before the first is made, so that a refusal leaves no folder behind.
std::vector<ReelFolder> makeReelFolders(const OffloadRequest& request,
                                        const std::vector<MediaFile>& files) {
    const FileLocation source(request.source);
    std::vector<ReelFolder> reels;
    for (const URL& destination : request.destinations) {
        reels.emplace_back(source, destination, request.reelName);
        reels.back().requireOutsideSource();
    }
    requireNoClash(reels, files, MHLWriter::listName(request.reelName));
    for (ReelFolder& reel : reels) reel.create();
    return reels;
}

/// The place for one file in every reel folder, whose own folder is there.
std::vector<URL> prepareTargets(std::vector<ReelFolder>& reels, const std::string& relativePath) {
    std::vector<URL> targets;
    for (ReelFolder& reel : reels) {
        targets.push_back(reel.targetFor(relativePath));
        reel.prepareParent(targets.back());
    }
    return targets;
}

/// A drive may take two names of the card for one. The copy of the earlier file has been proved,
/// and the later one would replace it.
void requireNotThere(const FileVerification& earlier, const std::vector<URL>& targets) {
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const auto there = FileSystem::identity(targets[i]);
        if (!there || there != FileSystem::identity(earlier.destinations[i].writtenURL)) continue;
        throw OffloadError(
            OffloadError::WriteFailed{targets[i], "another file of the card has this name here"});
    }
}

/// Nothing is proved on a drive that lost what was written to it. Where a copy has failed already,
/// the result tells it, and the other drives keep theirs.
void makeDurable(const OffloadResult& result, const std::vector<ReelFolder>& reels) {
    for (std::size_t i = 0; i < reels.size(); ++i) {
        const bool allMatch = std::ranges::all_of(
            result.files, [&](const FileVerification& one) { return one.destinations[i].matches; });
        if (allMatch) reels[i].flush();
    }
}

/// True if a copy that was proved stands at `path`. It could only stand at the top of its reel.
bool isProvedCopy(const URL& path, const OffloadResult& result) {
    const auto wanted = FileSystem::identity(path);
    if (!wanted) return false;
    const auto isIt = [&](const DestinationResult& copy) {
        return copy.matches && FileSystem::identity(copy.writtenURL) == wanted;
    };
    return std::ranges::any_of(result.files, [&](const FileVerification& one) {
        const bool atTheTop = one.file.relativePath.find('/') == std::string::npos;
        return atTheTop && std::ranges::any_of(one.destinations, isIt);
    });
}

void writeHashLists(const OffloadResult& result, const std::vector<ReelFolder>& reels) {
    const MHLWriter writer{std::string(toolName), std::string(ReelCoreVersion)};
    for (const ReelFolder& reel : reels) {
        if (!reel.isStillThere()) continue;
        try {
            // A reel offloaded once more brings its old list along.
            const URL list = reel.path() / MHLWriter::listName(result.request.reelName);
            if (!isProvedCopy(list, result)) writer.write(result, reel.path());
        } catch (const std::exception&) {
            // A hash list is a nicety: the proof itself is in the result.
        }
    }
}

File openSource(const URL& source) {
    try {
        return File::openForReading(source);
    } catch (const SystemError&) {
        throw OffloadError(OffloadError::ReadFailed{source.filename().native(), "could not open"});
    }
}

File createTarget(const URL& target) {
    try {
        return File::create(target);
    } catch (const SystemError&) {
        throw OffloadError(OffloadError::WriteFailed{target, "could not create file"});
    }
}

std::span<const std::byte> readBlock(File& source, const URL& url, std::span<std::byte> buffer) {
    try {
        return buffer.first(source.read(buffer));
    } catch (const SystemError& error) {
        throw OffloadError(OffloadError::ReadFailed{url.filename().native(), error.sentence()});
    }
}

/// How much of a long file may be on its way to one drive: enough to keep the drive busy while the
/// next block is read, little enough that the pages written to are the same few over and over.
constexpr std::int64_t writeBehind = 16 << 20;

void writeBlock(File& target, const URL& url, std::span<const std::byte> block,
                std::int64_t position, bool fileIsLong) {
    try {
        target.write(block);
        if (!fileIsLong) return;
        const auto length = static_cast<std::int64_t>(block.size());
        target.beginWriteback(position, length);
        if (position >= writeBehind) target.finishWriteback(position - writeBehind, length);
    } catch (const SystemError& error) {
        throw OffloadError(OffloadError::WriteFailed{url, error.sentence()});
    }
}

}  // namespace

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
    SourceScanner::ScanResult scan = SourceScanner::scan(request.source);
    OffloadProgress standing{Phase::copying, {}, 0, scan.fileCount(), 0, scan.totalBytes()};
    std::vector<ReelFolder> reels = makeReelFolders(request, scan.files);
    const auto report = [&](Phase phase) {
        standing.phase = phase;
        progress(standing);
    };

    AlikePaths seen;
    OffloadResult result{request, scan.cameraFormat, {}, startedAt, {}};
    result.files.reserve(scan.files.size());
    for (MediaFile& file : scan.files) {
        throwIfCancelled();
        standing.currentFile = file.relativePath;
        report(Phase::copying);
        const std::vector<URL> targets = prepareTargets(reels, file.relativePath);
        for (const std::size_t earlier : seen.add(file.relativePath)) {
            requireNotThere(result.files[earlier], targets);
        }
        const URL source = request.source / file.relativePath;
        FileVerification verification{file, copy(source, targets, request.algorithm), {}};
        applyMetadata(file, targets);
        report(Phase::verifying);
        for (std::size_t i = 0; i < targets.size(); ++i) {
            throwIfCancelled();
            verification.destinations.push_back(
                readBack(reels[i], targets[i], request.algorithm, verification.sourceHash));
        }
        standing.filesCompleted += 1;
        standing.bytesCompleted = checkedAdd(standing.bytesCompleted, file.size);
        result.files.push_back(std::move(verification));
    }

    makeDurable(result, reels);
    standing.currentFile.reset();
    report(Phase::writingReport);
    result.finishedAt = now();
    writeHashLists(result, reels);
    report(Phase::done);
    return result;
}

std::string OffloadEngine::copy(const URL& source, const std::vector<URL>& targets,
                                HashAlgorithm algorithm) const {
    File input = openSource(source);
    std::vector<File> outputs;
    for (const URL& target : targets) outputs.push_back(createTarget(target));
    const auto hasher = makeHasher(algorithm);
    const AlignedBuffer memory(bufferSize);
    const std::span<std::byte> buffer = memory.bytes().first(bufferSize);
    input.expectSequentialRead();
    for (std::int64_t position = 0;;) {
        throwIfCancelled();
        const auto block = readBlock(input, source, buffer);
        if (block.empty()) return hasher->finalizeHex();
        hasher->update(block);
        // A long file goes to its drives while it is read on, and does not fill the cache.
        const bool isLong = block.size() == buffer.size();
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            writeBlock(outputs[i], targets[i], block, position, isLong);
        }
        const auto length = static_cast<std::int64_t>(block.size());
        if (isLong) input.dropFromCache(position, length);
        position += length;
    }
}

std::string OffloadEngine::hashFile(const URL& file, HashAlgorithm algorithm) const {
    const auto reader = [&] {
        try {
            return std::make_unique<DeviceReader>(file, bufferSize);
        } catch (const SystemError&) {
            throw OffloadError(
                OffloadError::ReadFailed{file.filename().native(), "could not open"});
        }
    }();
    const auto hasher = makeHasher(algorithm);
    for (auto block = reader->next(); !block.empty(); block = reader->next()) {
        hasher->update(block);
    }
    return hasher->finalizeHex();
}

DestinationResult OffloadEngine::readBack(const ReelFolder& reel, const URL& target,
                                          HashAlgorithm algorithm,
                                          const std::string& sourceHash) const {
    try {
        // Where a drive has gone, a file of that name on the disk below would prove nothing.
        if (!reel.isStillThere()) {
            throw OffloadError(OffloadError::ReadFailed{target.filename().native(),
                                                        "the drive is no longer there"});
        }
        const std::string hash = hashFile(target, algorithm);
        return {reel.destination(), target, hash, hash == sourceHash, std::nullopt};
    } catch (const std::exception& error) {
        return {reel.destination(), target, std::nullopt, false, error.what()};
    }
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
