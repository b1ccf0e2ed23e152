// scan-run SOURCE: one scan. Prints one line: seconds, files, bytes, peak memory in KiB.

#include "PeakMemory.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/Error.h"

#include <chrono>

#include <fmt/format.h>

using namespace ReelCore;

int main(int count, char* arguments[]) {
    if (count != 2) {
        fmt::print(stderr, "usage: scan-run SOURCE\n");
        return 2;
    }
    try {
        const auto start = std::chrono::steady_clock::now();
        const auto scan = SourceScanner::scan(arguments[1]);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        fmt::print("{:.3f} {} {} {}\n", taken.count(), scan.fileCount(), scan.totalBytes(),
                   peakMemoryInKiB());
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
