#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ReelCore {

/// The number that the whole text is, in the C locale and whatever the process's own is: decimal or
/// hexadecimal, with an exponent or not, "inf" and "nan" too. What is too large is infinite. Absent
/// for anything else, white space at either end included.
std::optional<double> parseDouble(std::string_view text);

/// The whole decimal number of 64 bits that the whole text is, with a sign or without. Absent for
/// anything else.
std::optional<std::int64_t> parseInteger(std::string_view text);

/// The shortest decimal text that reads back as the same number, without an exponent and always
/// with a point: "12.5", "3600.0".
std::string shortestDecimal(double value);

}  // namespace ReelCore
