#include "ReelCore/Platform/Fatal.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace ReelCore {

// Takes no memory and throws nothing: either may be what has failed.
void fatal(std::string_view what, CodeLocation where) noexcept {
    std::array<char, 1024> line{};
    const int length = std::snprintf(line.data(), line.size(), "fatal: %.*s in %s (%s:%d)\n",
                                     static_cast<int>(what.size()), what.data(), where.function,
                                     where.file, where.line);
    const auto room = static_cast<int>(line.size()) - 1;
    const auto count = static_cast<std::size_t>(std::clamp(length, 0, room));
    [[maybe_unused]] const auto ignored = ::write(STDERR_FILENO, line.data(), count);
    std::abort();
}

}  // namespace ReelCore
