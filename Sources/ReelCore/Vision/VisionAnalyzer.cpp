#include "ReelCore/Vision/VisionAnalyzer.h"

#include "ReelCore/Transcribe/WhisperLocator.h"
#include "ReelCore/Vision/ColorNamer.h"
#include "ReelCore/Vision/TextRecognizer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <mutex>
#include <utility>

#include <opencv2/core/utility.hpp>

namespace ReelCore {

namespace {

/// Whole pixels from the upper left corner; the ends are not part of it.
struct PixelRect {
    std::int64_t left;
    std::int64_t top;
    std::int64_t right;
    std::int64_t bottom;
};

/// The middle half of a person's width, from 45 to 70 % of the height, rounded outward. Where
/// people wear what they are told from others by.
PixelRect torsoOf(const NormalizedRect& person, const StillImage& image) {
    const auto w = static_cast<double>(image.width);
    const auto h = static_cast<double>(image.height);
    const double left = person.x + person.width * 0.25;
    const double width = person.width * 0.5;
    const double bottom = person.y + person.height * 0.45;
    const double top = person.y + person.height * 0.7;
    const double x = left * w;
    const double y = (1.0 - top) * h;
    const auto whole = [](double value) { return static_cast<std::int64_t>(value); };
    return {whole(std::floor(x)), whole(std::floor(y)), whole(std::ceil(x + width * w)),
            whole(std::ceil(y + (top - bottom) * h))};
}

/// What of the rectangle is in the picture; empty if nothing is.
StillImage cropped(const StillImage& image, PixelRect rect) {
    rect.left = std::clamp<std::int64_t>(rect.left, 0, image.width);
    rect.right = std::clamp<std::int64_t>(rect.right, rect.left, image.width);
    rect.top = std::clamp<std::int64_t>(rect.top, 0, image.height);
    rect.bottom = std::clamp<std::int64_t>(rect.bottom, rect.top, image.height);
    StillImage crop{rect.right - rect.left, rect.bottom - rect.top, {}};
    for (std::int64_t y = rect.top; y < rect.bottom; ++y) {
        const auto row = image.pixels.begin() + (y * image.width + rect.left) * 3;
        crop.pixels.insert(crop.pixels.end(), row, row + crop.width * 3);
    }
    return crop;
}

bool isWhole(const StillImage& image) {
    return image.width > 0 && image.height > 0 &&
           image.pixels.size() == static_cast<std::size_t>(image.width * image.height * 3);
}

}  // namespace

/// What looks at pictures, made when it is first asked.
struct VisionAnalyzer::Tools {
    std::mutex mutex;
    std::unique_ptr<Detector> faces;
    std::unique_ptr<Detector> people;
    std::unique_ptr<TextRecognizer> text;

    std::vector<NormalizedRect> findFaces(const StillImage& image) {
        return find(faces, makeFaceDetector, image);
    }

    std::vector<NormalizedRect> findPeople(const StillImage& image) {
        return find(people, makePersonDetector, image);
    }

private:
    std::vector<NormalizedRect> find(std::unique_ptr<Detector>& detector,
                                     std::unique_ptr<Detector> (*make)(const URL& models),
                                     const StillImage& image) {
        if (!isWhole(image)) return {};
        const std::lock_guard lock(mutex);
        try {
            if (!detector) detector = make(WhisperLocator::modelsDirectory() / "vision");
            return detector->find(image);
        } catch (const std::exception&) {
            return {};
        }
    }
};

VisionAnalyzer::VisionAnalyzer() : tools_(std::make_shared<Tools>()) {
    static std::once_flag isSet;  // OpenCV must not be at work when it is
    std::call_once(isSet, [] { cv::setNumThreads(1); });
}

VisionAnalyzer::VisionAnalyzer(std::unique_ptr<Detector> faces, std::unique_ptr<Detector> people)
    : VisionAnalyzer() {
    tools_->faces = std::move(faces);
    tools_->people = std::move(people);
}

std::int64_t VisionAnalyzer::faceCount(const StillImage& image) const {
    return std::ssize(tools_->findFaces(image));
}

std::int64_t VisionAnalyzer::peopleInFrame(const StillImage& image) const {
    return std::max(std::ssize(tools_->findPeople(image)), std::ssize(tools_->findFaces(image)));
}

std::vector<std::string> VisionAnalyzer::recognizeText(const StillImage& image) const {
    if (!isWhole(image)) return {};
    const std::lock_guard lock(tools_->mutex);
    try {
        if (!tools_->text) tools_->text = makeTextRecognizer();
        std::vector<TextLine> lines = tools_->text->read(image);
        std::ranges::stable_sort(lines, {}, &TextLine::top);
        std::vector<std::string> texts;
        for (TextLine& line : lines) texts.push_back(std::move(line.text));
        return texts;
    } catch (const std::exception&) {
        return {};
    }
}

VisionAnalyzer::PersonAnalysis VisionAnalyzer::analyzePeople(const StillImage& image) const {
    PersonAnalysis analysis;
    const std::vector<NormalizedRect> people = tools_->findPeople(image);
    analysis.faceCount = faceCount(image);
    analysis.count = std::ssize(people);
    if (people.empty()) return analysis;
    const auto tallest = std::ranges::max_element(people, {}, &NormalizedRect::height);
    analysis.clothingColor = torsoColor(image, *tallest);
    return analysis;
}

std::optional<std::string> VisionAnalyzer::torsoColor(const StillImage& image,
                                                      const NormalizedRect& personBox) {
    const PixelRect torso = torsoOf(personBox, image);
    if (torso.right - torso.left < 2 || torso.bottom - torso.top < 2) return std::nullopt;
    const auto color = averageColor(cropped(image, torso));
    if (!color) return std::nullopt;
    return ColorNamer::name(color->r, color->g, color->b);
}

std::optional<VisionAnalyzer::Color> VisionAnalyzer::averageColor(const StillImage& image) {
    if (!isWhole(image)) return std::nullopt;
    std::array<double, 3> sums{};
    for (std::size_t i = 0; i < image.pixels.size(); ++i) sums[i % 3] += image.pixels[i];
    const auto pixels = static_cast<double>(image.width * image.height);
    const auto mean = [&](double sum) { return std::round(sum / pixels) / 255.0; };
    return Color{mean(sums[2]), mean(sums[1]), mean(sums[0])};
}

}  // namespace ReelCore
