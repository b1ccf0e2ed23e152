#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace TestSupport {

/// A number as `bytes` bytes, the highest first.
std::string bigEndian(std::uint64_t number, int bytes);

/// The eight bytes in front of a box's payload, whatever really follows.
std::string boxHeader(std::string_view type, std::uint32_t size);

/// A QuickTime box: its size, its type, its payload.
std::string box(std::string_view type, std::string_view payload = {});

/// The 16 bytes in front of a payload where the size is written with 64 bits.
std::string wideBoxHeader(std::string_view type, std::uint64_t size);

/// A box whose size is written with 64 bits.
std::string wideBox(std::string_view type, std::string_view payload = {});

/// The beginning of a QuickTime file.
std::string fileTypeBox();

/// A frame that says of itself that it is ProRes, of `size` bytes that do not repeat.
std::string proResFrame(std::size_t size, unsigned seed = 1);

}  // namespace TestSupport
