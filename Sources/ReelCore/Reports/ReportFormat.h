#pragma once

#include "ReelCore/Platform/Date.h"

#include <cstdint>
#include <string>

namespace ReelCore {

/// A byte count for paper, in powers of 1024 up to TB: "512 B", "1.50 KB". Below 1024, also below
/// zero, it stays in bytes.
std::string humanBytes(std::int64_t bytes);

/// A date for paper: "yyyy-MM-dd HH:mm:ss" in the local time zone.
std::string dateTime(Date date);

/// The tool that made a report, by name and version.
std::string toolOnPaper();

}  // namespace ReelCore
