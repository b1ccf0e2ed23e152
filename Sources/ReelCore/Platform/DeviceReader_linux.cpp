#include "ReelCore/Platform/DeviceReader.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ReelCore {

namespace {

/// No block need be longer than the file. A direct read that asks for more is right as well, but
/// has the kernel fill the rest of the buffer with zeros, which for a small file takes longer than
/// the read itself.
std::size_t blockFor(const File& file, std::size_t blockSize) {
    struct stat status {};
    if (::fstat(file.descriptor(), &status) != 0) throwSystemError();
    return std::min(blockSize, static_cast<std::size_t>(status.st_size));
}

}  // namespace

DeviceReader::DeviceReader(const URL& path, std::size_t blockSize)
    : file_(File::openForReading(path)), buffer_(blockFor(file_, blockSize)) {}

DeviceReader::~DeviceReader() {
    file_.dropFromCache(0, 0);
}

// Direct I/O alone is not trusted to pass the cache: some file systems quietly serve it with
// ordinary reads (for compressed or journalled files). With the pages gone, these meet the device.
void DeviceReader::begin() {
    file_.flush();
    file_.dropFromCache(0, 0);
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
        return ::pread(file_.descriptor(), buffer_.bytes().data(), buffer_.bytes().size(),
                       position_);
    };
    ssize_t count = read();
    while (count < 0) {
        // Direct I/O refuses what is not aligned, as after a short read in the middle of a file.
        if (errno == EINVAL && direct_) {
            setDirect(false);
        } else if (errno != EINTR) {
            throwSystemError();
        }
        count = read();
    }
    position_ += count;
    return buffer_.bytes().first(static_cast<std::size_t>(count));
}

}  // namespace ReelCore
