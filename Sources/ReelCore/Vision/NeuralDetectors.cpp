#include "ReelCore/Vision/NeuralDetectors.h"

#include "ReelCore/Hashing/CryptoHasher.h"
#include "ReelCore/Platform/FileBytes.h"
#include "ReelCore/Vision/DetectedBoxes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include <opencv2/dnn.hpp>
#include <opencv2/imgproc.hpp>

namespace ReelCore {

namespace {

/// In bytes; a few times the larger of the two nets.
constexpr std::int64_t largestModel = std::int64_t{64} << 20;

/// The SHA-256 of the files that Scripts/install-transcript makes.
constexpr std::string_view blazeFaceSum =
    "427cbbe0fc41448d09e1dc9cfabe2423d997cf2faaeab91fadd09a510b63b8e2";
constexpr std::string_view nanoDetSum =
    "a3f4797fd0dde00b8836ba367933f8ac84112277474789301275aa697b608453";

class Net {
public:
    explicit Net(std::span<const std::byte> model)
        : net_(
              cv::dnn::readNetFromONNX(reinterpret_cast<const char*>(model.data()), model.size())) {
        net_.setPreferableBackend(cv::dnn::DNN_BACKEND_OPENCV);
        outputs_ = net_.getUnconnectedOutLayersNames();
    }

    std::vector<cv::Mat> run(const cv::Mat& input) {
        net_.setInput(input);
        std::vector<cv::Mat> results;
        net_.forward(results, outputs_);
        return results;
    }

private:
    cv::dnn::Net net_;
    std::vector<std::string> outputs_;
};

/// The result with that many numbers. Throws where there is none.
const float* resultOf(const std::vector<cv::Mat>& results, std::size_t count) {
    for (const cv::Mat& one : results) {
        if (one.total() == count && one.type() == CV_32F && one.isContinuous()) {
            return one.ptr<float>();
        }
    }
    throw std::runtime_error("the net gives other results");
}

float sigmoid(float x) {
    return 1.0F / (1.0F + std::exp(-x));
}

/// The picture in the upper left corner of a black square, scaled to `edge`, and how many of its
/// pixels are one of the square's.
std::pair<cv::Mat, double> squared(const cv::Mat& image, int edge) {
    const double scale = static_cast<double>(std::max(image.cols, image.rows)) / edge;
    const cv::Size size(std::max(1, static_cast<int>(std::lround(image.cols / scale))),
                        std::max(1, static_cast<int>(std::lround(image.rows / scale))));
    cv::Mat square = cv::Mat::zeros(edge, edge, CV_8UC3);
    cv::resize(image, square(cv::Rect(cv::Point(), size)), size, 0, 0,
               scale > 1.0 ? cv::INTER_AREA : cv::INTER_LINEAR);
    return {square, scale};
}

/// BlazeFace for the back camera: 256 by 256 pixels; 896 places where a face may be, each with a
/// score and a box.
class BlazeFace : public Detector {
public:
    explicit BlazeFace(std::span<const std::byte> model) : net_(model) {}

    std::vector<NormalizedRect> find(const StillImage& image) override {
        const cv::Mat pixels = pixelsOf(image);
        const auto [square, scale] = squared(pixels, edge);
        cv::Mat rgb;
        cv::cvtColor(square, rgb, cv::COLOR_BGR2RGB);
        cv::Mat values;
        rgb.convertTo(values, CV_32F, 1.0 / 127.5, -1.0);
        const std::array shape{1, edge, edge, 3};
        const auto results = net_.run(values.reshape(1, {shape.begin(), shape.end()}));

        DetectedBoxes boxes(threshold, overlap);
        addGrid(boxes, results, 16, 2, scale);
        addGrid(boxes, results, 8, 6, scale);
        return boxes.within(pixels.size());
    }

private:
    static constexpr int edge = 256;
    /// A cat's face comes to 0.71, the least sure human one that we have to 0.75.
    static constexpr float threshold = 0.72F;
    static constexpr float overlap = 0.3F;
    static constexpr int numbersOfBox = 16;

    /// The places of a grid of `cells` by `cells`, `each` in a cell.
    static void addGrid(DetectedBoxes& boxes, const std::vector<cv::Mat>& results, int cells,
                        int each, double scale) {
        const auto places = static_cast<std::size_t>(cells * cells * each);
        const float* scores = resultOf(results, places);
        const float* offsets = resultOf(results, places * numbersOfBox);
        for (std::size_t i = 0; i < places; ++i) {
            const float score = sigmoid(scores[i]);
            if (!(score > threshold)) continue;
            const float* box = offsets + i * numbersOfBox;
            const int cell = static_cast<int>(i) / each;
            const double x = (cell % cells + 0.5) * edge / cells + box[0];
            const double y = (cell / cells + 0.5) * edge / cells + box[1];
            boxes.add({(x - box[2] / 2.0) * scale, (y - box[3] / 2.0) * scale, box[2] * scale,
                       box[3] * scale},
                      score);
        }
    }

    Net net_;
};

/// NanoDet: 416 by 416 pixels; three grids, at each place the scores of 80 kinds of things, of
/// which people are the first, and the distances to the four sides, each as odds of 0 to 10 steps.
class NanoDet : public Detector {
public:
    explicit NanoDet(std::span<const std::byte> model) : net_(model) {}

    std::vector<NormalizedRect> find(const StillImage& image) override {
        const cv::Mat pixels = pixelsOf(image);
        const auto [square, scale] = squared(pixels, edge);
        cv::Mat values;
        square.convertTo(values, CV_32F);
        cv::subtract(values, cv::Scalar(103.53, 116.28, 123.675), values);
        cv::divide(values, cv::Scalar(57.375, 57.12, 58.395), values);
        const auto results = net_.run(cv::dnn::blobFromImage(values));

        DetectedBoxes boxes(threshold, overlap);
        for (const int stride : {8, 16, 32}) addGrid(boxes, results, stride, scale);
        return boxes.within(pixels.size());
    }

private:
    static constexpr int edge = 416;
    /// Many who are small or half hidden come to little more; things that are no people mostly stay
    /// below 0.48.
    static constexpr float threshold = 0.5F;
    static constexpr float overlap = 0.5F;
    static constexpr int kinds = 80;
    static constexpr int steps = 11;

    static void addGrid(DetectedBoxes& boxes, const std::vector<cv::Mat>& results, int stride,
                        double scale) {
        const int cells = edge / stride;
        const int places = cells * cells;
        const float* values =
            resultOf(results, static_cast<std::size_t>(places) * (kinds + 4 * steps));
        for (int place = 0; place < places; ++place) {
            const float score = sigmoid(values[place]);
            if (!(score > threshold)) continue;
            std::array<double, 4> sides{};
            const float* odds = values + kinds * places + place;
            for (double& side : sides) {
                side = stride * meanStep(odds, places);
                odds += steps * places;
            }
            const double x = (place % cells + 0.5) * stride;
            const double y = (place / cells + 0.5) * stride;
            boxes.add({(x - sides[0]) * scale, (y - sides[1]) * scale,
                       (sides[0] + sides[2]) * scale, (sides[1] + sides[3]) * scale},
                      score);
        }
    }

    /// The mean of the steps by their odds, which stand `apart` from each other.
    static double meanStep(const float* odds, int apart) {
        float largest = odds[0];
        for (int i = 1; i < steps; ++i) largest = std::max(largest, odds[i * apart]);
        double sum = 0.0;
        double weighted = 0.0;
        for (int i = 0; i < steps; ++i) {
            const double weight = std::exp(odds[i * apart] - largest);
            sum += weight;
            weighted += weight * i;
        }
        return weighted / sum;
    }

    Net net_;
};

bool hasSum(std::span<const std::byte> bytes, std::string_view sum) {
    CryptoHasher hasher(CryptoHasher::Kind::sha256);
    hasher.update(bytes);
    return hasher.finalizeHex() == sum;
}

template <class Found>
std::unique_ptr<Detector> loaded(const URL& model, std::string_view sum) {
    try {
        const auto bytes = bytesOfFile(model, largestModel);
        if (!bytes || !hasSum(*bytes, sum)) return nullptr;
        auto detector = std::make_unique<Found>(*bytes);
        detector->find({1, 1, {0, 0, 0}});
        return detector;
    } catch (const std::exception&) {
        return nullptr;
    }
}

}  // namespace

std::unique_ptr<Detector> loadBlazeFace(const URL& model) {
    return loaded<BlazeFace>(model, blazeFaceSum);
}

std::unique_ptr<Detector> loadNanoDet(const URL& model) {
    return loaded<NanoDet>(model, nanoDetSum);
}

}  // namespace ReelCore
