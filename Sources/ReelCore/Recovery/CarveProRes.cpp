#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/ProResFrame.h"
#include "ReelCore/Recovery/Signatures.h"

#include <algorithm>

namespace ReelCore {

namespace {

constexpr std::int64_t headSize = 8;

}  // namespace

std::optional<Finding> ProResWalker::walk(std::int64_t start) {
    constexpr std::int64_t fewestFrames = 3;
    std::int64_t frames = 0;
    std::int64_t lastFrame = 0;
    std::int64_t position = start;
    while (position <= ground_.total() - headSize) {
        if (const std::int64_t size = frameAt(position)) {
            if (++frames == fewestFrames) ground_.settle();
            lastFrame = position;
            position += size;
        } else {
            position = nextFrame(start, position);
        }
    }
    if (frames < fewestFrames) return std::nullopt;
    return Finding{FindingKind::orphanProRes, start, lastFrame - start, false};
}

/// The size of the whole frame that begins at an offset; 0 where none does.
std::int64_t ProResWalker::frameAt(std::int64_t offset) {
    const std::int64_t size = proResFrameSize(ground_.read(offset, headSize)).value_or(0);
    const bool isWhole = size >= smallestProResFrame && size <= largestProResFrame &&
                         size <= ground_.total() - offset;
    return isWhole ? size : 0;
}

/// Sound may lie between two frames, up to 8 MiB with the next frame's head. Blocks are searched
/// from their beginning on, so that what is known of one holds for every place in it. The image's
/// end where no frame follows.
std::int64_t ProResWalker::nextFrame(std::int64_t start, std::int64_t from) {
    constexpr std::int64_t widestGap = 0x800000;
    const std::int64_t end = std::min(from + widestGap, ground_.total()) - headSize;
    const std::int64_t block = from - from % blockSize;
    if (block != skippedFrom_) skippedFrom_ = skippedTo_ = block;
    skippedTo_ = skipFrameless(start, skippedTo_, end);
    std::int64_t at = skippedTo_;
    if (at < from) {
        at = searchBlock(from).value_or(from);
        if (at == block + blockSize) at = skipFrameless(start, at, end);
    }
    return at >= from && at <= end && frameAt(at) > 0 ? at : ground_.total();
}

/// The first frame that begins in a block or in one behind it; where none does up to `end`, or what
/// follows can't be read, how far that is known. It is known of a place within a block.
std::int64_t ProResWalker::skipFrameless(std::int64_t start, std::int64_t from, std::int64_t end) {
    std::int64_t at = from;
    if (at > end || at % blockSize != 0) return at;
    frameless_.begin(start);
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
    const auto bytes = read(from, std::min(blockEnd + headSize - 1, ground_.total()));
    if (bytes.empty()) return std::nullopt;
    SignatureSearch search(bytes);
    std::int64_t frame = blockEnd;
    while (frame == blockEnd && search.next()) {
        const auto& [offset, kind] = search.hit();
        const std::int64_t at = from + static_cast<std::int64_t>(offset);
        if (kind == FindingKind::orphanProRes && frameAt(at) > 0) frame = at;
    }
    ground_.pay(frame - from);
    return frame;
}

/// The bytes of a range, which ends where its block does; nothing where they can't be read. The
/// frames of a run follow each other through a block that is read once.
std::span<const std::byte> ProResWalker::read(std::int64_t from, std::int64_t end) {
    if (end != heldEnd_ || from < heldFrom_) {
        buffer_.resize(blockSize + headSize);
        const auto wanted = std::span(buffer_).first(static_cast<std::size_t>(end - from));
        const bool isWhole = ground_.read(from, wanted).size() == wanted.size();
        heldFrom_ = from;
        heldEnd_ = isWhole ? end : from;
    }
    const auto held = static_cast<std::size_t>(heldEnd_ - heldFrom_);
    return std::span(buffer_).first(held).subspan(static_cast<std::size_t>(from - heldFrom_));
}

}  // namespace ReelCore
