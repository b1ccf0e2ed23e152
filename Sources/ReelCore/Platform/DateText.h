#pragma once

#include "ReelCore/Platform/Date.h"

#include <string>

namespace ReelCore {

/// Dates as text, in the Gregorian calendar. Safe from any thread.
struct DateText {
    /// "yyyy-MM-dd HH:mm:ss" in the local time zone.
    static std::string localDateTime(Date date);

    /// "yyyy-MM-dd" in the local time zone.
    static std::string localDay(Date date);

    /// ISO 8601 internet date and time in UTC without fractions: "2026-03-01T14:05:09Z".
    static std::string utc(Date date);
};

}  // namespace ReelCore
