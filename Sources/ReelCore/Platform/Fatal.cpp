#include "ReelCore/Platform/Fatal.h"

#include <cstdio>
#include <cstdlib>

#include <fmt/core.h>

namespace ReelCore {

void fatal(std::string_view what, CodeLocation where) {
    fmt::print(stderr, "fatal: {} in {} ({}:{})\n", what, where.function, where.file, where.line);
    std::abort();
}

}  // namespace ReelCore
