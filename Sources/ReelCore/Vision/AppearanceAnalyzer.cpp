#include "ReelCore/Vision/AppearanceAnalyzer.h"

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/TemporaryPath.h"

namespace ReelCore {

namespace {

/// Null for a speaker without a line.
const TranscriptSegment* longestLine(const std::string& speaker,
                                     std::span<const TranscriptSegment> segments) {
    const auto length = [](const TranscriptSegment& one) {
        return one.endSeconds - one.startSeconds;
    };
    const TranscriptSegment* longest = nullptr;
    for (const TranscriptSegment& one : segments) {
        if (one.speaker != speaker) continue;
        if (!longest || length(one) > length(*longest)) longest = &one;
    }
    return longest;
}

}  // namespace

std::optional<AppearanceHint> AppearanceAnalyzer::analyze(
    const URL& url, const std::string& speaker, std::span<const TranscriptSegment> segments,
    const Timecode& startTimecode, const std::function<bool()>& isCancelled) const try {
    const TranscriptSegment* line = longestLine(speaker, segments);
    if (!line || !isAvailable() || isCancelled()) return std::nullopt;
    const double middle = (line->startSeconds + line->endSeconds) * 0.5;
    const std::string timecode = startTimecode.adding(middle).formatted();

    const TemporaryPath folder("keldobay-appear-", "");
    const auto image = grabber.still(url, middle, folder.url());
    if (!image) return std::nullopt;
    const auto people = vision.analyzePeople(*image);
    return AppearanceHint{speaker, timecode, people.count, people.faceCount, people.clothingColor};
} catch (const Error&) {
    return std::nullopt;
}

}  // namespace ReelCore
