// hash-speed ALGORITHM SECONDS BLOCK: hashes blocks of that many bytes for a while and prints how
// many bytes a second of processor time that makes; "openssl speed" tells the same.

#include "ReelCore/Hashing/HashAlgorithm.h"

#include <cstdlib>
#include <ctime>
#include <vector>

#include <fmt/format.h>

int main(int count, char* arguments[]) {
    if (count != 4) {
        fmt::print(stderr, "usage: hash-speed ALGORITHM SECONDS BLOCK\n");
        return 2;
    }
    const auto algorithm = ReelCore::fromRawValue<ReelCore::HashAlgorithm>(arguments[1]);
    if (!algorithm) return 2;
    const double limit = std::atof(arguments[2]);
    const std::vector<std::byte> block(std::strtoul(arguments[3], nullptr, 10));

    const auto hasher = ReelCore::makeHasher(*algorithm);
    const std::clock_t start = std::clock();
    double taken = 0;
    double bytes = 0;
    while (taken < limit) {
        hasher->update(block);
        bytes += static_cast<double>(block.size());
        taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    }
    fmt::print("{:.0f}\n", bytes / taken);
    return hasher->finalizeHex().empty();
}
