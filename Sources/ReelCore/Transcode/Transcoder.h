#pragma once

#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Transcode/TranscodeTypes.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ReelCore {

/// Makes dailies and proxies by driving ffmpeg. Holds no state of a job and may be used again; each
/// operation blocks the thread that calls it for as long as its child runs.
class Transcoder {
public:
    /// A cancel has two strengths. Once `isCancelled` says so, ffmpeg is asked to end and may take
    /// the time that it needs to close the clip, which makes what is there playable; from then on
    /// `mustEndNow` is asked, for a person who does not want to wait for that: it is killed, and
    /// what is there may not be playable. Both may be asked often, and always on the thread of
    /// `run`.
    explicit Transcoder(
        std::function<bool()> isCancelled = [] { return false; },
        std::function<bool()> mustEndNow = [] { return false; });

    bool isFFmpegAvailable() const { return locator.isAvailable(); }

    /// The length of a clip in seconds. Throws TranscodeError: FFmpegNotFound where there is no
    /// ffprobe, ProbeFailed where it gives no finite number; SystemError where it can't be started.
    double probeDuration(const URL& url) const;

    /// Transcodes one clip and returns once ffmpeg has ended. Writes to the request's outputURL or,
    /// where that is taken, to the next free name, which it takes for itself before ffmpeg starts:
    /// nothing is replaced, whoever else writes to that folder. Makes the folder.
    /// `progress` is called on this thread with each of ffmpeg's reports.
    ///
    /// Throws TranscodeError: FFmpegNotFound, InputNotFound, LUTNotFound, UnsupportedLUT before
    /// anything is made; Cancelled once `isCancelled` says so, which is seen within a tenth of a
    /// second, and ffmpeg has ended, or within a tenth of a second more once `mustEndNow` says so;
    /// FFmpegFailed with the last 8 lines of what ffmpeg said, also where it calls a clip done that
    /// a failing or full drive cut short (status 0). Throws SystemError where the folder can't be
    /// made, no name in it be taken or ffmpeg not be started. A partial output is left where it is,
    /// but none that is empty. On no way out does ffmpeg run on, or a file of ours stay in the
    /// temporary folder.
    TranscodeResult run(const TranscodeRequest& request,
                        const std::function<void(const TranscodeProgress&)>& progress) const;

    /// The text in the quotes of an ffmpeg filter option. ffmpeg takes the quotes off once but
    /// reads the text twice, so not every text comes through: see `run` for how a LUT's path does.
    static std::string filterQuote(std::string_view text);

    /// The LUT first, then a scale into a square box of that edge, to even numbers of pixels.
    /// Absent if there is neither.
    static std::optional<std::string> filterChain(const std::optional<LUT>& lut,
                                                  std::optional<std::int64_t> scaleLongEdge);

    /// What ffmpeg is called with. `output` stands in for the request's outputURL.
    static std::vector<std::string> arguments(const TranscodeRequest& request,
                                              const std::optional<URL>& output = std::nullopt);

    /// Reads one of ffmpeg's reports. `totalSeconds` is the length of the clip, 0 if unknown.
    static TranscodeProgress parseProgress(const std::map<std::string, std::string>& fields,
                                           double totalSeconds);

    const FFmpegLocator locator{};
    std::function<bool()> isCancelled;
    std::function<bool()> mustEndNow;
};

}  // namespace ReelCore
