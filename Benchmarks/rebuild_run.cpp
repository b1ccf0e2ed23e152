// rebuild-run DAMAGED REFERENCE OUTPUT: one rebuild. Prints the frames found, the seconds it took
// and the peak memory in KiB.

#include "PeakMemory.h"
#include "ReelCore/Platform/Error.h"
#include "ReelCore/Recovery/MoovRebuilder.h"

#include <chrono>

#include <fmt/format.h>

using namespace ReelCore;

int main(int count, char* arguments[]) {
    if (count != 4) {
        fmt::print(stderr, "usage: rebuild-run DAMAGED REFERENCE OUTPUT\n");
        return 2;
    }
    try {
        const auto start = std::chrono::steady_clock::now();
        const auto stats = MoovRebuilder::rebuild(arguments[1], arguments[2], arguments[3]);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        fmt::print("{} {:.3f} {}\n", stats.videoFrames, took.count(), peakMemoryInKiB());
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
