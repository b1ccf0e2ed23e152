#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace ReelCore {

/// The beginning of a QuickTime or MP4 box, as it stands: nothing about it is checked.
struct BoxHeader {
    std::uint64_t size = 0;           ///< Of the whole box; 0 stands for "to the end of the file".
    std::int64_t headerSize = 8;      ///< 16 where the size is written with 64 bits.
    std::optional<std::string> type;  ///< Absent where the four bytes are not ASCII.

    /// From the first 16 bytes of a box, or as many as there are. Absent where fewer than 8 are
    /// there, or fewer than 16 and the size is written with 64 bits.
    static std::optional<BoxHeader> read(std::span<const std::byte> bytes);
};

/// The four bytes as a type, if all are ASCII.
std::optional<std::string> boxType(std::string_view bytes);

}  // namespace ReelCore
