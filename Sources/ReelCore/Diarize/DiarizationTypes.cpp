#include "ReelCore/Diarize/DiarizationTypes.h"

#include <fmt/format.h>

namespace ReelCore {

std::string DiarizeErrorCases::SherpaNotInstalled::description() const {
    return "sherpa-onnx not available: " + reason +
           "\nInstall with: python3 -m pip install --user sherpa-onnx numpy";
}

std::string DiarizeErrorCases::InputNotFound::description() const {
    return "Audio not found: " + input.native();
}

std::string DiarizeErrorCases::Failed::description() const {
    return fmt::format("Diarization failed ({}):\n{}", status, tail);
}

std::string DiarizeErrorCases::PythonNotFound::description() const {
    return "python3 not found (needed for local diarization).";
}

std::string DiarizeErrorCases::ModelsMissing::description() const {
    return "Diarization models missing. Place segmentation.onnx and embedding.onnx in "
           "~/Library/Application Support/keldobay/models/diarization.";
}

}  // namespace ReelCore
