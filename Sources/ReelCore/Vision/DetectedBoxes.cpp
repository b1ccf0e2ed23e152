#include "ReelCore/Vision/DetectedBoxes.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/dnn.hpp>

namespace ReelCore {

void DetectedBoxes::add(const cv::Rect2d& box, float score) {
    const std::array numbers{box.x, box.y, box.width, box.height};
    if (!std::ranges::all_of(numbers, [](double one) { return std::isfinite(one); })) return;
    boxes_.push_back(box);
    scores_.push_back(score);
}

std::vector<NormalizedRect> DetectedBoxes::within(cv::Size size) const {
    std::vector<int> kept;
    cv::dnn::NMSBoxes(boxes_, scores_, threshold_, overlap_, kept);
    const cv::Rect2d picture(0, 0, size.width, size.height);
    std::vector<NormalizedRect> found;
    for (const int i : kept) {
        const cv::Rect2d box = boxes_[static_cast<std::size_t>(i)] & picture;
        if (box.empty()) continue;
        found.push_back({box.x / size.width, 1.0 - (box.y + box.height) / size.height,
                         box.width / size.width, box.height / size.height});
    }
    return found;
}

}  // namespace ReelCore
