#pragma once

#include <string>

namespace ReelCore {

/// Who runs this process, and where. Read at each call; safe from any thread.
struct UserAccount {
    /// The account's login name, or "unknown".
    static std::string loginName();

    /// The account's display name, or its login name where it has none.
    static std::string fullName();

    /// This computer's name, or "unknown".
    static std::string hostName();
};

}  // namespace ReelCore
