#pragma once

#include "ReelCore/Platform/Fatal.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>

/// For targets whose inputs may rightly end the process. Include it in one source file of the
/// program: it defines ReelCore::fatal, so that the linker leaves the library's own where it is.
namespace ExpectedFatal {

inline std::jmp_buf* wayBack = nullptr;

/// Does `work`, and returns whether it came to its end; false is a fatal fault on the way. What
/// `work` held then is never destroyed, as in a process that ends. One at a time: `work` can't call
/// this again.
template <class Work>
bool endsWell(const Work& work) {
    std::jmp_buf here;
    wayBack = &here;
    if (setjmp(here) != 0) {
        wayBack = nullptr;
        return false;
    }
    work();
    wayBack = nullptr;
    return true;
}

}  // namespace ExpectedFatal

/// What a fatal fault leaves behind is no leak worth a look, and each look takes long.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

/// A fatal fault that no endsWell() waits for is a finding.
void ReelCore::fatal(std::string_view what, CodeLocation where) noexcept {
    if (ExpectedFatal::wayBack != nullptr) std::longjmp(*ExpectedFatal::wayBack, 1);
    std::fprintf(stderr, "fatal: %.*s in %s (%s:%d)\n", static_cast<int>(what.size()), what.data(),
                 where.function, where.file, where.line);
    std::abort();
}
