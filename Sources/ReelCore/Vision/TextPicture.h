#pragma once

#include "ReelCore/Vision/StillImage.h"
#include "ReelCore/Vision/TextLayout.h"

#include <utility>
#include <vector>

#include <opencv2/core.hpp>

namespace ReelCore {

/// A picture made ready for text recognition: dark writing on light ground, upright, without ruling
/// lines.
struct TextPicture {
    cv::Mat grey;   ///< 8 bits.
    cv::Mat cells;  ///< For each pixel the number of the table's cell that it is in; CV_32S.

    /// Which cell a place is in; the place is taken into the picture.
    int cellAt(double x, double y) const;

    /// What a cell of a table holds beside its label, and where the upper left corner of that is;
    /// empty if there is nothing, or the cell is too large to be one.
    std::pair<cv::Mat, cv::Point> valueBeside(const PlacedText& label) const;

    /// The boards that are in the picture, the largest first and at most two, and at last the whole
    /// picture.
    static std::vector<TextPicture> of(const StillImage& image);
};

}  // namespace ReelCore
