#include "ReelCore/Platform/SystemError.h"

#include <cerrno>
#include <system_error>

namespace ReelCore {

namespace {

std::string sentenceFor(int code) {
    return std::generic_category().message(code);
}

}  // namespace

SystemError::SystemError(int code, const URL& path)
    : Error(path.empty() ? sentenceFor(code) : sentenceFor(code) + ": " + path.native()),
      code_(code) {}

bool SystemError::isOwnLimit() const noexcept {
    return code_ == EMFILE || code_ == ENFILE || code_ == ENOMEM || code_ == ENAMETOOLONG;
}

std::string SystemError::sentence() const {
    return sentenceFor(code_);
}

void throwSystemError(const URL& path) {
    throw SystemError(errno, path);
}

}  // namespace ReelCore
