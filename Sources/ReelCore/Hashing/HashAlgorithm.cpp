#include "ReelCore/Hashing/HashAlgorithm.h"

#include "ReelCore/Hashing/CryptoHasher.h"
#include "ReelCore/Hashing/XXH64Hasher.h"
#include "ReelCore/Platform/Fatal.h"

#include <array>

namespace ReelCore {

std::string_view rawValue(HashAlgorithm algorithm) {
    switch (algorithm) {
        case HashAlgorithm::xxhash64:
            return "xxhash64";
        case HashAlgorithm::md5:
            return "md5";
        case HashAlgorithm::sha256:
            return "sha256";
    }
    fatal("no such hash algorithm");
}

template <>
std::span<const HashAlgorithm> allCases<HashAlgorithm>() {
    static constexpr std::array cases{HashAlgorithm::xxhash64, HashAlgorithm::md5,
                                      HashAlgorithm::sha256};
    return cases;
}

std::string_view mhlTag(HashAlgorithm algorithm) {
    return rawValue(algorithm);
}

std::unique_ptr<StreamingHasher> makeHasher(HashAlgorithm algorithm) {
    switch (algorithm) {
        case HashAlgorithm::xxhash64:
            return std::make_unique<XXH64Hasher>(0);
        case HashAlgorithm::md5:
            return std::make_unique<CryptoHasher>(CryptoHasher::Kind::md5);
        case HashAlgorithm::sha256:
            return std::make_unique<CryptoHasher>(CryptoHasher::Kind::sha256);
    }
    fatal("no such hash algorithm");
}

}  // namespace ReelCore
