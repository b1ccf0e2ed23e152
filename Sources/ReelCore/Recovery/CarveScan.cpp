#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/CardCarver.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/MXFScan.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReelCore/Recovery/Signatures.h"

#include <algorithm>
#include <span>

namespace ReelCore {

namespace {

constexpr std::int64_t chunkSize = 0x2000000;
/// A signature that straddles two chunks is seen whole in the second.
constexpr std::int64_t step = chunkSize - 0x10000;

File openImage(const URL& image) {
    try {
        return File::openForReading(image, FileLinks::follow);
    } catch (const SystemError&) {
        throw RecoveryError(RecoveryError::NotFound{image});
    }
}

/// Finds the signatures of one chunk. Reads it in pieces that stay in the processor's cache, which
/// is faster than to fetch them from memory again.
class ChunkSearch {
public:
    explicit ChunkSearch(const File& image) : image_(image), buffer_(overlap + pieceSize) {}

    /// Absent where the image has no bytes there; offsets are from `position` on.
    std::optional<std::vector<Hit>> hitsAt(std::int64_t position) {
        std::vector<Hit> hits;
        std::size_t held = 0;
        for (std::size_t done = 0; done < chunkSize; done += pieceSize) {
            const auto piece = std::span(buffer_).subspan(held, pieceSize);
            const std::size_t count =
                image_.readAt(position + static_cast<std::int64_t>(done), piece);
            if (count == 0 && done == 0) return std::nullopt;
            const auto window = std::span(buffer_).first(held + count);
            for (const Hit& hit : signatureHits(window)) {
                hits.push_back({done - held + hit.offset, hit.kind});
            }
            if (count < pieceSize) break;
            held = overlap;
            std::ranges::copy(window.last(held), buffer_.begin());
        }
        std::ranges::stable_sort(hits, {}, &Hit::offset);
        hits.erase(std::unique(hits.begin(), hits.end()), hits.end());
        return hits;
    }

private:
    static constexpr std::size_t pieceSize = 0x40000;
    /// No less than the longest signature with the size in front of it.
    static constexpr std::size_t overlap = 32;
    static_assert(chunkSize % pieceSize == 0);

    const File& image_;
    std::vector<std::byte> buffer_;
};

std::optional<Finding> walk(FindingKind kind, const File& image, std::int64_t start,
                            std::int64_t total) {
    switch (kind) {
        case FindingKind::movie:
            return walkMovie(image, start, total);
        case FindingKind::mxf:
            return walkMXF(image, start, total);
        case FindingKind::orphanProRes:
            return walkProResRun(image, start, total);
        case FindingKind::wave:
            return walkWave(image, start, total);
    }
    return std::nullopt;
}

}  // namespace

std::optional<Finding> walkMXF(const File& image, std::int64_t start, std::int64_t total) {
    const auto walked = MXFScan::walk(image, start, total);
    if (!walked) return std::nullopt;
    return Finding{FindingKind::mxf, start, walked->length, walked->sawFooter};
}

std::vector<Finding> CardCarver::scan(const URL& image, const std::function<bool()>& isCancelled,
                                      const std::function<void(const CarveProgress&)>& progress) {
    const File file = openImage(image);
    const std::int64_t total = file.size();
    if (total == 0) throw RecoveryError(RecoveryError::IOFailed{"image is empty"});
    ChunkSearch search(file);
    std::vector<Finding> findings;
    std::int64_t position = 0;
    std::int64_t skipUntil = 0;
    while (position < total && !isCancelled()) {
        const auto hits = search.hitsAt(position);
        if (!hits) break;
        for (const Hit& hit : *hits) {
            const std::int64_t start = position + static_cast<std::int64_t>(hit.offset);
            if (start < skipUntil) continue;
            const auto finding = walk(hit.kind, file, start, total);
            if (!finding) continue;
            findings.push_back(*finding);
            skipUntil = finding->offset + finding->length;
        }
        position = std::max(position + step, skipUntil);
        progress({std::min(position, total), total, std::ssize(findings)});
    }
    return findings;
}

}  // namespace ReelCore
