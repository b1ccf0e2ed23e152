#pragma once

#include "ReelCore/Vision/VisionTypes.h"

#include <string>
#include <vector>

namespace ReelCore {

/// Reads a slate's fields out of recognised text. Pure; any thread.
struct SlateParser {
    /// The fields that the lines give, by a fixed list of patterns over all lines at once: a label
    /// and its value may stand on two lines. Nothing is corrected or checked: a misread digit
    /// stays. Never fails.
    static SlateInfo parse(const std::vector<std::string>& lines);
};

}  // namespace ReelCore
