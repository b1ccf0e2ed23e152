#pragma once

#include "ReelCore/Platform/URL.h"
#include "Support/EnvironmentVariable.h"

#include <string>
#include <vector>

namespace TestSupport {

/// The tools and models that Scripts/install-transcript has set up for tests, in the folder that
/// KELDO_TEST_TRANSCRIPT names (./test sets it) or else in the user's cache. As long as the object
/// lives, the environment names them, so that the library finds them as it does a user's.
///
///     if (const auto lack = tools.lack({tools.whisperCLI, tools.englishModel}); !lack.empty())
///         GTEST_SKIP() << lack;
class TranscriptTools {
    const ReelCore::URL dataHome_;
    const ReelCore::URL folder_;

public:
    TranscriptTools();

    const ReelCore::URL whisperCLI;
    const ReelCore::URL englishModel;
    const ReelCore::URL multilingualModel;
    const ReelCore::URL python;             ///< Works under this name only: it is a link.
    const ReelCore::URL diarizationModels;  ///< A folder: segmentation.onnx, embedding.onnx.
    const ReelCore::URL visionModels;       ///< A folder: blazeface.onnx, nanodet.onnx.
    const ReelCore::URL sample;             ///< jfk.wav: 11 s of a speech, 16 kHz mono.

    /// What XDG_DATA_HOME is set to.
    const ReelCore::URL& dataHome() const { return dataHome_; }

    /// Which of the files are not there, as a sentence; empty if all are.
    std::string lack(const std::vector<ReelCore::URL>& files) const;

private:
    EnvironmentVariable data_;
    EnvironmentVariable cli_;
    EnvironmentVariable model_;
    EnvironmentVariable interpreter_;
};

}  // namespace TestSupport
