#pragma once

#include "ReelCore/Hashing/StreamingHasher.h"
#include "ReelCore/Models/Enumeration.h"

#include <memory>
#include <string_view>

namespace ReelCore {

/// The checksums an offload can be proved with. The raw value ("xxhash64", "md5", "sha256") is
/// also the case's name on screen and on paper.
enum class HashAlgorithm { xxhash64, md5, sha256 };

std::string_view rawValue(HashAlgorithm algorithm);

template <>
std::span<const HashAlgorithm> allCases<HashAlgorithm>();

/// The element that holds such a hash in a media hash list.
std::string_view mhlTag(HashAlgorithm algorithm);

/// A new hasher over the empty stream; XXH64 with seed 0.
std::unique_ptr<StreamingHasher> makeHasher(HashAlgorithm algorithm);

}  // namespace ReelCore
