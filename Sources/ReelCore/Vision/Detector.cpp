#include "ReelCore/Vision/Detector.h"

#include "ReelCore/Vision/ClassicDetectors.h"
#include "ReelCore/Vision/NeuralDetectors.h"

namespace ReelCore {

namespace {

class BlindDetector : public Detector {
    std::vector<NormalizedRect> find(const StillImage&) override { return {}; }
};

}  // namespace

std::unique_ptr<Detector> makeFaceDetector(const URL& models) {
    if (auto net = loadBlazeFace(models / "blazeface.onnx")) return net;
    if (auto cascade = loadFaceCascade()) return cascade;
    return std::make_unique<BlindDetector>();
}

std::unique_ptr<Detector> makePersonDetector(const URL& models) {
    if (auto net = loadNanoDet(models / "nanodet.onnx")) return net;
    return makePedestrianDetector();
}

}  // namespace ReelCore
