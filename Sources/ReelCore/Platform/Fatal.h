#pragma once

#include <cstdint>
#include <string_view>

namespace ReelCore {

/// Where in the code a call stands. As a default argument `CodeLocation::current()` is the place
/// of the caller, as std::source_location is, which clang 14 does not have.
struct CodeLocation {
    const char* function;
    const char* file;
    int line;

    static constexpr CodeLocation current(const char* function = __builtin_FUNCTION(),
                                          const char* file = __builtin_FILE(),
                                          int line = __builtin_LINE()) {
        return {function, file, line};
    }
};

/// Ends the process with one line on standard error that says what and where. For faults that no
/// caller can answer for: arithmetic overflow, impossible conversions, a system that lacks its
/// foundations. Never an exception, so that no catch can go on from a wrong number. Where
/// standard error is closed or full the line is lost; a very long one is cut.
[[noreturn]] void fatal(std::string_view what,
                        CodeLocation where = CodeLocation::current()) noexcept;

/// The sum, or a fatal fault on overflow.
inline std::int64_t checkedAdd(std::int64_t left, std::int64_t right,
                               CodeLocation where = CodeLocation::current()) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(left, right, &sum)) fatal("arithmetic overflow", where);
    return sum;
}

/// The difference, or a fatal fault on overflow.
inline std::int64_t checkedSubtract(std::int64_t left, std::int64_t right,
                                    CodeLocation where = CodeLocation::current()) {
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(left, right, &difference)) fatal("arithmetic overflow", where);
    return difference;
}

/// The product, or a fatal fault on overflow.
inline std::int64_t checkedMultiply(std::int64_t left, std::int64_t right,
                                    CodeLocation where = CodeLocation::current()) {
    std::int64_t product = 0;
    if (__builtin_mul_overflow(left, right, &product)) fatal("arithmetic overflow", where);
    return product;
}

/// The quotient, cut toward zero, or a fatal fault on overflow or division by zero.
inline std::int64_t checkedDivide(std::int64_t dividend, std::int64_t divisor,
                                  CodeLocation where = CodeLocation::current()) {
    if (divisor == 0) fatal("division by zero", where);
    if (divisor == -1) return checkedSubtract(0, dividend, where);
    return dividend / divisor;
}

/// The value without its fraction, or a fatal fault where no whole number of 64 bits is that.
inline std::int64_t checkedInteger(double value, CodeLocation where = CodeLocation::current()) {
    constexpr double limit = 9223372036854775808.0;
    if (!(value >= -limit && value < limit)) fatal("impossible conversion", where);
    return static_cast<std::int64_t>(value);
}

}  // namespace ReelCore
