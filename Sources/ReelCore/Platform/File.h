#pragma once

#include "ReelCore/Platform/HeldFolder.h"
#include "ReelCore/Platform/URL.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace ReelCore {

enum class FileLinks { follow, refuse };

/// An open regular file: a descriptor that is closed on every way out, a failure to close being
/// ignored. Movable; one thread at a time, but for `readAt`. Every operation throws SystemError
/// where the operating system refuses, and all are interrupted-call safe.
class File {
public:
    /// Opens an existing regular file to be read from its start. Nothing else is ever read: a pipe
    /// or a device under that name is refused (EINVAL), and so is a link unless it is to be
    /// followed (ELOOP). The file's access time is left alone where the system allows it.
    static File openForReading(const URL& path, FileLinks links = FileLinks::refuse);

    /// The same for a name in a folder. A link is refused.
    static File openForReading(const HeldFolder& folder, const URL& name);

    /// Opens a block device to be read, if it is the one with that number (otherwise ENODEV).
    static File openBlockDevice(const URL& node, std::uint64_t number);

    /// Opens an existing regular file to be changed in place. Links are not followed.
    static File openForUpdating(const URL& path);

    /// Creates an empty file to be written, in place of whatever has that name. Where that can't be
    /// removed, a regular file is emptied instead, but only if it has no second name, under which
    /// its content would be lost as well; anything else, and always a folder, stays and is refused.
    /// Links are never followed.
    static File create(const URL& path);

    /// The same for a name in a folder.
    static File create(const HeldFolder& folder, const URL& name);

    /// Creates an empty file to be written under a name that nothing has, in one step: of several
    /// who try at once one gets it. Absent where anything has that name, a dangling link included.
    static std::optional<File> createExclusively(const URL& path);

    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    ~File();

    int descriptor() const { return descriptor_; }

    /// Reads on from the current position, up to the size of `into`; 0 is the end of the file.
    std::size_t read(std::span<std::byte> into);

    /// Reads from a position until `into` is full or the file ends; returns how many bytes came. A
    /// position behind the end gives 0. The current position stays.
    std::size_t readAt(std::int64_t offset, std::span<std::byte> into) const;

    /// In bytes, as the file is now.
    std::int64_t size() const;

    /// Where stored bytes follow at or behind `offset`: what lies between is a hole and reads as
    /// zeros. The file's size where there are none, `offset` where the file system knows no holes.
    /// The current position stays.
    std::int64_t nextStored(std::int64_t offset) const;

    /// Writes all of `bytes` at the current position.
    void write(std::span<const std::byte> bytes);

    /// Writes all of `bytes` at a position. The current position stays.
    void writeAt(std::int64_t offset, std::span<const std::byte> bytes);

    /// Copies `length` bytes of another file from `offset` on to the current position, in blocks of
    /// 8 MiB. Throws also where the other file is shorter.
    void append(const File& source, std::int64_t offset, std::int64_t length);

    /// Keeps room on the device for what will be written up to `length`; the size stays. Does
    /// nothing where the file system can't.
    void reserve(std::int64_t length);

    /// Makes the file's contents and size durable on its device.
    void flush() const;

    /// Waits until what was written to a range (0, 0 for all) has gone to the device, and lets go
    /// of its cached pages. Unlike a flush it leaves the file's size and dates for later. Throws if
    /// the device failed; false if this system knows no such wait, and nothing was waited for.
    bool finishWriteback(std::int64_t offset, std::int64_t length);

    /// Hints, which never fail: read ahead further than usual; begin to read a range; begin to
    /// write a written range to the device; let go of cached pages of a range (0, 0 for all).
    void expectSequentialRead();
    void expectRead(std::int64_t offset, std::int64_t length) const;
    void beginWriteback(std::int64_t offset, std::int64_t length);
    void dropFromCache(std::int64_t offset, std::int64_t length) const;

private:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    static File createAt(int folder, const URL& path);

    int descriptor_;
};

}  // namespace ReelCore
