#pragma once

#include "ReelCore/Reports/Report.h"

#include <string>

namespace TestSupport {

/// The value of a report's first fact of that name.
inline std::string valueOf(const ReelCore::Report& report, const std::string& label) {
    for (const ReelCore::Report::Field& field : report.summary) {
        if (field.label == label) return field.value;
    }
    return "no field " + label;
}

}  // namespace TestSupport
