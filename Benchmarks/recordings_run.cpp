// recordings-run read|bare FOLDER: reads each recording in the folder, or opens each and reads its
// first 4 KB. Prints one line: seconds, files, bytes or scenes that were found.

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Sync/BWFReader.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

using namespace ReelCore;

namespace {

std::vector<URL> recordingsIn(const URL& folder) {
    std::vector<URL> recordings;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        recordings.push_back(entry.path());
    }
    std::ranges::sort(recordings);
    return recordings;
}

/// 1 where a scene was found.
std::int64_t readWhole(const URL& recording) {
    return BWFReader::read(recording).scene ? 1 : 0;
}

/// How many bytes came.
std::int64_t readBare(const URL& recording) {
    std::array<char, 4096> block;
    const int descriptor = ::open(recording.c_str(), O_RDONLY | O_CLOEXEC);
    const ssize_t count = ::read(descriptor, block.data(), block.size());
    ::close(descriptor);
    if (count < 0) {
        std::perror(recording.c_str());
        std::exit(2);
    }
    return count;
}

}  // namespace

int main(int count, char* arguments[]) {
    const std::string_view way = count == 3 ? arguments[1] : "";
    if (way != "read" && way != "bare") {
        fmt::print(stderr, "usage: recordings-run read|bare FOLDER\n");
        return 2;
    }
    try {
        const std::vector<URL> recordings = recordingsIn(arguments[2]);
        const auto start = std::chrono::steady_clock::now();
        std::int64_t found = 0;
        for (const URL& one : recordings) found += way == "read" ? readWhole(one) : readBare(one);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        fmt::print("{:.6f} {} {}\n", taken.count(), recordings.size(), found);
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
