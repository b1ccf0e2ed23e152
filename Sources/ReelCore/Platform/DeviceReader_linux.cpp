#include "ReelCore/Platform/AlignedBuffer.h"
#include "ReelCore/Platform/DeviceReader.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace ReelCore {

namespace {

/// No block need be longer than the file. A direct read that asks for more is right as well, but
/// has the kernel fill the rest of the buffer with zeros, which for a small file takes longer than
/// the read itself.
std::span<std::byte> upToSizeOf(const File& file, std::span<std::byte> buffer) {
    constexpr std::size_t page = AlignedBuffer::alignment;
    const auto size = static_cast<std::size_t>(file.size());
    const std::size_t pages = size < buffer.size() ? (size / page + 1) * page : buffer.size();
    return buffer.first(std::min(buffer.size(), pages));
}

}  // namespace

DeviceReader::DeviceReader(File file, const DriveCache& cache, std::span<std::byte> buffer)
    : file_(std::move(file)), cache_(cache), buffer_(upToSizeOf(file_, buffer)) {}

DeviceReader::~DeviceReader() {
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

std::span<const std::byte> DeviceReader::next() {
    if (!begun_) begin();
    const auto read = [&] {
        return ::pread(file_.descriptor(), buffer_.data(), buffer_.size(), position_);
    };
    ssize_t count = read();
    while (count < 0) {
        // Direct I/O refuses what is not aligned, as after a short read in the middle of a file.
        if (errno == EINVAL && direct_) {
            setDirect(false);
            direct_ = false;
        } else if (errno != EINTR) {
            throwSystemError();
        }
        count = read();
    }
    position_ += count;
    return buffer_.first(static_cast<std::size_t>(count));
}

}  // namespace ReelCore
