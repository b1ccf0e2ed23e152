#pragma once

#include "ReelCore/Offload/CopyPass.h"
#include "ReelCore/Offload/HeldTree.h"
#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/ReelFolder.h"
#include "ReelCore/Platform/AlignedBuffer.h"
#include "ReelCore/Platform/DeviceReader.h"
#include "ReelCore/Platform/HeldCard.h"
#include "ReelCore/Platform/WorkerThread.h"

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

namespace ReelCore {

/// The card and the drives of one run, held from its beginning to its end, and what has been proved
/// on them so far. The steps are called file by file, in order; OffloadEngine::run says which. One
/// thread.
class OffloadRun {
public:
    /// Holds the card. `request` and `isCancelled` outlive
    /// this object. Throws OffloadError::SourceNotFound, or SystemError if this process has no
    /// means left.
    OffloadRun(const OffloadRequest& request, std::size_t bufferSize,
               const std::function<bool()>& isCancelled);

    /// Makes and locks the reel folders of all drives. All are looked at before the first is made,
    /// so that a refusal leaves no folder behind. Throws OffloadError::DestinationNotWritable.
    void makeReels();

    std::size_t driveCount() const { return reels_.size(); }

    /// Throws OffloadError::ReadFailed if the card has gone or another one stands in its place.
    void requireCard(const std::string& relativePath) const;

    /// The same after the last file, which was `relativePath`; the medium in the reader must be the
    /// one that was there at the beginning, too.
    void requireMedium(const std::string& relativePath) const;

    /// Copies a file to all drives; what it returns has no destinations yet. Throws as
    /// OffloadEngine::run tells.
    FileVerification copy(MediaFile file);

    /// Reads the copy on one drive back; to be called before the next copy.
    DestinationResult readBack(std::size_t drive, const FileVerification& copied);

    /// Flushes all drives. Nothing is proved on a drive that lost what was written to it: its
    /// copies in `files` are unproved.
    void flush(std::vector<FileVerification>& files) const;

    /// Leaves a hash list on each drive, where that does not cost a proved copy.
    std::vector<DestinationState> writeHashLists(const OffloadResult& result) const;

private:
    void makeParents(const std::string& relativePath);
    File openSource(const std::string& relativePath);
    std::vector<CopyTarget> createTargets(const std::string& relativePath) const;
    void requireReplaceable(std::size_t drive, const std::string& relativePath) const;
    bool isProved(const ReelFolder& reel, const HeldFolder::Entry& entry) const;
    void setDates(const MediaFile& file) const;
    void proveCopy(std::size_t drive, const FileVerification& copied, DestinationResult& result);
    DestinationState::HashList writeHashList(const ReelFolder& reel,
                                             const OffloadResult& result) const;

    const OffloadRequest& request_;
    const std::size_t bufferSize_;
    const std::function<bool()>& isCancelled_;
    HeldTree card_;
    Medium medium_;
    AlignedBuffer memory_;
    WorkerThread worker_;
    std::vector<ReelFolder> reels_;
    std::vector<const HeldFolder*> parents_;  ///< Of the current file, one a drive.
    std::unordered_set<FileIdentity, FileIdentity::Hash> proved_;
};

/// The checksum of all that a reader gives. Throws what it throws.
std::string hashOf(DeviceReader& reader, HashAlgorithm algorithm);

/// Opens a file by `open`, whose SystemError becomes OffloadError::ReadFailed for `name`.
File openToRead(const std::string& name, const std::function<File()>& open);

}  // namespace ReelCore
