// faultyfs BACKING MOUNTPOINT [key=value ...]: passes a folder through, with faults. The keys are
// those that FaultyFileSystem.cpp writes. Serves one request after the other.

#define FUSE_USE_VERSION 31

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <fuse.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr std::int64_t never = std::numeric_limits<std::int64_t>::max();

std::string backing;
std::map<std::string, std::string, std::less<>> faults;
std::int64_t bytesWritten = 0;
std::int64_t bytesRead = 0;

std::string textOf(std::string_view key) {
    const auto found = faults.find(key);
    return found == faults.end() ? std::string() : found->second;
}

std::int64_t numberOf(std::string_view key, std::int64_t otherwise) {
    const std::string text = textOf(key);
    return text.empty() ? otherwise : std::stoll(text);
}

bool isSet(std::string_view key) {
    return faults.contains(key);
}

std::string real(std::string path) {
    if (isSet("ignore-case")) std::ranges::transform(path, path.begin(), ::tolower);
    return backing + path;
}

std::string_view nameOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool concerns(const char* path) {
    const std::string only = textOf("only-file");
    return only.empty() || nameOf(path) == only;
}

int answer(std::int64_t result) {
    return result < 0 ? -errno : static_cast<int>(result);
}

int descriptorOf(const fuse_file_info* info) {
    return static_cast<int>(info->fh);
}

void takeTime() {
    std::this_thread::sleep_for(std::chrono::milliseconds(numberOf("delay", 0)));
}

/// True if a fault names the file or folder at `path`.
bool names(std::string_view fault, std::string_view path) {
    const std::string name = textOf(fault);
    return !name.empty() && nameOf(path) == name;
}

int getAttributes(const char* path, struct stat* status, fuse_file_info*) {
    if (names("fail-attributes-of", path)) return -EIO;
    return answer(::lstat(real(path).c_str(), status));
}

int openFile(const char* path, fuse_file_info* info) {
    const bool reads = (info->flags & O_ACCMODE) == O_RDONLY;
    if (reads && isSet("fail-open-for-reading") && concerns(path)) return -EIO;
    const int descriptor = ::open(real(path).c_str(), info->flags & ~(O_DIRECT | O_NOATIME));
    if (descriptor < 0) return -errno;
    info->fh = static_cast<std::uint64_t>(descriptor);
    return 0;
}

int createFile(const char* path, mode_t mode, fuse_file_info* info) {
    const int descriptor = ::open(real(path).c_str(), info->flags & ~O_DIRECT, mode);
    if (descriptor < 0) return -errno;
    info->fh = static_cast<std::uint64_t>(descriptor);
    return 0;
}

int readBytes(const char* path, char* bytes, std::size_t size, off_t at, fuse_file_info* info) {
    takeTime();
    if (isSet("refuse-direct-reads") && (info->flags & O_DIRECT) != 0) return -EINVAL;
    const std::int64_t failAt = concerns(path) ? numberOf("fail-read-at", never) : never;
    if (at >= failAt) return -static_cast<int>(numberOf("read-error", EIO));
    size = std::min(size, static_cast<std::size_t>(failAt - at));
    const ssize_t count = ::pread(descriptorOf(info), bytes, size, at);
    if (count < 0) return -errno;
    bytesRead += count;
    if (bytesRead > numberOf("vanish-after-reading", never)) ::_exit(0);
    const std::int64_t flipAt = concerns(path) ? numberOf("flip-bit-at", never) : never;
    if (flipAt >= at && flipAt < at + count) bytes[flipAt - at] ^= 1;
    return static_cast<int>(count);
}

int writeBytes(const char* path, const char* bytes, std::size_t size, off_t at,
               fuse_file_info* info) {
    takeTime();
    const std::int64_t room =
        std::min(concerns(path) ? numberOf("fail-write-at", never) - at : never,
                 numberOf("fail-write-after", never) - bytesWritten);
    if (room <= 0) return -static_cast<int>(numberOf("write-error", EIO));
    size = std::min(size, static_cast<std::size_t>(room));
    const ssize_t count = ::pwrite(descriptorOf(info), bytes, size, at);
    if (count < 0) return -errno;
    bytesWritten += count;
    if (bytesWritten > numberOf("vanish-after-writing", never)) ::_exit(0);
    return static_cast<int>(count);
}

/// Some entries, and then the failure: in a call of its own, which would take those of the same
/// call with it.
int listInPart(const char* path, void* buffer, fuse_fill_dir_t fill, off_t offset) {
    const off_t end = numberOf("listed-before-that", 0);
    if (offset >= end) return -static_cast<int>(numberOf("listing-error", EIO));
    DIR* folder = ::opendir(real(path).c_str());
    if (!folder) return -errno;
    off_t place = 0;
    while (const dirent* entry = ::readdir(folder)) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == ".." || place++ < offset) continue;
        if (place > end || fill(buffer, entry->d_name, nullptr, place, fuse_fill_dir_flags{}) != 0)
            break;
    }
    ::closedir(folder);
    return 0;
}

int listFolder(const char* path, void* buffer, fuse_fill_dir_t fill, off_t offset, fuse_file_info*,
               fuse_readdir_flags) {
    if (names("break-listing-of", path)) return listInPart(path, buffer, fill, offset);
    DIR* folder = ::opendir(real(path).c_str());
    if (!folder) return -errno;
    while (const dirent* entry = ::readdir(folder)) {
        struct stat status {};
        status.st_ino = entry->d_ino;
        if (!isSet("hide-types")) status.st_mode = static_cast<mode_t>(entry->d_type) << 12;
        fill(buffer, entry->d_name, &status, 0, fuse_fill_dir_flags{});
    }
    ::closedir(folder);
    return 0;
}

int openFolder(const char* path, fuse_file_info*) {
    if (names("vanish-at-listing-of", path)) ::_exit(0);
    return names("fail-listing-of", path) ? -EACCES : 0;
}

int setDates(const char* path, const timespec times[2], fuse_file_info*) {
    if (isSet("fail-dates")) return -EPERM;
    return answer(::utimensat(AT_FDCWD, real(path).c_str(), times, AT_SYMLINK_NOFOLLOW));
}

int flushFile(const char* path, int, fuse_file_info* info) {
    if (isSet("fail-flush") && concerns(path)) return -EIO;
    return answer(::fsync(descriptorOf(info)));
}

void* configure(fuse_conn_info* connection, fuse_config* config) {
    config->use_ino = 1;
    if (isSet("keep-cache")) {
        config->kernel_cache = 1;
        connection->want &= ~static_cast<unsigned>(FUSE_CAP_AUTO_INVAL_DATA);
    }
    if (isSet("write-late")) connection->want |= FUSE_CAP_WRITEBACK_CACHE;
    config->entry_timeout = 0;
    config->attr_timeout = 0;
    return nullptr;
}

fuse_operations operations() {
    fuse_operations all{};
    all.init = configure;
    all.getattr = getAttributes;
    all.open = openFile;
    all.create = createFile;
    all.read = readBytes;
    all.write = writeBytes;
    all.readdir = listFolder;
    all.opendir = openFolder;
    all.mkdir = [](const char* path, mode_t mode) {
        return answer(::mkdir(real(path).c_str(), mode));
    };
    all.unlink = [](const char* path) { return answer(::unlink(real(path).c_str())); };
    all.rmdir = [](const char* path) { return answer(::rmdir(real(path).c_str())); };
    all.truncate = [](const char* path, off_t size, fuse_file_info*) {
        return answer(::truncate(real(path).c_str(), size));
    };
    all.utimens = setDates;
    all.fsync = flushFile;
    all.fsyncdir = [](const char*, int, fuse_file_info*) {
        return -static_cast<int>(numberOf("folder-flush-error", 0));
    };
    all.release = [](const char*, fuse_file_info* info) { return ::close(descriptorOf(info)); };
    all.statfs = [](const char* path, struct statvfs* status) {
        return answer(::statvfs(real(path).c_str(), status));
    };
    return all;
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) return 2;
    backing = arguments[1];
    for (int i = 3; i < count; ++i) {
        const std::string fault = arguments[i];
        const auto sign = fault.find('=');
        faults[fault.substr(0, sign)] = fault.substr(sign + 1);
    }
    char serial[] = "-s";
    std::array<char*, 4> mount{arguments[0], serial, arguments[2], nullptr};
    const fuse_operations all = operations();
    return fuse_main(3, mount.data(), &all, nullptr);
}
