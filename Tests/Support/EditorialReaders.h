#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>
#include <vector>

namespace TestSupport {

/// Timelines and logs as python3 reads them.

/// One attribute of all elements of a name, in order; those that have none are left out
/// (xml.etree).
std::vector<std::string> attributes(const ReelCore::URL& xml, const std::string& element,
                                    const std::string& attribute);

/// The paths that the media of a timeline lie at, byte for byte (urllib.parse). A location that is
/// no "file" URL of this computer shows as "not here: " and the location.
std::vector<std::string> mediaPaths(const ReelCore::URL& fcpxml);

/// Every time of a timeline as "element.attribute" and its number of frames, which is a fraction
/// where the time is on no frame boundary (fractions).
std::vector<std::string> timesInFrames(const ReelCore::URL& fcpxml);

/// The rows of a table with a tab between cells (csv).
std::vector<std::vector<std::string>> readTabbed(const ReelCore::URL& table);

}  // namespace TestSupport
