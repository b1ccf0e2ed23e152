#pragma once

#include "ReelCore/Platform/URL.h"

#include <string_view>

namespace ReelCore {

/// A name in the system's temporary folder that nobody else has: `prefix`, a fresh UUID in upper
/// case, `suffix`. Nothing is made there; what the owner makes is removed at the end, also where
/// the process ends before (see ProcessCleanup), a failure of that being ignored.
class TemporaryPath {
public:
    /// Throws SystemError where the system has no temporary folder, and ECANCELED once the process
    /// is coming to its end.
    TemporaryPath(std::string_view prefix, std::string_view suffix);
    ~TemporaryPath();
    TemporaryPath(const TemporaryPath&) = delete;
    TemporaryPath& operator=(const TemporaryPath&) = delete;

    const URL& url() const { return url_; }

private:
    URL url_;
};

}  // namespace ReelCore
