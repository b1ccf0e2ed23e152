#include "ReelCore/Transcribe/WhisperLocator.h"

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/InstalledTool.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Platform/UserAccount.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace ReelCore {

namespace {

/// In the order in which the file system lists them; none where it can't.
std::vector<URL> listedModels() {
    const URL folder = WhisperLocator::modelsDirectory();
    std::vector<URL> models;
    try {
        for (const URL name : FileSystem::names(folder)) {
            if (name.extension() == ".bin") models.push_back(folder / name);
        }
    } catch (const Error&) {
        return {};
    }
    return models;
}

}  // namespace

URL WhisperLocator::modelsDirectory() {
    return UserAccount::dataFolder() / "keldobay" / "models";
}

std::optional<URL> WhisperLocator::whisperCLI() const {
    return installedTool("whisper-cli", "KELDO_WHISPER_CLI");
}

std::optional<URL> WhisperLocator::model() const {
    const char* const named = std::getenv("KELDO_WHISPER_MODEL");
    if (named && FileSystem::leadsSomewhere(named)) return named;
    const std::vector<URL> models = listedModels();
    const auto english = std::ranges::find_if(models, isEnglishOnly);
    if (english != models.end()) return *english;
    return models.empty() ? std::nullopt : std::optional(models.front());
}

std::vector<URL> WhisperLocator::availableModels() const {
    std::vector<std::pair<std::int64_t, URL>> sized;
    for (const URL& model : listedModels()) {
        sized.emplace_back(FileSystem::sizeOf(model).value_or(0), model);
    }
    std::ranges::stable_sort(sized, std::ranges::greater(), &decltype(sized)::value_type::first);
    std::vector<URL> models;
    for (auto& [size, model] : sized) models.push_back(std::move(model));
    return models;
}

bool WhisperLocator::isEnglishOnly(const URL& model) {
    return lastPathComponent(model).find(".en") != std::string::npos;
}

std::string WhisperLocator::displayName(const URL& url) {
    constexpr std::string_view format = "ggml-";
    std::string name = Text::wellFormed(URL(lastPathComponent(url)).stem().native());
    for (std::size_t at = 0; (at = name.find(format, at)) != name.npos;) {
        name.erase(at, format.size());
    }
    return name;
}

}  // namespace ReelCore
