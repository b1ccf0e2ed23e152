#pragma once

#include <cstdint>
#include <functional>

namespace TestSupport {

/// What is asked of files, whatever their file system has in memory.
struct Reads {
    std::int64_t calls = 0;
    std::int64_t bytes = 0;

    bool operator==(const Reads&) const = default;
};

/// What `action` reads on this thread, by the kernel's own count.
Reads readsOf(const std::function<void()>& action);

}  // namespace TestSupport
