#include "ReelCore/Platform/Fatal.h"

#include <cstdio>
#include <cstdlib>

#include <fmt/core.h>

namespace ReelCore {

void fatal(std::string_view what, std::source_location where) {
    fmt::print(stderr, "fatal: {} in {} ({}:{})\n", what, where.function_name(), where.file_name(),
               where.line());
    std::abort();
}

}  // namespace ReelCore
