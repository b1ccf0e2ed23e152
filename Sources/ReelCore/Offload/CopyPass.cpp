#include "ReelCore/Offload/CopyPass.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/SystemError.h"

namespace ReelCore {

namespace {

/// How much of a long file may be on its way to one drive: enough to keep the drive busy while the
/// next block is read, little enough that the pages written to are the same few over and over.
constexpr std::int64_t writeBehind = 16 << 20;

std::span<const std::byte> readBlock(File& source, const std::string& name,
                                     std::span<std::byte> buffer) {
    try {
        return buffer.first(source.read(buffer));
    } catch (const SystemError& error) {
        throw OffloadError(OffloadError::ReadFailed{name, error.sentence()});
    }
}

void writeBlock(CopyTarget& target, std::span<const std::byte> block, std::int64_t position,
                bool fileIsLong) {
    try {
        target.file.write(block);
        if (!fileIsLong) return;
        const auto length = static_cast<std::int64_t>(block.size());
        target.file.beginWriteback(position, length);
        if (position >= writeBehind) target.file.finishWriteback(position - writeBehind, length);
    } catch (const SystemError& error) {
        throw OffloadError(OffloadError::WriteFailed{target.url, error.sentence()});
    }
}

/// What the worker does ends before what it works on.
struct FinishedInTheEnd {
    WorkerThread& worker;
    ~FinishedInTheEnd() { worker.finish(); }
};

}  // namespace

CopiedBytes copyBytes(File& source, const std::string& name, std::vector<CopyTarget>& targets,
                      HashAlgorithm algorithm, std::span<std::byte> buffer, WorkerThread& worker,
                      const std::function<bool()>& isCancelled) {
    const auto hasher = makeHasher(algorithm);
    const FinishedInTheEnd hashing{worker};
    source.expectSequentialRead();
    for (std::int64_t position = 0;;) {
        if (isCancelled()) throw OffloadError(OffloadError::Cancelled{});
        const auto block = readBlock(source, name, buffer);
        if (block.empty()) return {hasher->finalizeHex(), position};
        // A long file goes to its drives while it is read on, and does not fill the cache.
        const bool isLong = block.size() == buffer.size();
        if (isLong) {
            worker.begin([&hasher, block] { hasher->update(block); });
        } else {
            hasher->update(block);
        }
        for (CopyTarget& target : targets) writeBlock(target, block, position, isLong);
        worker.finish();
        const auto length = static_cast<std::int64_t>(block.size());
        if (isLong) source.dropFromCache(position, length);
        position += length;
    }
}

}  // namespace ReelCore
