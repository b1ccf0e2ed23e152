#pragma once

#include "ReelCore/Platform/File.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace ReelCore {

/// Recognises the partition packs of an MXF file (SMPTE ST 377-1) and follows its chain of key,
/// length and value on the disk. Reads 32 bytes a triplet and never a value. Any thread.
struct MXFScan {
    /// How the key of every partition pack begins.
    static constexpr std::array<std::uint8_t, 13> partitionPrefix{
        0x06, 0x0E, 0x2B, 0x34, 0x02, 0x05, 0x01, 0x01, 0x0D, 0x01, 0x02, 0x01, 0x01};

    /// The byte that follows the prefix.
    enum class PartitionKind : std::uint8_t { header = 0x02, body = 0x03, footer = 0x04 };

    struct Walk {
        std::int64_t length = 0;  ///< Bytes from the start to the end of the last whole triplet.
        bool sawFooter = false;
        std::int64_t klvCount = 0;  ///< Whole triplets.

        bool operator==(const Walk&) const = default;
    };

    struct BERLength {
        std::int64_t length = 0;
        std::int64_t size = 0;  ///< Bytes that the length itself takes.

        bool operator==(const BERLength&) const = default;
    };

    /// True if the key of a partition pack of that kind, or of any where none is given, stands at a
    /// position of `data`; all 16 bytes of it must be there.
    static bool isPartitionKey(std::span<const std::byte> data, std::size_t at,
                               std::optional<PartitionKind> kind);

    /// The length that stands at a position (BER, short or long form). Absent for the indefinite
    /// form, for more than 8 bytes, for 2^63 and above, and where it is cut off.
    static std::optional<BERLength> berLength(std::span<const std::byte> data, std::size_t at);

    /// Follows the triplets from `at`; none may pass the offset `limit`. Ends at what is no triplet
    /// and at the header partition of a next clip. Absent for fewer than 3 triplets, which may be
    /// chance.
    static std::optional<Walk> walk(const File& file, std::int64_t at, std::int64_t limit);

    /// The same in what gives the 32 bytes at an offset, or fewer at its end. They stay until the
    /// next call.
    using Reader = std::function<std::span<const std::byte>(std::int64_t offset)>;
    static std::optional<Walk> walk(const Reader& read, std::int64_t at, std::int64_t limit);
};

}  // namespace ReelCore
