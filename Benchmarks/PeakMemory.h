#pragma once

#include <sys/resource.h>

/// The most memory that this process has had resident so far.
inline long peakMemoryInKiB() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
