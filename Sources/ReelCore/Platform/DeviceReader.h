#pragma once

#include "ReelCore/Platform/DriveCache.h"
#include "ReelCore/Platform/File.h"

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
/// One thread at a time; owns the file, borrows cache and buffer.
class DeviceReader {
public:
    /// Blocks are about as long as `buffer`, for a file that is shorter about its length. For
    /// direct I/O the buffer begins at a page and is whole pages long (AlignedBuffer). Throws
    /// SystemError if the file's size can't be asked.
    DeviceReader(File file, const DriveCache& cache, std::span<std::byte> buffer);
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

    File file_;
    const DriveCache& cache_;
    std::span<std::byte> buffer_;
    std::int64_t position_ = 0;
    bool begun_ = false;
    bool direct_ = false;
};

}  // namespace ReelCore
