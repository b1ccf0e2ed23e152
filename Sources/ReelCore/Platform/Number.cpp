#include "ReelCore/Platform/Number.h"

#include <array>
#include <charconv>
#include <clocale>
#include <cstdlib>

#include <locale.h>

namespace ReelCore {

namespace {

bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace

std::optional<double> parseDouble(std::string_view text) {
    static const locale_t c = ::newlocale(LC_ALL_MASK, "C", nullptr);
    if (text.empty() || isWhiteSpace(text.front())) return std::nullopt;
    const std::string terminated(text);
    char* end = nullptr;
    const double value = ::strtod_l(terminated.c_str(), &end, c);
    if (end != terminated.c_str() + terminated.size()) return std::nullopt;
    return value;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value);
    if (failure != std::errc() || stop != end) return std::nullopt;
    return value;
}

std::string shortestDecimal(double value) {
    std::array<char, 400> buffer{};
    const auto [end, failure] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                              std::chars_format::fixed);
    std::string text(buffer.data(), end);
    return text.find('.') == text.npos ? text + ".0" : text;
}

}  // namespace ReelCore
