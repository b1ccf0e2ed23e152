#pragma once

#include "ReelCore/Platform/URL.h"

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

    /// Where programs keep what belongs to this user; it need not be there. $XDG_DATA_HOME, or
    /// where that is no absolute path ".local/share" in the home folder (XDG Base Directory). A
    /// user without a home folder is a fatal fault.
    static URL dataFolder();
};

}  // namespace ReelCore
