#pragma once

#include <cstdint>

#include <sys/resource.h>

namespace TestSupport {

/// The most memory that this process has had resident so far. A test that measures forks first, so
/// that no other test has raised it.
inline std::int64_t peakMemoryInKiB() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

}  // namespace TestSupport
