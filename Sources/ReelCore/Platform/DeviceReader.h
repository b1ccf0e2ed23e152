#pragma once

#include "ReelCore/Platform/DriveCache.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/WorkerThread.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace ReelCore {

/// Reads a file from its drive, past the memory in between (DriveCache), so that what comes back is
/// what the drive holds and not what a write left in memory.
///
/// It is read by direct I/O where the file system offers that; elsewhere by ordinary reads whose
/// pages are let go again at the end. Either way the cache is no fuller afterwards than it was
/// before. A file system that has no drive (one in memory) has nothing to pass and is read as it
/// is.
///
/// While a block is worked on, the worker reads the next one. One thread at a time; owns the file,
/// borrows the rest.
class DeviceReader {
public:
    /// Blocks are about half as long as `buffer`, for a file that is shorter about its length. For
    /// direct I/O the buffer begins at a page (AlignedBuffer); one of less than two pages is read
    /// into as a whole, and nothing ahead. Throws SystemError if the file's size can't be asked.
    DeviceReader(File file, const DriveCache& cache, std::span<std::byte> buffer,
                 WorkerThread& worker);

    /// Waits for the block that is being read.
    ~DeviceReader();

    DeviceReader(const DeviceReader&) = delete;
    DeviceReader& operator=(const DeviceReader&) = delete;

    /// The next bytes of the file, empty at its end. They stand in the buffer until the next call.
    /// Throws SystemError if what was written to the file is not on the drive (at the first call),
    /// or if a read fails.
    std::span<const std::byte> next();

    const File& file() const { return file_; }

private:
    void begin();
    void setDirect(bool direct);
    void readBlock();

    File file_;
    const DriveCache& cache_;
    WorkerThread& worker_;
    std::span<std::byte> block_;  ///< What is read into next.
    std::span<std::byte> other_;  ///< What was read into last; empty if nothing is read ahead.
    std::int64_t position_ = 0;
    std::int64_t count_ = 0;  ///< Of the bytes read into `block_`; below 0 after an error.
    int error_ = 0;
    bool begun_ = false;
    bool direct_ = false;
    bool isReadAhead_ = false;
};

}  // namespace ReelCore
