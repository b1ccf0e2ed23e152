// carve-run IMAGE: one scan for media. Prints one line: seconds, bytes, findings, peak memory in
// KiB.

#include "PeakMemory.h"
#include "ReelCore/Platform/Error.h"
#include "ReelCore/Recovery/CardCarver.h"

#include <chrono>

#include <fmt/format.h>

using namespace ReelCore;

int main(int count, char* arguments[]) {
    if (count != 2) {
        fmt::print(stderr, "usage: carve-run IMAGE\n");
        return 2;
    }
    try {
        std::int64_t bytes = 0;
        const auto note = [&](const CarveProgress& progress) { bytes = progress.bytesScanned; };
        const auto start = std::chrono::steady_clock::now();
        const auto findings = CardCarver::scan(
            arguments[1], [] { return false; }, note);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        fmt::print("{:.3f} {} {} {}\n", taken.count(), bytes, findings.size(), peakMemoryInKiB());
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
