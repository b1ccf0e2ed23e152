#pragma once

#include <cstddef>
#include <memory>
#include <span>

namespace ReelCore {

/// Memory on a page boundary whose size is a whole number of pages, as direct I/O asks for. One of
/// 2 MiB and more lies in huge pages where the system has them: a device that writes into scattered
/// pages takes three times as long. The contents are undefined at first. Movable, owned by one
/// place at a time.
class AlignedBuffer {
public:
    static constexpr std::size_t alignment = 4096;

    /// At least `minimumSize` bytes, rounded up to whole pages, and never empty.
    /// Throws std::bad_alloc.
    explicit AlignedBuffer(std::size_t minimumSize);

    std::span<std::byte> bytes() const { return {memory_.get(), size_}; }

private:
    struct Free {
        void operator()(std::byte* memory) const;
    };
    std::size_t size_;
    std::unique_ptr<std::byte, Free> memory_;
};

}  // namespace ReelCore
