#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcribe/TranscriptTypes.h"
#include "ReelCore/Transcribe/WhisperLocator.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace ReelCore {

/// Turns speech into timed text by running whisper-cli. Nothing leaves the machine.
struct WhisperTranscriber {
    /// A line as whisper-cli gives it, in seconds.
    struct TimedText {
        double start = 0.0;
        double end = 0.0;
        std::string text;  ///< Trimmed; never empty.

        bool operator==(const TimedText&) const = default;
    };

    WhisperLocator locator;
    std::optional<URL> modelOverride;  ///< Instead of the located model.

    explicit WhisperTranscriber(std::optional<URL> chosenModel = std::nullopt)
        : modelOverride(std::move(chosenModel)) {}

    bool isAvailable() const { return locator.isAvailable(); }

    /// The lines of a mono WAV in the order of the tool's output, all under one speaker. Blocks
    /// until the tool has ended; it yields to other work on this machine. `isCancelled` is asked on
    /// this thread, about ten times a second.
    ///
    /// The tool leaves its result beside the WAV, named like it and ending in ".json": that folder
    /// must be writable, and what has that name is replaced and gone at the end.
    ///
    /// Throws TranscribeError: WhisperNotFound, ModelNotFound, Cancelled, WhisperFailed with the
    /// last lines that the tool said, ParseFailed; SystemError where the log can't be made, the
    /// tool not be started or its result not be read, as where it gave none; what `parseSegments`
    /// throws.
    std::vector<TranscriptSegment> transcribe(const URL& wav, const std::string& speaker,
                                              const std::function<bool()>& isCancelled) const;

    /// The result of a run with these is `outputBase` and ".json".
    static std::vector<std::string> arguments(const URL& model, const URL& audio,
                                              const URL& outputBase);

    /// The lines of whisper-cli's JSON that have text. A line without an end has no length, one
    /// without times is at 0. Malformed UTF-8 becomes U+FFFD: the tool cuts lines between bytes.
    ///
    /// Throws Error with the parser's own text where this is no JSON, TranscribeError::ParseFailed
    /// where it holds no list of lines.
    static std::vector<TimedText> parseSegments(std::span<const std::byte> data);
};

}  // namespace ReelCore
