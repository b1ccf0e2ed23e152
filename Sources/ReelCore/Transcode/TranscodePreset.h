#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ReelCore {

/// One output format for dailies and proxies: the codec arguments that ffmpeg gets. The catalogue
/// is compiled in.
struct TranscodePreset {
    std::string id;
    std::string name;       ///< For people.
    std::string editor;     ///< The edit system that it is for; groups the picker.
    std::string container;  ///< The extension of the output, without a dot.
    std::vector<std::string> videoArgs;
    std::vector<std::string> audioArgs;
    std::optional<std::string> pixelFormat;  ///< What "-pix_fmt" gets.

    bool operator==(const TranscodePreset&) const = default;

    static const TranscodePreset proResProxy;
    static const TranscodePreset proRes422;
    static const TranscodePreset proRes422HQ;
    static const TranscodePreset dnxhrLB;
    static const TranscodePreset dnxhrHQ;
    static const TranscodePreset h264Review;

    /// The six, in the order in which a picker shows them. At any time; the constants are for the
    /// time after the start of `main`.
    static std::span<const TranscodePreset> all();
};

}  // namespace ReelCore
