#include "ReelCore/Transcode/TranscodeError.h"

#include <fmt/format.h>

namespace ReelCore {

std::string TranscodeErrorCases::InputNotFound::description() const {
    return "Input not found: " + input.native();
}

std::string TranscodeErrorCases::LUTNotFound::description() const {
    return "LUT not found: " + lut.native();
}

std::string TranscodeErrorCases::UnsupportedLUT::description() const {
    return fmt::format("Unsupported LUT type: .{} (use .cube or .3dl)", extension);
}

std::string TranscodeErrorCases::ProbeFailed::description() const {
    return "ffprobe failed: " + reason;
}

std::string TranscodeErrorCases::FFmpegFailed::description() const {
    return fmt::format("ffmpeg failed ({}):\n{}", status, tail);
}

std::string TranscodeErrorCases::FFmpegNotFound::description() const {
    return "ffmpeg not found. Install it (e.g. `brew install ffmpeg`) or set FFMPEG_PATH.";
}

std::string TranscodeErrorCases::Cancelled::description() const {
    return "Transcode cancelled.";
}

}  // namespace ReelCore
