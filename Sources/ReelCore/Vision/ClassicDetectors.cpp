#include "ReelCore/Vision/ClassicDetectors.h"

#include "ReelCore/Vision/DetectedBoxes.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

namespace ReelCore {

namespace {

constexpr std::array cascadeFolders{"/usr/share/opencv4/haarcascades",
                                    "/usr/local/share/opencv4/haarcascades",
                                    "/opt/homebrew/share/opencv4/haarcascades"};

/// The picture with a longer edge of at most `edge`, in grey, and how many of its pixels are one of
/// that.
std::pair<cv::Mat, double> smallGrey(const cv::Mat& image, int edge) {
    cv::Mat grey;
    cv::cvtColor(image, grey, cv::COLOR_BGR2GRAY);
    const double scale =
        std::max(1.0, static_cast<double>(std::max(image.cols, image.rows)) / edge);
    const auto scaledTo = [&](int length) {
        return std::max(1, static_cast<int>(std::lround(length / scale)));
    };
    cv::resize(grey, grey, {scaledTo(image.cols), scaledTo(image.rows)}, 0, 0, cv::INTER_AREA);
    return {grey, scale};
}

cv::Rect2d scaled(const cv::Rect& box, double scale) {
    return {box.x * scale, box.y * scale, box.width * scale, box.height * scale};
}

class FaceCascade : public Detector {
public:
    bool load(const URL& file) { return cascade_.load(file.native()); }

    std::vector<NormalizedRect> find(const StillImage& image) override {
        const cv::Mat pixels = pixelsOf(image);
        const auto [grey, scale] = smallGrey(pixels, 640);
        cv::equalizeHist(grey, grey);
        std::vector<cv::Rect> faces;
        cascade_.detectMultiScale(grey, faces, 1.1, 4, 0, {24, 24});
        DetectedBoxes boxes(0.0F, 0.3F);
        for (const cv::Rect& face : faces) boxes.add(scaled(face, scale), 1.0F);
        return boxes.within(pixels.size());
    }

private:
    cv::CascadeClassifier cascade_;
};

class PedestrianDetector : public Detector {
public:
    PedestrianDetector() { hog_.setSVMDetector(cv::HOGDescriptor::getDefaultPeopleDetector()); }

    std::vector<NormalizedRect> find(const StillImage& image) override {
        const cv::Mat pixels = pixelsOf(image);
        const auto [grey, scale] = smallGrey(pixels, 640);
        if (grey.cols < hog_.winSize.width || grey.rows < hog_.winSize.height) return {};
        std::vector<cv::Rect> people;
        std::vector<double> scores;
        hog_.detectMultiScale(grey, people, scores, 0.0, {8, 8}, {0, 0}, 1.05);
        DetectedBoxes boxes(threshold, 0.4F);
        for (std::size_t i = 0; i < people.size(); ++i) {
            boxes.add(scaled(people[i], scale), static_cast<float>(scores[i]));
        }
        return boxes.within(pixels.size());
    }

private:
    static constexpr float threshold = 0.5F;

    cv::HOGDescriptor hog_;
};

}  // namespace

std::unique_ptr<Detector> loadFaceCascade() {
    for (const URL folder : cascadeFolders) {
        auto cascade = std::make_unique<FaceCascade>();
        if (cascade->load(folder / "haarcascade_frontalface_alt2.xml")) return cascade;
    }
    return nullptr;
}

std::unique_ptr<Detector> makePedestrianDetector() {
    return std::make_unique<PedestrianDetector>();
}

}  // namespace ReelCore
