#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <map>
#include <string>

namespace TestSupport {

/// A file with these pieces at these places, holes between them, and a hole behind up to `size`: a
/// large file that takes no room. Throws SystemError where the file system can't hold it.
void writeSparse(const ReelCore::URL& path, const std::map<std::int64_t, std::string>& pieces,
                 std::int64_t size);

}  // namespace TestSupport
