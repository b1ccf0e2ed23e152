#pragma once

#include "ReelCore/Platform/AlignedBuffer.h"
#include "ReelCore/Platform/File.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace ReelCore {

/// Reads a file from its device, past the operating system's file cache, so that what comes back
/// is what the drive holds and not what a write left in memory.
///
/// The file is first flushed, and its cached pages are let go. Then it is read by direct I/O where
/// the file system offers that; elsewhere by ordinary reads whose pages are let go again at the
/// end. Either way the cache is no fuller afterwards than it was before. A file system that has no
/// device (one in memory) has nothing to bypass and is read as it is.
///
/// One thread at a time; owns its descriptor and one buffer.
class DeviceReader {
public:
    /// `path` must be a regular file. Blocks are about `blockSize` bytes long, for a file that is
    /// shorter about its length.
    /// Throws SystemError if the file can't be opened.
    DeviceReader(const URL& path, std::size_t blockSize);
    ~DeviceReader();

    DeviceReader(const DeviceReader&) = delete;
    DeviceReader& operator=(const DeviceReader&) = delete;

    /// The next bytes of the file, empty at its end. They stand in this reader's buffer until the
    /// next call. Throws SystemError if the flush (at the first call) or a read fails.
    std::span<const std::byte> next();

private:
    void begin();
    void setDirect(bool direct);

    File file_;
    AlignedBuffer buffer_;
    std::int64_t position_ = 0;
    bool begun_ = false;
    bool direct_ = false;
};

}  // namespace ReelCore
