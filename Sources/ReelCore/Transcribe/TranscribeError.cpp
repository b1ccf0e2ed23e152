#include "ReelCore/Transcribe/TranscribeError.h"

#include <fmt/format.h>

namespace ReelCore {

std::string TranscribeErrorCases::InputNotFound::description() const {
    return "Input not found: " + input.native();
}

std::string TranscribeErrorCases::ExtractionFailed::description() const {
    return "Audio extraction failed: " + reason;
}

std::string TranscribeErrorCases::WhisperFailed::description() const {
    return fmt::format("whisper-cli failed ({}):\n{}", status, tail);
}

std::string TranscribeErrorCases::ParseFailed::description() const {
    return "Could not parse Whisper output: " + reason;
}

std::string TranscribeErrorCases::WhisperNotFound::description() const {
    return "whisper-cli not found. Install it (e.g. `brew install whisper-cpp`).";
}

std::string TranscribeErrorCases::ModelNotFound::description() const {
    return "No Whisper model found. Download one (e.g. ggml-base.en.bin) into "
           "~/Library/Application "
           "Support/keldobay/models or set KELDO_WHISPER_MODEL.";
}

std::string TranscribeErrorCases::FFmpegNotFound::description() const {
    return "ffmpeg not found (needed to extract audio tracks).";
}

std::string TranscribeErrorCases::NoSpeakers::description() const {
    return "Add at least one speaker track.";
}

std::string TranscribeErrorCases::Cancelled::description() const {
    return "Transcription cancelled.";
}

}  // namespace ReelCore
