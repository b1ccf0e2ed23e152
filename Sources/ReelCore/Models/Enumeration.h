#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace ReelCore {

/// All cases of an enumeration with raw values, in order. Each such enumeration specialises this
/// beside its declaration and gives a free function `rawValue(case)`.
template <class E>
std::span<const E> allCases();

/// The case whose raw value is exactly `text`, or nothing.
template <class E>
std::optional<E> fromRawValue(std::string_view text) {
    for (const E one : allCases<E>()) {
        if (rawValue(one) == text) return one;
    }
    return std::nullopt;
}

}  // namespace ReelCore
