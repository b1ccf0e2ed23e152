#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/ImagePiece.h"
#include "ReelCore/Recovery/ProResFrame.h"
#include "ReelCore/Recovery/Signatures.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace ReelCore {

namespace {

constexpr std::int64_t headSize = 8;

}  // namespace

std::optional<Finding> ProResWalker::walk(std::int64_t start) {
    constexpr std::int64_t fewestFrames = 3;
    frameless_.forgetBefore(start);
    std::int64_t frames = 0;
    std::int64_t lastFrame = 0;
    std::optional<std::int64_t> position = start;
    while (position && *position <= total_ - headSize) {
        if (const auto size = frameAt(*position)) {
            ++frames;
            lastFrame = *position;
            *position += *size;
        } else {
            position = nextFrame(*position);
        }
    }
    if (frames < fewestFrames) return std::nullopt;
    return Finding{FindingKind::orphanProRes, start, lastFrame - start, false};
}

bool ProResWalker::isFrameSize(std::optional<std::int64_t> size, std::int64_t offset) const {
    return size && *size >= smallestProResFrame && *size <= largestProResFrame &&
           *size <= total_ - offset;
}

std::optional<std::int64_t> ProResWalker::frameAt(std::int64_t offset) {
    std::array<std::byte, headSize> bytes;
    const auto size = proResFrameSize(pages_.read(offset, bytes));
    if (!isFrameSize(size, offset)) return std::nullopt;
    return size;
}

/// Sound may lie between two frames, up to 8 MiB with the next frame's head. It is read by pieces
/// that grow: most often the next frame is near.
std::optional<std::int64_t> ProResWalker::nextFrame(std::int64_t from) {
    constexpr std::int64_t widestGap = 0x800000;
    constexpr std::size_t smallestPiece = 4096;
    constexpr std::size_t largestPiece = 0x40000;
    constexpr std::int64_t worthRemembering = 4096;
    buffer_.resize(largestPiece);
    const std::int64_t end = std::min(from + widestGap, total_);
    std::int64_t at = frameless_.endAround(from);
    for (std::size_t size = smallestPiece; at <= end - headSize;
         size = std::min(4 * size, largestPiece)) {
        // Also what lies behind the gap, or the next one would be read byte by byte.
        const auto wanted = std::min(size, static_cast<std::size_t>(total_ - at));
        const auto piece = readPiece(image_, at, std::span(buffer_).first(wanted));
        if (std::ssize(piece) < headSize) break;
        const std::string_view text(reinterpret_cast<const char*>(piece.data()), piece.size());
        for (auto tag = text.find(proResTag, 4); tag != text.npos;
             tag = text.find(proResTag, tag + 1)) {
            const std::int64_t frame = at + static_cast<std::int64_t>(tag) - 4;
            if (!isFrameSize(proResFrameSize(piece.subspan(tag - 4)), frame)) continue;
            if (frame - from >= worthRemembering) frameless_.add(from, frame);
            return frame <= end - headSize ? std::optional(frame) : std::nullopt;
        }
        // A frame may begin at the end of one piece and have its tag in the next.
        at += std::ssize(piece) - headSize + 1;
    }
    if (at - from >= worthRemembering) frameless_.add(from, at);
    return std::nullopt;
}

}  // namespace ReelCore
