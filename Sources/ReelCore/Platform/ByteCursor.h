#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace ReelCore {

/// Reads bytes from front to back. Every read checks the bounds in one place, takes all that it
/// asks for, or takes nothing and is absent. Does not own the bytes.
class ByteCursor {
public:
    explicit ByteCursor(std::span<const std::byte> bytes) : rest_(bytes) {}

    std::span<const std::byte> rest() const { return rest_; }

    std::optional<std::span<const std::byte>> take(std::uint64_t count) {
        if (count > rest_.size()) return std::nullopt;
        const auto taken = rest_.first(static_cast<std::size_t>(count));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

    bool skip(std::uint64_t count) { return take(count).has_value(); }

    /// Bytes as text, such as a four-character code; not decoded.
    std::optional<std::string_view> text(std::uint64_t count) {
        const auto bytes = take(count);
        if (!bytes) return std::nullopt;
        return std::string_view(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    }

    template <std::unsigned_integral Number>
    std::optional<Number> littleEndian() {
        const auto bytes = take(sizeof(Number));
        if (!bytes) return std::nullopt;
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return static_cast<Number>(((toNumber((*bytes)[I]) << 8 * I) | ...));
        }
        (std::make_index_sequence<sizeof(Number)>());
    }

    template <std::unsigned_integral Number>
    std::optional<Number> bigEndian() {
        const auto bytes = take(sizeof(Number));
        if (!bytes) return std::nullopt;
        // Written out, compilers make it one instruction.
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            std::uint64_t value = 0;
            ((value = value << 8U | toNumber((*bytes)[I])), ...);
            return static_cast<Number>(value);
        }
        (std::make_index_sequence<sizeof(Number)>());
    }

private:
    static std::uint64_t toNumber(std::byte one) { return std::to_integer<std::uint64_t>(one); }

    std::span<const std::byte> rest_;
};

}  // namespace ReelCore
