#pragma once

#include "ReelCore/Platform/Date.h"
#include "Support/FolderTree.h"

#include <cstdint>
#include <map>
#include <string>

namespace TestSupport {

/// All that a reader could change in one file or folder, and all that it must not.
struct Trace {
    std::uint64_t number = 0;
    std::uint32_t mode = 0;
    std::int64_t size = 0;
    ReelCore::Date modified;
    ReelCore::Date accessed;  ///< Not of a link, which can't be looked at without a trace.
    std::string content;      ///< Of a regular file; the target of a link.

    bool operator==(const Trace&) const = default;
};

/// The traces of a folder ("") and everything below it. Taking it leaves none itself. Needs the
/// files' owner or root.
using Snapshot = std::map<std::string, Trace>;
Snapshot snapshotOf(const ReelCore::URL& folder);

/// Sets the access dates of a folder and everything below it far back, so that the next plain read
/// of any of them shows, also where the system notes access dates sparingly.
void ageAccessDates(const ReelCore::URL& folder);

void setModificationDate(const ReelCore::URL& path, ReelCore::Date date);
ReelCore::Date modificationDate(const ReelCore::URL& path);

}  // namespace TestSupport
