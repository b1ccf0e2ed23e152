#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace TestSupport {

/// The 16-byte key of an MXF partition pack; `kind` is its 14th byte: 2 for a header, 3 for a body,
/// 4 for a footer.
std::string partitionKey(int kind);

/// The 16-byte key of a triplet of essence.
std::string essenceKey();

/// A length as MXF files write it: a byte that tells how many follow, and that many.
std::string berLength(std::uint64_t length, int bytes = 3);

/// A KLV triplet: key, length, value.
std::string triplet(std::string_view key, std::string_view value);

/// A whole MXF clip as far as its structure goes: header partition, `essence` in one triplet, and
/// footer partition.
std::string mxfClip(std::string_view essence);

}  // namespace TestSupport
