// offload-run SOURCE REEL ALGORITHM DESTINATION...: one offload, without a report. Prints one line:
// seconds, files, bytes, peak memory in KiB, and "verified" or "failed".

#include "PeakMemory.h"
#include "ReelCore/Offload/OffloadEngine.h"
#include "ReelCore/Platform/Error.h"

#include <chrono>

#include <fmt/format.h>

using namespace ReelCore;

int main(int count, char* arguments[]) {
    if (count < 5) {
        fmt::print(stderr, "usage: offload-run SOURCE REEL ALGORITHM DESTINATION...\n");
        return 2;
    }
    const auto algorithm = fromRawValue<HashAlgorithm>(arguments[3]);
    if (!algorithm) return 2;
    const OffloadRequest request{
        arguments[1], {arguments + 4, arguments + count}, *algorithm, arguments[2]};
    try {
        const auto start = std::chrono::steady_clock::now();
        OffloadEngine engine(4 << 20, [] { return false; });
        const OffloadResult result = engine.run(request, [](const OffloadProgress&) {});
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        fmt::print("{:.3f} {} {} {} {}\n", taken.count(), result.files.size(), result.totalBytes(),
                   peakMemoryInKiB(), result.allVerified() ? "verified" : "failed");
        return result.allVerified() ? 0 : 1;
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
