#include "FakeDetector.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace ReelCore {

namespace {

class FakeDetector : public Detector {
public:
    explicit FakeDetector(std::vector<Boxes> finds) : finds_(std::move(finds)) {}

    Boxes find(const StillImage&) override {
        return finds_.at(std::min(calls_++, finds_.size() - 1));
    }

private:
    std::vector<Boxes> finds_;
    std::size_t calls_ = 0;
};

class FailingDetector : public Detector {
    Boxes find(const StillImage&) override { throw std::runtime_error("no"); }
};

}  // namespace

VisionAnalyzer analyzerThatFinds(std::vector<Boxes> faces, std::vector<Boxes> people) {
    return {std::make_unique<FakeDetector>(std::move(faces)),
            std::make_unique<FakeDetector>(std::move(people))};
}

VisionAnalyzer analyzerThatCounts(const std::vector<std::size_t>& people) {
    std::vector<Boxes> finds;
    for (const std::size_t count : people) finds.emplace_back(count, NormalizedRect{0, 0, 1, 1});
    return analyzerThatFinds({{}}, std::move(finds));
}

VisionAnalyzer analyzerThatFails() {
    return {std::make_unique<FailingDetector>(), std::make_unique<FailingDetector>()};
}

StillImage plainPicture(std::int64_t width, std::int64_t height, std::vector<std::uint8_t> color) {
    StillImage image{width, height, {}};
    for (std::int64_t i = 0; i < width * height; ++i) {
        image.pixels.insert(image.pixels.end(), color.begin(), color.end());
    }
    return image;
}

std::int64_t ownFilesIn(const URL& folder) {
    return std::ranges::count_if(std::filesystem::directory_iterator(folder), [](const auto& one) {
        return one.path().filename().native().starts_with("keldobay-");
    });
}

std::string ffmpegThatGives(const URL& picture) {
    return "for last; do :; done; cp '" + picture.native() + "' \"$last\"";
}

}  // namespace ReelCore
