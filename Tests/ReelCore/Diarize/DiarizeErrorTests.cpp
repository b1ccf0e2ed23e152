#include "ReelCore/Diarize/DiarizationTypes.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

TEST(DiarizeError, Texts) {
    EXPECT_EQ(DiarizeError(DiarizeError::SherpaNotInstalled{"no module"}).description(),
              "sherpa-onnx not available: no module\n"
              "Install with: python3 -m pip install --user sherpa-onnx numpy");
    EXPECT_EQ(DiarizeError(DiarizeError::InputNotFound{"/a b/mix.wav"}).description(),
              "Audio not found: /a b/mix.wav");
    EXPECT_EQ(DiarizeError(DiarizeError::Failed{255, "a\nb"}).description(),
              "Diarization failed (255):\na\nb");
    EXPECT_EQ(DiarizeError(DiarizeError::PythonNotFound{}).description(),
              "python3 not found (needed for local diarization).");
    EXPECT_EQ(DiarizeError(DiarizeError::ModelsMissing{}).description(),
              "Diarization models missing. Place segmentation.onnx and embedding.onnx in "
              "~/Library/Application Support/keldobay/models/diarization.");
}

TEST(DiarizationOptions, UnlessToldOtherwise_TheThresholdDecides) {
    EXPECT_EQ(DiarizationOptions().numSpeakers, std::nullopt);
    EXPECT_EQ(DiarizationOptions().threshold, 0.5);
}

}  // namespace

}  // namespace ReelCore
