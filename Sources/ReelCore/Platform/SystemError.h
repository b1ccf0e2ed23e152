#pragma once

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/URL.h"

namespace ReelCore {

/// A call of the operating system that failed. The description is the system's own sentence for
/// the code, then, where a path is known, ": " and the path.
class SystemError : public Error {
public:
    explicit SystemError(int code, const URL& path = {});

    /// The `errno` value.
    int code() const noexcept { return code_; }

    /// True if this process has no means left (descriptors, memory, the length of a path): a fault
    /// that says nothing about the drive.
    bool isOwnLimit() const noexcept;

    /// The system's sentence alone, without the path.
    std::string sentence() const;

private:
    int code_;
};

/// Throws a SystemError with the current `errno`.
[[noreturn]] void throwSystemError(const URL& path = {});

}  // namespace ReelCore
