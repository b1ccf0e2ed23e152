#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Reports/Report.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace ReelCore {

/// Puts a report on paper: a PDF for people and a CSV for spreadsheets. Any thread.
struct ReportRenderer {
    /// Writes the report's files into `directory`, which is made if need be: "pdf" and "csv" in
    /// `formats` ask for one each, anything else is ignored. Files of those names are replaced.
    /// Returns what was written and is on the device, the PDF first. Throws SystemError; a file
    /// written before stays.
    static std::vector<URL> write(const Report& report, const URL& directory,
                                  const std::set<std::string>& formats);

    /// The report as comma-separated values (RFC 4180, but with line feeds alone), in UTF-8
    /// without a byte-order mark.
    static std::string csv(const Report& report);

    /// The report as PDF: US Letter, margins of 48 points, real text, as many pages as it needs.
    static std::vector<std::byte> pdf(const Report& report);
};

}  // namespace ReelCore
