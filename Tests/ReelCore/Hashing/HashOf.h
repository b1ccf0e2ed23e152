#pragma once

#include "ReelCore/Hashing/HashAlgorithm.h"

#include <span>
#include <string>
#include <string_view>

namespace TestSupport {

inline std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

/// The hash of `text`, fed in one call.
inline std::string hashOf(ReelCore::StreamingHasher& hasher, std::string_view text) {
    hasher.update(bytesOf(text));
    return hasher.finalizeHex();
}

inline std::string hashOf(ReelCore::HashAlgorithm algorithm, std::string_view text) {
    return hashOf(*ReelCore::makeHasher(algorithm), text);
}

}  // namespace TestSupport
