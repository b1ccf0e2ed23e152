#pragma once

#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Reports/Report.h"

#include <string>
#include <vector>

namespace TestSupport {

/// 2026-03-01 14:05:09 UTC.
ReelCore::Date sampleDate();

/// One file with an outcome on each destination.
ReelCore::FileVerification sampleFile(const std::string& relativePath, std::int64_t size,
                                      const std::vector<bool>& matches = {true, true});

/// A run of reel A001 from /media/CARD to the drives RAID and SHUTTLE that took one minute.
ReelCore::OffloadResult sampleOffload(std::vector<ReelCore::FileVerification> files);

/// A report with two facts and a table of so many files, CLIP/C00000.MXF and on.
ReelCore::Report reportWithRows(int count);

}  // namespace TestSupport
