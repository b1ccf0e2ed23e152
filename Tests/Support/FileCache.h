#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>

namespace TestSupport {

/// Bytes of a file that the operating system's file cache holds now.
std::int64_t cachedBytes(const ReelCore::URL& file);

}  // namespace TestSupport
