#pragma once

#include "ReelCore/Vision/Detector.h"
#include "ReelCore/Vision/StillImage.h"

#include <vector>

#include <opencv2/core.hpp>

namespace ReelCore {

/// The picture for OpenCV, which views its pixels and must not change them.
inline cv::Mat pixelsOf(const StillImage& image) {
    return {static_cast<int>(image.height), static_cast<int>(image.width), CV_8UC3,
            const_cast<std::uint8_t*>(image.pixels.data())};
}

/// What a detector takes for its finds, in pixels, before the same thing found twice is one.
class DetectedBoxes {
public:
    /// `overlap` is the part of two boxes' union from which on both are of one thing.
    DetectedBoxes(float threshold, float overlap) : threshold_(threshold), overlap_(overlap) {}

    /// Passes over a box that is not finite.
    void add(const cv::Rect2d& box, float score);

    /// Each thing once, the surest first, without what is beyond a picture of that size.
    std::vector<NormalizedRect> within(cv::Size size) const;

private:
    float threshold_;
    float overlap_;
    std::vector<cv::Rect2d> boxes_;
    std::vector<float> scores_;
};

}  // namespace ReelCore
