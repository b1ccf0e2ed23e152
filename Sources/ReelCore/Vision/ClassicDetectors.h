#pragma once

#include "ReelCore/Vision/Detector.h"

#include <memory>

namespace ReelCore {

/// OpenCV's own cascade for faces that look at the camera; null where its data are not installed.
std::unique_ptr<Detector> loadFaceCascade();

/// OpenCV's own detector of people who stand upright, by histograms of oriented gradients.
std::unique_ptr<Detector> makePedestrianDetector();

}  // namespace ReelCore
