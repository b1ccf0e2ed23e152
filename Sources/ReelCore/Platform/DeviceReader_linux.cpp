#include "ReelCore/Platform/AlignedBuffer.h"
#include "ReelCore/Platform/DeviceReader.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace ReelCore {

namespace {

constexpr std::size_t page = AlignedBuffer::alignment;

/// No block need be longer than the file. A direct read that asks for more is right as well, but
/// has the kernel fill the rest of the buffer with zeros, which for a small file takes longer than
/// the read itself.
std::size_t blockSize(const File& file, std::span<std::byte> buffer) {
    if (buffer.size() < 2 * page) return buffer.size();
    const auto size = static_cast<std::size_t>(file.size());
    const std::size_t half = buffer.size() / 2 / page * page;
    return size < half ? (size / page + 1) * page : half;
}

}  // namespace

DeviceReader::DeviceReader(File file, const DriveCache& cache, std::span<std::byte> buffer,
                           WorkerThread& worker)
    : file_(std::move(file)),
      cache_(cache),
      worker_(worker),
      block_(buffer.first(blockSize(file_, buffer))),
      other_(buffer.subspan(block_.size())) {
    if (other_.size() > block_.size()) other_ = other_.first(block_.size());
}

DeviceReader::~DeviceReader() {
    worker_.finish();
    file_.dropFromCache(0, 0);
}

// Direct I/O alone is not trusted to pass the cache: some file systems quietly serve it with
// ordinary reads (for compressed or journalled files). With the pages gone, these meet the drive.
void DeviceReader::begin() {
    cache_.pass(file_);
    setDirect(true);
    begun_ = true;
}

void DeviceReader::setDirect(bool direct) {
    const int flags = ::fcntl(file_.descriptor(), F_GETFL);
    const int wanted = direct ? flags | O_DIRECT : flags & ~O_DIRECT;
    if (::fcntl(file_.descriptor(), F_SETFL, wanted) == 0) direct_ = direct;
}

void DeviceReader::readBlock() {
    for (;;) {
        count_ = ::pread(file_.descriptor(), block_.data(), block_.size(), position_);
        if (count_ >= 0) return;
        error_ = errno;
        // Direct I/O refuses what is not aligned, as after a short read in the middle of a file.
        if (error_ == EINVAL && direct_) {
            setDirect(false);
            direct_ = false;
        } else if (error_ != EINTR) {
            return;
        }
    }
}

std::span<const std::byte> DeviceReader::next() {
    if (!begun_) begin();
    if (std::exchange(isReadAhead_, false)) {
        worker_.finish();
    } else {
        readBlock();
    }
    if (count_ < 0) throw SystemError(error_);
    const auto block = block_.first(static_cast<std::size_t>(count_));
    position_ += count_;
    // A block that is not full is mostly the last one.
    if (block.size() < block_.size() || other_.empty()) return block;
    std::swap(block_, other_);
    isReadAhead_ = true;
    worker_.begin([this] { readBlock(); });
    return block;
}

}  // namespace ReelCore
