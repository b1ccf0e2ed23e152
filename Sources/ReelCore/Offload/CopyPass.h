#pragma once

#include "ReelCore/Hashing/HashAlgorithm.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/URL.h"
#include "ReelCore/Platform/WorkerThread.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace ReelCore {

/// A file that is being written, and what failures call it.
struct CopyTarget {
    File file;
    URL url;
};

/// What one read pass over a file gave.
struct CopiedBytes {
    std::string hash;  ///< Of the bytes read, lowercase hexadecimal.
    std::int64_t count = 0;
};

/// Reads `source` to its end, once, in blocks of the size of `buffer`, and writes each block to all
/// targets in order. `name` is what failures call the source. Reads and writes happen on this
/// thread; the worker hashes the blocks of long files while they are written, and their pages leave
/// the file cache again. Throws OffloadError::ReadFailed,
/// WriteFailed, which ends the copy to all targets, or Cancelled, asked for before each block.
CopiedBytes copyBytes(File& source, const std::string& name, std::vector<CopyTarget>& targets,
                      HashAlgorithm algorithm, std::span<std::byte> buffer, WorkerThread& worker,
                      const std::function<bool()>& isCancelled);

}  // namespace ReelCore
