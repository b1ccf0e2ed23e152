#pragma once

#include "ReelCore/Platform/URL.h"

#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

/// Finds whisper-cli and its speech models (ggml files). Asks the environment and the disk anew
/// each time; any thread.
struct WhisperLocator {
    /// Where models stand: "keldobay/models" in the user's application data; it need not be there.
    static URL modelsDirectory();

    /// Where KELDO_WHISPER_CLI points, if an executable file stands there, else in the folders
    /// where it is commonly installed. Never on the search path.
    std::optional<URL> whisperCLI() const;

    /// The model that is used when none was chosen: where KELDO_WHISPER_MODEL points, if a file
    /// stands there, else of the models directory the first listed that is English only, else the
    /// first listed.
    std::optional<URL> model() const;

    /// The models in the models directory, largest first; those of one size in listing order.
    std::vector<URL> availableModels() const;

    /// True if there is a tool and a model.
    bool isAvailable() const { return whisperCLI() && model(); }

    /// True if a model knows English only, by its name.
    static bool isEnglishOnly(const URL& model);

    /// A model's name for people: "base.en" for "ggml-base.en.bin".
    static std::string displayName(const URL& url);
};

}  // namespace ReelCore
