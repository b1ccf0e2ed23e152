// hash-speed ALGORITHM SECONDS BLOCK: hashes blocks of that many bytes for a while and prints how
// many bytes a second that makes.

#include "ReelCore/Hashing/HashAlgorithm.h"

#include <chrono>
#include <cstdlib>
#include <vector>

#include <fmt/format.h>

int main(int count, char* arguments[]) {
    if (count != 4) {
        fmt::print(stderr, "usage: hash-speed ALGORITHM SECONDS BLOCK\n");
        return 2;
    }
    using Seconds = std::chrono::duration<double>;
    const auto algorithm = ReelCore::fromRawValue<ReelCore::HashAlgorithm>(arguments[1]);
    if (!algorithm) return 2;
    const Seconds limit(std::atof(arguments[2]));
    const std::vector<std::byte> block(std::strtoul(arguments[3], nullptr, 10));

    const auto hasher = ReelCore::makeHasher(*algorithm);
    const auto start = std::chrono::steady_clock::now();
    Seconds taken{};
    double bytes = 0;
    for (; taken < limit; taken = std::chrono::steady_clock::now() - start) {
        hasher->update(block);
        bytes += static_cast<double>(block.size());
    }
    fmt::print("{:.0f}\n", bytes / taken.count());
    return hasher->finalizeHex().empty();
}
