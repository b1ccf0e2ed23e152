// doctor-run FOLDER: diagnoses the clips below a folder. Prints one line: seconds, clips, healthy
// ones, damaged ones, bytes read.

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Recovery/ClipDoctor.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <string>

#include <fmt/format.h>

using namespace ReelCore;

namespace {

/// What this process has read so far, by the kernel's count.
std::int64_t bytesRead() {
    std::ifstream counts("/proc/self/io");
    std::string name;
    std::int64_t bytes = -1;
    counts >> name >> bytes;
    return bytes;
}

}  // namespace

int main(int count, char* arguments[]) {
    if (count != 2) {
        fmt::print(stderr, "usage: doctor-run FOLDER\n");
        return 2;
    }
    try {
        const std::int64_t before = bytesRead();
        const auto start = std::chrono::steady_clock::now();
        const RecoveryScan scan = ClipDoctor::scan(arguments[1]);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        fmt::print("{:.3f} {} {} {} {}\n", taken.count(), scan.reports.size(),
                   scan.healthy().size(), scan.damaged().size(), bytesRead() - before);
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
