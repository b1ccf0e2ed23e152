#include "ReelCore/Offload/OffloadRun.h"

#include "ReelCore/Models/Version.h"
#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Reports/MHLWriter.h"

#include <exception>
#include <utility>

#include <fmt/format.h>

namespace ReelCore {

namespace {

using HashList = DestinationState::HashList;

std::string nameOf(const std::string& relativePath) {
    return relativePath.substr(relativePath.rfind('/') + 1);
}

void requireNoNesting(const std::vector<ReelFolder>& reels) {
    if (reels.size() < 2) return;
    std::vector<FileLocation> places;
    for (const ReelFolder& reel : reels) places.emplace_back(reel.path());
    for (std::size_t inner = 0; inner < reels.size(); ++inner) {
        for (const FileLocation& outer : places) {
            const auto way = places[inner].pathWithin(outer);
            if (!way || *way == ".") continue;
            throw OffloadError(OffloadError::DestinationNotWritable{
                reels[inner].destination(),
                "The reel folder would lie in the reel folder of another destination."});
        }
    }
}

/// The first destination whose reel folder is the one of destination `index`.
std::size_t firstWithSameFolder(const std::vector<ReelFolder>& reels, std::size_t index) {
    std::size_t first = 0;
    while (reels[first].identity() != reels[index].identity()) ++first;
    return first;
}

void unprove(DestinationResult& copy, const std::string& sentence) {
    if (!copy.matches) return;
    copy.matches = false;
    copy.error = sentence;
    copy.proved.reset();
}

/// Where numbers do not last, a later file of the card may have taken the place of an earlier one
/// unseen: then two paths lead to one file now, or to another one than was proved.
void unproveReplaced(std::vector<FileVerification>& files, std::size_t drive) {
    std::unordered_set<FileIdentity, FileIdentity::Hash> seen;
    for (FileVerification& file : files) {
        DestinationResult& copy = file.destinations[drive];
        const auto identity = FileSystem::identity(copy.writtenURL);
        const bool isAlone = identity && seen.insert(*identity).second;
        if (isAlone && FileSystem::stamp(copy.writtenURL) == copy.proved) continue;
        unprove(copy, "another file of the card has this name here");
    }
}

}  // namespace

OffloadRun::OffloadRun(const OffloadRequest& request, std::size_t bufferSize,
                       const std::function<bool()>& isCancelled)
    : request_(request),
      bufferSize_(bufferSize),
      isCancelled_(isCancelled),
      card_(SourceScanner::hold(request.source), MissingFolders::refuse),
      medium_(Medium::of(card_.root().identity().device)),
      memory_(bufferSize) {}

void OffloadRun::makeReels() {
    const FileLocation source(request_.source);
    for (const URL& destination : request_.destinations) {
        reels_.emplace_back(source, destination, request_.reelName);
        reels_.back().requireOutsideSource();
    }
    requireNoNesting(reels_);
    for (std::size_t i = 0; i < reels_.size(); ++i) {
        reels_[i].create();
        if (firstWithSameFolder(reels_, i) == i) reels_[i].lock();
    }
}

void OffloadRun::requireCard(const std::string& relativePath) const {
    if (card_.root().isStillThere()) return;
    const bool another = FileSystem::exists(request_.source / relativePath);
    throw OffloadError(OffloadError::ReadFailed{
        nameOf(relativePath),
        another ? "another card stands in the place of this one" : "could not open"});
}

void OffloadRun::requireMedium(const std::string& relativePath) const {
    requireCard(relativePath);
    const Medium now = Medium::of(card_.root().identity().device);
    if (now == medium_) return;
    throw OffloadError(OffloadError::ReadFailed{
        nameOf(relativePath), now.size.empty() ? "the card is no longer there"
                                               : "another card stands in the place of this one"});
}

FileVerification OffloadRun::copy(MediaFile file) {
    makeParents(file.relativePath);
    File source = openSource(file.relativePath);
    requireCard(file.relativePath);
    std::vector<CopyTarget> targets = createTargets(file.relativePath);
    const CopiedBytes copied = copyBytes(source, file.filename(), targets, request_.algorithm,
                                         memory_.bytes().first(bufferSize_), worker_, isCancelled_);
    if (copied.count < file.size) {
        throw OffloadError(OffloadError::ReadFailed{
            file.filename(),
            fmt::format("it ended after {} of {} bytes", copied.count, file.size)});
    }
    file.size = copied.count;
    targets.clear();
    setDates(file);
    return {std::move(file), copied.hash, {}};
}

DestinationResult OffloadRun::readBack(std::size_t drive, const FileVerification& copied) {
    DestinationResult result;
    result.destination = reels_[drive].destination();
    result.writtenURL = reels_[drive].targetFor(copied.file.relativePath);
    try {
        proveCopy(drive, copied, result);
    } catch (const std::exception& error) {
        result.error = error.what();
    }
    return result;
}

void OffloadRun::flush(std::vector<FileVerification>& files) const {
    for (std::size_t drive = 0; drive < reels_.size(); ++drive) {
        try {
            reels_[drive].flush();
        } catch (const SystemError& error) {
            for (FileVerification& file : files) {
                unprove(file.destinations[drive], error.sentence());
            }
        }
        if (reels_[drive].numbersFilesAnew()) unproveReplaced(files, drive);
    }
}

std::vector<DestinationState> OffloadRun::writeHashLists(const OffloadResult& result) const {
    std::vector<DestinationState> states;
    for (std::size_t drive = 0; drive < reels_.size(); ++drive) {
        const std::size_t first = firstWithSameFolder(reels_, drive);
        const HashList list =
            first < drive ? states[first].hashList : writeHashList(reels_[drive], result);
        states.push_back({reels_[drive].cache().canBePassed(), list});
    }
    return states;
}

void OffloadRun::makeParents(const std::string& relativePath) {
    parents_.clear();
    for (ReelFolder& reel : reels_) parents_.push_back(&reel.parentFor(relativePath));
}

File OffloadRun::openSource(const std::string& relativePath) {
    const std::string name = nameOf(relativePath);
    return openToRead(name,
                      [&] { return File::openForReading(card_.parentOf(relativePath), name); });
}

// All are looked at before the first is made, so that a refusal leaves no file behind.
std::vector<CopyTarget> OffloadRun::createTargets(const std::string& relativePath) const {
    for (std::size_t drive = 0; drive < reels_.size(); ++drive) {
        requireReplaceable(drive, relativePath);
    }
    std::vector<CopyTarget> targets;
    for (std::size_t drive = 0; drive < reels_.size(); ++drive) {
        const URL url = reels_[drive].targetFor(relativePath);
        try {
            targets.push_back({File::create(*parents_[drive], nameOf(relativePath)), url});
        } catch (const SystemError&) {
            throw OffloadError(OffloadError::WriteFailed{url, "could not create file"});
        }
    }
    return targets;
}

bool OffloadRun::isProved(const ReelFolder& reel, const HeldFolder::Entry& entry) const {
    return proved_.contains(entry.identity) || reel.wasMadeHere(entry);
}

// A drive may take two names of the card for one, and show one folder at two places.
void OffloadRun::requireReplaceable(std::size_t drive, const std::string& relativePath) const {
    const auto refuse = [&](const char* why) {
        throw OffloadError(OffloadError::WriteFailed{reels_[drive].targetFor(relativePath), why});
    };
    try {
        const auto there = parents_[drive]->find(nameOf(relativePath));
        if (!there || !isProved(reels_[drive], *there)) return;
    } catch (const SystemError&) {
        refuse("could not create file");
    }
    refuse("another file of the card has this name here");
}

void OffloadRun::setDates(const MediaFile& file) const {
    if (!file.modificationDate) return;
    for (const HeldFolder* parent : parents_) {
        try {
            parent->setModificationDate(file.filename(), *file.modificationDate);
        } catch (const SystemError&) {
            // A date is a nicety: what is proved is the content.
        }
    }
}

void OffloadRun::proveCopy(std::size_t drive, const FileVerification& copied,
                           DestinationResult& result) {
    const std::string name = copied.file.filename();
    // Where a drive has gone, a file of that name on the disk below would prove nothing.
    if (!reels_[drive].isStillThere()) {
        throw OffloadError(OffloadError::ReadFailed{name, "the drive is no longer there"});
    }
    DeviceReader reader(
        openToRead(name, [&] { return File::openForReading(*parents_[drive], name); }),
        reels_[drive].cache(), memory_.bytes(), worker_);
    // As it stands before it is read: whoever writes to it meanwhile changes its date.
    const auto stamp = FileSystem::stamp(reader.file().descriptor());
    const auto identity = FileSystem::identity(reader.file().descriptor());
    result.readBackHash = hashOf(reader, request_.algorithm);
    if (result.readBackHash != copied.sourceHash) return;
    if (identity) proved_.insert(*identity);
    result.proved = stamp;
    result.matches = true;
}

HashList OffloadRun::writeHashList(const ReelFolder& reel, const OffloadResult& result) const {
    try {
        if (!reel.isStillThere()) return HashList::notWritten;
        // A reel offloaded once more brings its old list along.
        const auto there = HeldFolder(reel.path()).find(MHLWriter::listName(request_.reelName));
        if (there && isProved(reel, *there)) return HashList::cardHasItsName;
        const MHLWriter writer{std::string(toolName), std::string(ReelCoreVersion)};
        writer.write(result, reel.path());
        return HashList::written;
    } catch (const std::exception&) {
        // A hash list is a nicety: the proof itself is in the result.
        return HashList::notWritten;
    }
}

std::string hashOf(DeviceReader& reader, HashAlgorithm algorithm) {
    const auto hasher = makeHasher(algorithm);
    for (auto block = reader.next(); !block.empty(); block = reader.next()) hasher->update(block);
    return hasher->finalizeHex();
}

File openToRead(const std::string& name, const std::function<File()>& open) {
    try {
        return open();
    } catch (const SystemError&) {
        throw OffloadError(OffloadError::ReadFailed{name, "could not open"});
    }
}

}  // namespace ReelCore
