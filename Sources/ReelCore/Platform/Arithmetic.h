#pragma once

#include "ReelCore/Platform/Error.h"

#include <cmath>
#include <cstdint>

namespace ReelCore {

/// A result that no whole number of 64 bits holds, of numbers that a file or a person gave.
class OutOfRange : public Error {
public:
    OutOfRange() : Error("A number is too large to be reckoned with.") {}
};

// Arithmetic on what files and people say: a wrong number never comes out, and the caller hears of
// it. Where no file and no person can bring an overflow about, Fatal.h has the same.

/// The sum. Throws OutOfRange on overflow.
inline std::int64_t exactSum(std::int64_t left, std::int64_t right) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(left, right, &sum)) throw OutOfRange();
    return sum;
}

/// The product. Throws OutOfRange on overflow.
inline std::int64_t exactProduct(std::int64_t left, std::int64_t right) {
    std::int64_t product = 0;
    if (__builtin_mul_overflow(left, right, &product)) throw OutOfRange();
    return product;
}

/// The nearest whole number, halves away from zero. Throws OutOfRange where there is none of 64
/// bits, and for what is no number.
inline std::int64_t nearestInteger(double value) {
    constexpr double limit = 9223372036854775808.0;
    const double rounded = std::round(value);
    if (!(rounded >= -limit && rounded < limit)) throw OutOfRange();
    return static_cast<std::int64_t>(rounded);
}

}  // namespace ReelCore
