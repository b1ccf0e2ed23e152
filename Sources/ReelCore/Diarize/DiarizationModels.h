#pragma once

#include "ReelCore/Platform/URL.h"

#include <optional>

namespace ReelCore {

/// Finds the python and the two models (ONNX) that tell voices apart. Asks the environment and the
/// disk anew each time; any thread.
struct DiarizationModels {
    /// "diarization" in the folder of speech models.
    static URL directory();

    URL segmentation() const { return directory() / "segmentation.onnx"; }
    URL embedding() const { return directory() / "embedding.onnx"; }

    /// Where KELDO_PYTHON points, if an executable file stands there, else python3 in the folders
    /// where it is commonly installed. The path as found: an environment's python is a link that
    /// knows its packages only by its own path.
    std::optional<URL> python() const;

    bool modelsPresent() const;

    /// True if there is a python and both models; whether python has the packages shows in a run.
    bool isAvailable() const { return python() && modelsPresent(); }
};

}  // namespace ReelCore
