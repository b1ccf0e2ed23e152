#include "ReelCore/Recovery/CardCarver.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/MXFScan.h"
#include "ReelCore/Recovery/OpenSource.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReelCore/Recovery/Signatures.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <span>
#include <utility>

namespace ReelCore {

namespace {

constexpr std::int64_t chunkSize = 0x2000000;
/// A signature that straddles two chunks is seen whole in the second.
constexpr std::int64_t step = chunkSize - 0x10000;

/// True if nothing is stored from a position to the end of its chunk or of the image. What is not
/// stored reads as zeros, in which no media begins.
bool isHole(const File& image, std::int64_t position, std::int64_t total) {
    return image.nextStored(position) >= std::min(position + chunkSize, total);
}

/// Finds the signatures of one chunk. Two threads read it, piece by piece in turns: to look through
/// bytes takes longer than to have them from the file cache or a fast drive. The pieces are small
/// enough to stay in a processor's own cache.
class ChunkSearch {
public:
    ChunkSearch(const File& image, std::int64_t position) : image_(image), position_(position) {}

    /// Absent where the image has no bytes there; offsets are from the chunk's first byte on.
    std::optional<std::vector<Hit>> run() {
        // Without means for a second thread, this one does it all.
        auto other = std::async(std::launch::async | std::launch::deferred,
                                [this] { return searchPieces(); });
        std::vector<Hit> hits = searchPieces();
        const std::vector<Hit> more = other.get();
        if (!foundBytes_) return std::nullopt;
        hits.insert(hits.end(), more.begin(), more.end());
        std::ranges::sort(hits, {}, [](const Hit& hit) { return std::pair(hit.offset, hit.kind); });
        // What lies on the border of two pieces is seen in both.
        hits.erase(std::unique(hits.begin(), hits.end()), hits.end());
        return hits;
    }

private:
    static constexpr std::int64_t pieceSize = 0x40000;
    /// What a piece shares with the next: no less than the longest signature with what it needs
    /// around it.
    static constexpr std::int64_t overlap = 32;

    std::vector<Hit> searchPieces() {
        std::vector<std::byte> buffer(static_cast<std::size_t>(pieceSize + overlap));
        std::vector<Hit> hits;
        for (std::int64_t at = nextPiece(); at < chunkSize; at = nextPiece()) {
            const auto wanted = std::min(pieceSize + overlap, chunkSize - at);
            const auto into = std::span(buffer).first(static_cast<std::size_t>(wanted));
            const auto piece = into.first(image_.readAt(position_ + at, into));
            if (!piece.empty()) foundBytes_ = true;
            for (const Hit& hit : signatureHits(piece)) {
                hits.push_back({static_cast<std::size_t>(at) + hit.offset, hit.kind});
            }
        }
        return hits;
    }

    std::int64_t nextPiece() { return next_.fetch_add(pieceSize); }

    const File& image_;
    const std::int64_t position_;
    std::atomic<std::int64_t> next_ = 0;
    std::atomic<bool> foundBytes_ = false;
};

/// Follows what begins at the hits of one scan.
class Walks {
public:
    Walks(const File& image, std::int64_t total)
        : image_(image),
          total_(total),
          movie_(image, total),
          run_(image, total),
          wave_(image, total) {}

    std::optional<Finding> from(FindingKind kind, std::int64_t start) {
        switch (kind) {
            case FindingKind::movie:
                return movie_.walk(start);
            case FindingKind::mxf:
                return walkMXF(image_, start, total_);
            case FindingKind::orphanProRes:
                return run_.walk(start);
            case FindingKind::wave:
                return wave_.walk(start);
        }
        return std::nullopt;
    }

private:
    const File& image_;
    std::int64_t total_;
    MovieWalker movie_;
    ProResWalker run_;
    WaveWalker wave_;
};

}  // namespace

std::optional<Finding> walkMXF(const File& image, std::int64_t start, std::int64_t total) {
    const auto walked = MXFScan::walk(image, start, total);
    if (!walked) return std::nullopt;
    return Finding{FindingKind::mxf, start, walked->length, walked->sawFooter};
}

std::vector<Finding> CardCarver::scan(const URL& image, const std::function<bool()>& isCancelled,
                                      const std::function<void(const CarveProgress&)>& progress) {
    const File file = openSource(image);
    const std::int64_t total = file.size();
    if (total == 0) throw RecoveryError(RecoveryError::IOFailed{"image is empty"});
    Walks walks(file, total);
    std::vector<Finding> findings;
    std::int64_t position = 0;
    std::int64_t skipUntil = 0;
    while (position < total && !isCancelled()) {
        const auto hits =
            isHole(file, position, total) ? std::vector<Hit>() : ChunkSearch(file, position).run();
        if (!hits) break;
        for (const Hit& hit : *hits) {
            const std::int64_t start = position + static_cast<std::int64_t>(hit.offset);
            if (start < skipUntil) continue;
            const auto finding = walks.from(hit.kind, start);
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
