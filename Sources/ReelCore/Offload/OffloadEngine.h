#pragma once

#include "ReelCore/Offload/OffloadTypes.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace ReelCore {

/// Copies a card to several drives in one read pass, then proves every copy: each file is read
/// back from its device, past the file cache, and its checksum compared with the source's.
/// Nothing counts as copied until that has matched.
///
/// The source is only ever read; not even its access times change where the system allows that.
/// One run at a time an engine; everything happens on the thread that calls, in order. Only blocks
/// of long files are read ahead, or hashed while they are written, on a thread that the run owns.
class OffloadEngine {
public:
    using Progress = std::function<void(const OffloadProgress&)>;

    /// Files are read and written in blocks of `bufferSize` bytes (at least 1; less is a fatal
    /// fault, and so is an empty `isCancelled`). `isCancelled` is asked on the running thread and
    /// must be safe to call while another thread changes what it looks at.
    OffloadEngine(std::size_t bufferSize, std::function<bool()> isCancelled);

    OffloadEngine(const OffloadEngine&) = delete;
    OffloadEngine& operator=(const OffloadEngine&) = delete;

    /// Runs a whole offload: scan, reel folders, then for each file copy and read-back, and at the
    /// end, once every drive has been flushed, a hash list in each reel folder. A read-back that
    /// fails or differs is recorded in the result and never repaired; where the last flush of a
    /// drive fails, all its copies count as unproved. A hash list that can't be written is left
    /// out, and so is one that would replace a proved copy of the card's own file of that name: the
    /// result tells both. Card and reel folders are held for the whole run, and a reel folder takes
    /// no second run. Every other failure ends the run:
    ///
    /// - OffloadError::NoDestinations, before anything else;
    /// - OffloadError::SourceNotFound, or the scan's SystemError;
    /// - OffloadError::DestinationNotWritable if a reel folder can't be made or another run is in
    ///   it, if it lies in another reel folder, or if it, or a folder below it that a copy would go
    ///   to, lies in the source, whatever links or mounts lead there;
    /// - SystemError if a folder for a file can't be made on a drive, or a link stands there;
    /// - OffloadError::ReadFailed, also if another card stands in the place of this one, or if a
    ///   file ends before the size that the scan gave. One that has grown is copied whole, and the
    ///   result has its size as copied;
    /// - OffloadError::WriteFailed, also if the copy would replace one that this run has proved;
    /// - OffloadError::Cancelled, at the next check before a file, a block or a read-back.
    ///
    /// After a failure there is no result and no hash list; what was copied stays, a file that was
    /// being copied under its final name. `progress` is called on this thread, at phase changes
    /// and twice a file, and must return quickly; an empty one is a fatal fault.
    OffloadResult run(const OffloadRequest& request, const Progress& progress);

    /// Copies one file to all `targets` in one read pass and returns the checksum of the bytes
    /// read. Old files at the targets are replaced. A failure on one target ends the copy to all.
    /// Throws OffloadError::ReadFailed, WriteFailed or Cancelled.
    std::string copy(const URL& source, const std::vector<URL>& targets,
                     HashAlgorithm algorithm) const;

    /// The checksum of a file as its device holds it. Does not look at `isCancelled`. Throws
    /// OffloadError::ReadFailed if it can't be opened, SystemError if it can't be flushed or read.
    std::string hashFile(const URL& file, HashAlgorithm algorithm) const;

    /// Gives the targets the file's modification date, where it has one. Failures are ignored.
    static void applyMetadata(const MediaFile& file, const std::vector<URL>& targets);

    const std::size_t bufferSize;
    std::function<bool()> isCancelled;

private:
    void throwIfCancelled() const;
};

}  // namespace ReelCore
