#include "ReelCore/Transcribe/WhisperTranscriber.h"

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/FileBytes.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Platform/ToolLog.h"
#include "ReelCore/Transcode/MediaQuery.h"
#include "ReelCore/Transcribe/TranscribeError.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>

#include <nlohmann/json.hpp>

namespace ReelCore {

namespace {

using nlohmann::json;

constexpr std::chrono::milliseconds betweenLooks(100);

/// The tool's result, which is there for one call only.
class Result {
public:
    explicit Result(URL path) : path_(std::move(path)) { remove(); }
    ~Result() { remove(); }
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;

    std::vector<std::byte> read() const {
        constexpr auto anything = std::numeric_limits<std::int64_t>::max();
        return *bytesOfFile(path_, anything);
    }

private:
    void remove() const {
        std::error_code ignored;
        if (!FileSystem::isFolder(path_)) std::filesystem::remove(path_, ignored);
    }

    URL path_;
};

void run(const URL& whisper, const std::vector<std::string>& arguments,
         const std::function<bool()>& isCancelled) {
    const ToolLog log("keldo-whisper-");
    // Its threads would wait for each other by counting, which takes what they have yielded.
    RunningChild child(whisper, arguments, {.error = ChildStream::file(log.file())},
                       {.environment = {{"OMP_WAIT_POLICY", "passive"}}, .yields = true});
    do {
        if (!isCancelled()) continue;
        child.end();
        throw TranscribeError(TranscribeError::Cancelled{});
    } while (!child.waitForEnd(betweenLooks));
    const int status = child.wait();
    if (status != 0) {
        throw TranscribeError(TranscribeError::WhisperFailed{status, log.complaints().tail()});
    }
}

/// What stands under a key of an object; null where there is no such.
const json& valueOf(const json& object, const char* key) {
    static const json null;
    const auto found = object.find(key);
    return found == object.end() ? null : *found;
}

double numberOr(const json& value, double otherwise) {
    return value.is_number() ? value.get<double>() : otherwise;
}

/// whisper-cli writes control characters as they are, which JSON does not allow within texts.
json parse(std::string text) {
    std::ranges::replace_if(
        text, [](char one) { return static_cast<unsigned char>(one) < 0x20; }, ' ');
    // Nothing that is looked at stands deeper; what does is not kept.
    constexpr int deepest = 8;
    try {
        return json::parse(
            text, [](int depth, json::parse_event_t, const json&) { return depth < deepest; });
    } catch (const json::exception& failure) {
        throw Error(Text::wellFormed(failure.what()));
    }
}

}  // namespace

std::vector<TranscriptSegment> WhisperTranscriber::transcribe(
    const URL& wav, const std::string& speaker, const std::function<bool()>& isCancelled) const {
    const auto whisper = locator.whisperCLI();
    if (!whisper) throw TranscribeError(TranscribeError::WhisperNotFound{});
    const auto model = modelOverride ? modelOverride : locator.model();
    if (!model) throw TranscribeError(TranscribeError::ModelNotFound{});
    const URL audio = toolPath(wav);
    URL outputBase = audio;
    outputBase.replace_extension();
    URL resultPath = outputBase;
    resultPath += ".json";
    if (resultPath == audio || resultPath == *model) throw SystemError(EINVAL, resultPath);
    const Result result(std::move(resultPath));

    run(*whisper, arguments(toolPath(*model), audio, outputBase), isCancelled);

    std::vector<TranscriptSegment> segments;
    for (TimedText& line : parseSegments(result.read())) {
        segments.push_back({speaker, line.start, line.end, std::move(line.text)});
    }
    return segments;
}

std::vector<std::string> WhisperTranscriber::arguments(const URL& model, const URL& audio,
                                                       const URL& outputBase) {
    const char* const language = WhisperLocator::isEnglishOnly(model) ? "en" : "auto";
    return {"-m",     model.native(), "-f",  audio.native(),     "-l",
            language, "-oj",          "-of", outputBase.native()};
}

std::vector<WhisperTranscriber::TimedText> WhisperTranscriber::parseSegments(
    std::span<const std::byte> data) {
    const json document =
        parse(Text::wellFormed({reinterpret_cast<const char*>(data.data()), data.size()}));
    const json& lines = document.is_object() ? valueOf(document, "transcription") : document;
    const auto isObject = [](const json& line) { return line.is_object(); };
    if (!document.is_object() || !lines.is_array() || !std::ranges::all_of(lines, isObject)) {
        throw TranscribeError(TranscribeError::ParseFailed{"missing 'transcription' array"});
    }
    std::vector<TimedText> result;
    for (const json& line : lines) {
        const json& text = valueOf(line, "text");
        std::string trimmed =
            text.is_string() ? Text::trimmed(text.get_ref<const std::string&>()) : "";
        if (trimmed.empty()) continue;
        const json& offsets = valueOf(line, "offsets");
        const double from = offsets.is_object() ? numberOr(valueOf(offsets, "from"), 0.0) : 0.0;
        const double to = offsets.is_object() ? numberOr(valueOf(offsets, "to"), from) : 0.0;
        result.push_back({from / 1000.0, to / 1000.0, std::move(trimmed)});
    }
    return result;
}

}  // namespace ReelCore
