#pragma once

#include "Support/TranscriptTools.h"

#include <string>

namespace ReelCore {

/// Where the tests' nets stand.
inline URL detectorModels() {
    return TestSupport::TranscriptTools().visionModels;
}

/// Why there are none; empty where there are.
inline std::string detectorModelsMissing() {
    const TestSupport::TranscriptTools tools;
    return tools.lack({tools.visionModels / "blazeface.onnx", tools.visionModels / "nanodet.onnx"});
}

}  // namespace ReelCore
