#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Vision/Detector.h"

#include <memory>

namespace ReelCore {

/// Detectors by neural nets (ONNX files); null where the file is missing, is not byte for byte the
/// one that Scripts/install-transcript makes, or OpenCV can't run it, which is seen by trying it
/// once.
std::unique_ptr<Detector> loadBlazeFace(const URL& model);
std::unique_ptr<Detector> loadNanoDet(const URL& model);

}  // namespace ReelCore
