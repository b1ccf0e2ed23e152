#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Vision/StillImage.h"

#include <memory>
#include <vector>

namespace ReelCore {

/// A part of a picture, in parts of the picture's width and height from its lower left corner.
struct NormalizedRect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    bool operator==(const NormalizedRect&) const = default;
};

/// Finds things of one kind in pictures. One thread at a time.
class Detector {
public:
    virtual ~Detector() = default;

    /// Where they are, none beyond the picture. May throw for a picture that it can't look at.
    virtual std::vector<NormalizedRect> find(const StillImage& image) = 0;
};

/// The better detectors whose models stand in the folder `models` ("blazeface.onnx" and
/// "nanodet.onnx"), else those that OpenCV brings. Neither fails: a model that can't be used counts
/// as missing, and where OpenCV's own is missing too, nothing is ever found.
std::unique_ptr<Detector> makeFaceDetector(const URL& models);
std::unique_ptr<Detector> makePersonDetector(const URL& models);

}  // namespace ReelCore
