#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/SystemError.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace TestSupport {

inline std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

inline std::string readOn(ReelCore::File& file, std::size_t upTo) {
    std::string text(upTo, '\0');
    text.resize(file.read(std::as_writable_bytes(std::span(text))));
    return text;
}

/// The code of the SystemError, 0 if there was none.
inline int codeOf(const std::function<void()>& action) {
    try {
        action();
        return 0;
    } catch (const ReelCore::SystemError& error) {
        return error.code();
    }
}

}  // namespace TestSupport
