#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ReelCore {

namespace {

// O_NONBLOCK keeps an open of a pipe from waiting for ever. Once it is known to be a file, it goes.
constexpr int safeFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
constexpr int followingFlags = safeFlags & ~O_NOFOLLOW;

/// A path, or a name in an open folder.
struct Place {
    const URL& path;
    int folder = AT_FDCWD;
};

int openRetrying(const Place& place, int flags, mode_t mode = 0) {
    int descriptor = -1;
    do {
        descriptor = ::openat(place.folder, place.path.c_str(), flags, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// O_NOATIME is only allowed to the owner of a file, so others ask again without it.
int openWithoutAccessTime(const Place& place, int flags) {
    const int descriptor = openRetrying(place, O_RDONLY | O_NOATIME | flags);
    if (descriptor >= 0 || errno != EPERM) return descriptor;
    return openRetrying(place, O_RDONLY | flags);
}

struct stat requireRegularFile(int descriptor, const URL& path) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) throwSystemError(path);
    if (!S_ISREG(status.st_mode)) throw SystemError(EINVAL, path);
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (::fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) != 0) throwSystemError(path);
    return status;
}

bool isUnknownCall(int code) {
    return code == ENOSYS || code == EOPNOTSUPP || code == EINVAL || code == ESPIPE ||
           code == EPERM;
}

}  // namespace

File File::openForReading(const URL& path, FileLinks links) {
    File file(
        openWithoutAccessTime({path}, links == FileLinks::follow ? followingFlags : safeFlags));
    if (file.descriptor_ < 0) throwSystemError(path);
    requireRegularFile(file.descriptor_, path);
    return file;
}

File File::openForReading(const HeldFolder& folder, const URL& name) {
    File file(openWithoutAccessTime({name, folder.descriptor()}, safeFlags));
    if (file.descriptor_ < 0) throwSystemError(name);
    requireRegularFile(file.descriptor_, name);
    return file;
}

File File::openBlockDevice(const URL& node, std::uint64_t number) {
    File file(openRetrying({node}, O_RDONLY | followingFlags));
    struct stat status {};
    if (file.descriptor_ < 0 || ::fstat(file.descriptor_, &status) != 0) throwSystemError(node);
    if (!S_ISBLK(status.st_mode) || status.st_rdev != number) throw SystemError(ENODEV, node);
    return file;
}

File File::openForUpdating(const URL& path) {
    File file(openRetrying({path}, O_RDWR | safeFlags));
    if (file.descriptor_ < 0) throwSystemError(path);
    requireRegularFile(file.descriptor_, path);
    return file;
}

File File::createAt(int folder, const URL& path) {
    ::unlinkat(folder, path.c_str(), 0);
    File file(openRetrying({path, folder}, O_WRONLY | O_CREAT | safeFlags, 0666));
    if (file.descriptor_ < 0) throwSystemError(path);
    const struct stat status = requireRegularFile(file.descriptor_, path);
    if (status.st_nlink > 1) throw SystemError(EEXIST, path);
    if (status.st_size > 0 && ::ftruncate(file.descriptor_, 0) != 0) throwSystemError(path);
    return file;
}

File File::create(const URL& path) {
    return createAt(AT_FDCWD, path);
}

File File::create(const HeldFolder& folder, const URL& name) {
    return createAt(folder.descriptor(), name);
}

std::optional<File> File::createExclusively(const URL& path) {
    const int descriptor = openRetrying({path}, O_WRONLY | O_CREAT | O_EXCL | safeFlags, 0666);
    if (descriptor >= 0) return File(descriptor);
    if (errno != EEXIST) throwSystemError(path);
    return std::nullopt;
}

File::File(File&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

File& File::operator=(File&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

File::~File() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::size_t File::read(std::span<std::byte> into) {
    ssize_t count = 0;
    do {
        count = ::read(descriptor_, into.data(), into.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) throwSystemError();
    return static_cast<std::size_t>(count);
}

std::size_t File::readAt(std::int64_t offset, std::span<std::byte> into) const {
    std::size_t done = 0;
    while (done < into.size()) {
        const auto rest = into.subspan(done);
        const ssize_t count = ::pread(descriptor_, rest.data(), rest.size(),
                                      offset + static_cast<std::int64_t>(done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throwSystemError();
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

std::int64_t File::size() const {
    struct stat status {};
    if (::fstat(descriptor_, &status) != 0) throwSystemError();
    return status.st_size;
}

std::int64_t File::nextStored(std::int64_t offset) const {
    const off_t position = ::lseek(descriptor_, 0, SEEK_CUR);
    const off_t next = ::lseek(descriptor_, offset, SEEK_DATA);
    const bool nothingFollows = next < 0 && errno == ENXIO;
    ::lseek(descriptor_, position, SEEK_SET);
    if (nothingFollows) return size();
    return next >= 0 ? next : offset;
}

void File::write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count < 0) {
            if (errno == EINTR) continue;
            throwSystemError();
        }
        if (count == 0) throw SystemError(EIO);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void File::writeAt(std::int64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::pwrite(descriptor_, bytes.data(), bytes.size(), offset);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throwSystemError();
        if (count == 0) throw SystemError(EIO);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += count;
    }
}

void File::append(const File& source, std::int64_t offset, std::int64_t length) {
    constexpr std::int64_t blockSize = 0x800000;
    // Where the kernel can't copy between the two files it copies nothing more: reads and writes go
    // on from there, and say why if they can't either.
    while (length > 0) {
        const auto wanted = static_cast<std::size_t>(std::min(blockSize, length));
        const ssize_t count =
            ::copy_file_range(source.descriptor_, &offset, descriptor_, nullptr, wanted, 0);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        length -= count;
    }
    std::vector<std::byte> block(static_cast<std::size_t>(std::min(blockSize, length)));
    while (length > 0) {
        const auto wanted = static_cast<std::size_t>(std::min(blockSize, length));
        const auto piece = std::span(block).first(wanted);
        if (source.readAt(offset, piece) < wanted) throw SystemError(EIO);
        write(piece);
        offset += std::ssize(piece);
        length -= std::ssize(piece);
    }
}

void File::reserve(std::int64_t length) {
    while (::fallocate(descriptor_, FALLOC_FL_KEEP_SIZE, 0, length) != 0) {
        if (errno == EOPNOTSUPP || errno == ENOSYS) return;
        if (errno != EINTR) throwSystemError();
    }
}

void File::flush() const {
    while (::fsync(descriptor_) != 0) {
        if (errno != EINTR) throwSystemError();
    }
}

// A failure is told once: were it passed over here, a later flush would know nothing of it.
bool File::finishWriteback(std::int64_t offset, std::int64_t length) {
    constexpr unsigned int all =
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    while (::sync_file_range(descriptor_, offset, length, all) != 0) {
        if (isUnknownCall(errno)) return false;
        if (errno != EINTR) throwSystemError();
    }
    dropFromCache(offset, length);
    return true;
}

void File::expectSequentialRead() {
    ::posix_fadvise(descriptor_, 0, 0, POSIX_FADV_SEQUENTIAL);
}

void File::expectRead(std::int64_t offset, std::int64_t length) const {
    ::posix_fadvise(descriptor_, offset, length, POSIX_FADV_WILLNEED);
}

void File::beginWriteback(std::int64_t offset, std::int64_t length) {
    ::sync_file_range(descriptor_, offset, length, SYNC_FILE_RANGE_WRITE);
}

void File::dropFromCache(std::int64_t offset, std::int64_t length) const {
    ::posix_fadvise(descriptor_, offset, length, POSIX_FADV_DONTNEED);
}

}  // namespace ReelCore
