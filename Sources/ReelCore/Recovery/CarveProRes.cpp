#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/ProResFrame.h"
#include "ReelCore/Recovery/Signatures.h"

#include <algorithm>
#include <string_view>

namespace ReelCore {

namespace {

constexpr std::int64_t headSize = 8;

}  // namespace

std::optional<Finding> ProResWalker::walk(std::int64_t start) {
    constexpr std::int64_t fewestFrames = 3;
    std::int64_t frames = 0;
    std::int64_t lastFrame = 0;
    std::optional<std::int64_t> position = start;
    while (position && *position <= ground_.total() - headSize) {
        if (const auto size = frameAt(*position)) {
            if (++frames == fewestFrames) ground_.settle();
            lastFrame = *position;
            *position += *size;
        } else {
            position = nextFrame(start, *position);
        }
    }
    if (frames < fewestFrames) return std::nullopt;
    return Finding{FindingKind::orphanProRes, start, lastFrame - start, false};
}

bool ProResWalker::isFrameSize(std::optional<std::int64_t> size, std::int64_t offset) const {
    return size && *size >= smallestProResFrame && *size <= largestProResFrame &&
           *size <= ground_.total() - offset;
}

std::optional<std::int64_t> ProResWalker::frameAt(std::int64_t offset) {
    const auto size = proResFrameSize(ground_.read(offset, headSize));
    if (!isFrameSize(size, offset)) return std::nullopt;
    return size;
}

/// Sound may lie between two frames, up to 8 MiB with the next frame's head. Blocks are searched
/// from their beginning on, so that what is known of one holds for every place in it.
std::optional<std::int64_t> ProResWalker::nextFrame(std::int64_t start, std::int64_t from) {
    constexpr std::int64_t widestGap = 0x800000;
    const std::int64_t end = std::min(from + widestGap, ground_.total()) - headSize;
    const std::int64_t block = from - from % blockSize;
    std::int64_t at = skipFrameless(start, block, end);
    if (at < from) {
        at = searchBlock(from).value_or(from);
        if (at == block + blockSize) at = skipFrameless(start, at, end);
    }
    if (at < from || at > end || !frameAt(at)) return std::nullopt;
    return at;
}

/// The first frame that begins in a block or in one behind it; where none does up to `end`, or what
/// follows can't be read, how far that is known.
std::int64_t ProResWalker::skipFrameless(std::int64_t start, std::int64_t block, std::int64_t end) {
    frameless_.begin(start);
    std::int64_t at = block;
    while (at <= end && at % blockSize == 0) {
        const std::int64_t further = frameless_.pass(at);
        if (further != at) {
            at = further;
            continue;
        }
        const auto searched = searchBlock(at);
        if (!searched || *searched == at) break;
        at = *searched;
    }
    frameless_.end(at);
    return at;
}

/// Where a frame first begins at or behind a place in its block, or else the block's end; absent
/// where it can't be read.
std::optional<std::int64_t> ProResWalker::searchBlock(std::int64_t from) {
    const std::int64_t blockEnd = from - from % blockSize + blockSize;
    const std::int64_t wanted = std::min(blockEnd + headSize - 1, ground_.total()) - from;
    buffer_.resize(blockSize + headSize);
    const auto bytes =
        ground_.read(from, std::span(buffer_).first(static_cast<std::size_t>(wanted)));
    if (std::ssize(bytes) < wanted) return std::nullopt;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (auto tag = text.find(proResTag, 4); tag != text.npos;
         tag = text.find(proResTag, tag + 1)) {
        const std::int64_t frame = from + static_cast<std::int64_t>(tag) - 4;
        if (isFrameSize(proResFrameSize(bytes.subspan(tag - 4)), frame)) return frame;
    }
    return blockEnd;
}

}  // namespace ReelCore
