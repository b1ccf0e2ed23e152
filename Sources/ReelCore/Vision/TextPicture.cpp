#include "ReelCore/Vision/TextPicture.h"

#include "ReelCore/Vision/DetectedBoxes.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>

namespace ReelCore {

namespace {

using Corners = std::vector<cv::Point2f>;

/// In pixels; the width at which the writing of a slate is large enough to be read.
constexpr int readableWidth = 1600;

cv::Mat scaledTo(const cv::Mat& grey, int width) {
    cv::Mat scaled;
    const double scale = static_cast<double>(width) / std::max(grey.cols, grey.rows);
    cv::resize(grey, scaled, {}, scale, scale, scale < 1.0 ? cv::INTER_AREA : cv::INTER_CUBIC);
    return scaled;
}

/// From the upper left one clockwise.
Corners ordered(const Corners& corners) {
    const auto sum = [](cv::Point2f p) { return p.x + p.y; };
    const auto difference = [](cv::Point2f p) { return p.x - p.y; };
    return {*std::ranges::min_element(corners, {}, sum),
            *std::ranges::max_element(corners, {}, difference),
            *std::ranges::max_element(corners, {}, sum),
            *std::ranges::min_element(corners, {}, difference)};
}

/// The four corners of a shape that has as many; empty for any other.
Corners cornersOf(const std::vector<cv::Point>& contour) {
    std::vector<cv::Point> hull;
    cv::convexHull(contour, hull);
    std::vector<cv::Point> corners;
    cv::approxPolyDP(hull, corners, 0.03 * cv::arcLength(hull, true), true);
    if (corners.size() != 4) return {};
    const double area = cv::contourArea(corners);
    const bool isFilled = cv::contourArea(contour) > 0.9 * area;
    const bool isWhole = isFilled && area > 0.95 * cv::contourArea(hull);
    return isWhole ? ordered(Corners(corners.begin(), corners.end())) : Corners();
}

bool areClose(const Corners& a, const Corners& b) {
    return std::ranges::equal(a, b,
                              [](cv::Point2f p, cv::Point2f q) { return cv::norm(p - q) < 8; });
}

/// Four-cornered shapes in a small picture, at most two. Where a board ends does not hang on what
/// is called light: the shape that is the same at the most levels wins, a large one over a small
/// one. A light board is looked for without its dark lines, a dark one without its light lines.
std::vector<Corners> boardsIn(const cv::Mat& small) {
    const double least = 0.03 * small.cols * small.rows;
    const double most = 0.95 * small.cols * small.rows;
    const cv::Mat line = cv::Mat::ones(7, 7, CV_8U);
    struct Board {
        Corners corners;
        double weight;
    };
    std::vector<Board> boards;
    const auto look = [&](const cv::Mat& mask) {
        std::vector<std::vector<cv::Point>> contours;
        cv::findContours(mask, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);
        for (const auto& contour : contours) {
            const double area = cv::contourArea(contour);
            if (area < least || area > most) continue;
            const Corners corners = cornersOf(contour);
            if (corners.empty()) continue;
            const auto same = std::ranges::find_if(
                boards, [&](const Board& one) { return areClose(one.corners, corners); });
            if (same == boards.end()) {
                boards.push_back({corners, area});
            } else {
                same->weight += area;
            }
        }
    };
    cv::Mat light;
    cv::Mat dark;
    cv::morphologyEx(small, light, cv::MORPH_CLOSE, line);
    cv::morphologyEx(small, dark, cv::MORPH_OPEN, line);
    for (int level = 25; level < 256; level += 25) {
        look(light > level);
        look(dark > level);
    }
    std::ranges::stable_sort(boards, std::greater(), &Board::weight);
    std::vector<Corners> best;
    for (const Board& board : boards) {
        if (best.size() < 2) best.push_back(board.corners);
    }
    return best;
}

/// The four-cornered part of a picture as seen from the front, as wide as can be read.
cv::Mat frontOf(const cv::Mat& grey, const Corners& board) {
    const Corners& from = board;
    const double width = std::max(cv::norm(from[1] - from[0]), cv::norm(from[2] - from[3]));
    const double height = std::max(cv::norm(from[3] - from[0]), cv::norm(from[2] - from[1]));
    const double scale = readableWidth / std::max(width, height);
    const cv::Size size(static_cast<int>(width * scale), static_cast<int>(height * scale));
    const auto w = static_cast<float>(size.width);
    const auto h = static_cast<float>(size.height);
    const Corners to{{0, 0}, {w, 0}, {w, h}, {0, h}};
    cv::Mat front;
    cv::warpPerspective(grey, front, cv::getPerspectiveTransform(to, from), size,
                        cv::INTER_CUBIC | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
    return front;
}

/// By how much the picture's long lines are tilted, in degrees; 0 if it has none.
double tiltOf(const cv::Mat& grey) {
    cv::Mat edges;
    cv::Canny(grey, edges, 50, 150);
    std::vector<cv::Vec4i> lines;
    cv::HoughLinesP(edges, lines, 1, CV_PI / 720, 80, grey.cols / 8.0, 8);
    std::vector<std::pair<double, double>> angles;  // with the length of the line
    double total = 0.0;
    for (const auto& line : lines) {
        const double x = line[2] - line[0];
        const double y = line[3] - line[1];
        const double angle = std::atan2(y, x) * 180.0 / CV_PI;
        if (std::abs(angle) > 30.0) continue;
        angles.emplace_back(angle, std::hypot(x, y));
        total += angles.back().second;
    }
    std::ranges::sort(angles);
    double sum = 0.0;
    for (const auto& [angle, length] : angles) {
        sum += length;
        if (sum >= total / 2.0) return angle;
    }
    return 0.0;
}

cv::Mat straightened(const cv::Mat& grey, double degrees) {
    const cv::Point2f middle(static_cast<float>(grey.cols) / 2.0F,
                             static_cast<float>(grey.rows) / 2.0F);
    const double scale = static_cast<double>(readableWidth) / std::max(grey.cols, grey.rows);
    cv::Mat turn = cv::Mat::eye(3, 3, CV_64F);
    cv::getRotationMatrix2D(middle, degrees, 1.0).copyTo(turn.rowRange(0, 2));
    const cv::Mat enlarge = (cv::Mat_<double>(3, 3) << scale, 0, 0, 0, scale, 0, 0, 0, 1);
    cv::Mat straight;
    cv::warpPerspective(grey, straight, enlarge * turn,
                        {static_cast<int>(grey.cols * scale), static_cast<int>(grey.rows * scale)},
                        scale < 1.0 ? cv::INTER_AREA : cv::INTER_CUBIC, cv::BORDER_REPLICATE);
    return straight;
}

/// Dark writing on light ground. Writing is less than its ground: the few pixels that stand out
/// from what is around them are darker on a light slate and lighter on a dark one.
cv::Mat darkOnLight(const cv::Mat& grey) {
    cv::Mat result;
    cv::medianBlur(grey, result, 3);
    cv::Mat small;
    cv::resize(result, small, {}, 0.25, 0.25, cv::INTER_AREA);
    cv::Mat ground;
    cv::medianBlur(small, ground, 41);
    if (cv::mean(small)[0] > cv::mean(ground)[0]) cv::bitwise_not(result, result);
    cv::normalize(result, result, 0, 255, cv::NORM_MINMAX);
    return result;
}

/// Paints over what is long and thin or goes far through the picture, and numbers what it parts.
void removeRulings(cv::Mat& grey, cv::Mat& cells) {
    cv::Mat dark;
    cv::adaptiveThreshold(grey, dark, 255, cv::ADAPTIVE_THRESH_GAUSSIAN_C, cv::THRESH_BINARY_INV,
                          51, 12);
    cv::Mat across;
    cv::Mat down;
    // Longer than any stroke of a letter.
    cv::morphologyEx(dark, across, cv::MORPH_OPEN, cv::Mat::ones(1, grey.cols / 9, CV_8U));
    cv::morphologyEx(dark, down, cv::MORPH_OPEN, cv::Mat::ones(grey.rows / 7 + 1, 1, CV_8U));
    cv::Mat rulings;
    cv::max(across, down, rulings);
    cv::dilate(rulings, rulings, cv::Mat::ones(7, 7, CV_8U));

    cv::Mat rest;
    cv::bitwise_and(dark, ~rulings, rest);
    cv::Mat labels;
    cv::Mat stats;
    cv::Mat centres;
    const int count = cv::connectedComponentsWithStats(rest, labels, stats, centres);
    for (int i = 1; i < count; ++i) {
        const bool isLong = stats.at<int>(i, cv::CC_STAT_WIDTH) > grey.cols / 3 ||
                            stats.at<int>(i, cv::CC_STAT_HEIGHT) > grey.rows / 2;
        if (isLong) rulings.setTo(255, labels == i);
    }
    const cv::Mat paper = grey.clone();
    cv::Mat small;
    cv::resize(paper, small, {}, 0.125, 0.125, cv::INTER_AREA);
    cv::dilate(small, small, cv::Mat::ones(5, 5, CV_8U));
    cv::Mat ground;
    cv::resize(small, ground, grey.size(), 0, 0, cv::INTER_LINEAR);
    ground.copyTo(grey, rulings);
    cv::connectedComponents(255 - rulings, cells, 4, CV_32S);
}

TextPicture finished(const cv::Mat& grey) {
    TextPicture picture{darkOnLight(grey), {}};
    removeRulings(picture.grey, picture.cells);
    return picture;
}

}  // namespace

int TextPicture::cellAt(double x, double y) const {
    return cells.at<int>(std::clamp(static_cast<int>(y), 0, cells.rows - 1),
                         std::clamp(static_cast<int>(x), 0, cells.cols - 1));
}

std::pair<cv::Mat, cv::Point> TextPicture::valueBeside(const PlacedText& label) const {
    const cv::Mat mask = cells == label.cell;
    const cv::Rect box = cv::boundingRect(mask);
    if (label.cell == 0 || box.area() > 0.4 * grey.size().area()) return {};
    cv::Mat cell(box.size(), CV_8U, cv::Scalar(255));
    grey(box).copyTo(cell, mask(box));
    const double margin = 0.3 * label.height();
    const cv::Rect text(cv::Point2d(label.left - margin, label.top - margin),
                        cv::Point2d(label.right + margin, label.bottom + margin));
    const cv::Rect inside = (text - box.tl()) & cv::Rect({}, box.size());
    cell(inside).setTo(255);

    cv::Mat labels;
    cv::Mat stats;
    cv::Mat centres;
    const int count = cv::connectedComponentsWithStats(cell < 128, labels, stats, centres);
    cv::Rect value;
    for (int i = 1; i < count; ++i) {
        const cv::Rect piece(stats.at<int>(i, cv::CC_STAT_LEFT), stats.at<int>(i, cv::CC_STAT_TOP),
                             stats.at<int>(i, cv::CC_STAT_WIDTH),
                             stats.at<int>(i, cv::CC_STAT_HEIGHT));
        if (piece.height > 0.7 * label.height()) value |= piece;
    }
    if (value.empty()) return {};
    constexpr int border = 20;
    cv::Mat framed;
    cv::copyMakeBorder(cell(value), framed, border, border, border, border, cv::BORDER_CONSTANT,
                       255);
    return {framed, box.tl() + value.tl() - cv::Point(border, border)};
}

std::vector<TextPicture> TextPicture::of(const StillImage& image) {
    cv::Mat grey;
    cv::cvtColor(pixelsOf(image), grey, cv::COLOR_BGR2GRAY);
    std::vector<TextPicture> pictures;
    constexpr int smallWidth = 640;
    const cv::Mat small = scaledTo(grey, smallWidth);
    const float scale = static_cast<float>(grey.cols) / static_cast<float>(small.cols);
    for (Corners& board : boardsIn(small)) {
        for (cv::Point2f& corner : board) corner *= scale;
        pictures.push_back(finished(frontOf(grey, board)));
    }
    pictures.push_back(finished(straightened(grey, tiltOf(small))));
    return pictures;
}

}  // namespace ReelCore
