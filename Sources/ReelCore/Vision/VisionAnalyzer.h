#pragma once

#include "ReelCore/Vision/Detector.h"
#include "ReelCore/Vision/StillImage.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

/// The one door to the detectors of faces and people and to text recognition. They are loaded when
/// they are first asked, and shared by copies. Any thread; of several at once, one waits for the
/// other. Each operation blocks until it is done. None fails: what can't be looked at shows
/// nothing.
class VisionAnalyzer {
public:
    struct PersonAnalysis {
        std::int64_t count = 0;  ///< Of people; a face alone is none.
        std::int64_t faceCount = 0;
        std::optional<std::string> clothingColor;  ///< Of the tallest person, the first of equals.

        bool operator==(const PersonAnalysis&) const = default;
    };

    /// Red, green and blue from 0 to 1.
    struct Color {
        double r = 0.0;
        double g = 0.0;
        double b = 0.0;

        bool operator==(const Color&) const = default;
    };

    /// With the detectors of this machine.
    VisionAnalyzer();

    /// With other detectors.
    VisionAnalyzer(std::unique_ptr<Detector> faces, std::unique_ptr<Detector> people);

    std::int64_t faceCount(const StillImage& image) const;

    /// The faces or the people, whichever are more: a close-up has a face without a body, a back a
    /// body without a face.
    std::int64_t peopleInFrame(const StillImage& image) const;

    /// The lines of text by their upper edges, the topmost first.
    std::vector<std::string> recognizeText(const StillImage& image) const;

    PersonAnalysis analyzePeople(const StillImage& image) const;

    /// The mean of all pixels, as one pixel of 8 bits a channel can hold it; absent for an empty
    /// picture.
    static std::optional<Color> averageColor(const StillImage& image);

private:
    struct Tools;

    static std::optional<std::string> torsoColor(const StillImage& image,
                                                 const NormalizedRect& personBox);

    std::shared_ptr<Tools> tools_;
};

}  // namespace ReelCore
