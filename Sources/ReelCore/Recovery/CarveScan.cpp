#include "ReelCore/Recovery/CardCarver.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/MXFScan.h"
#include "ReelCore/Recovery/OpenSource.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReelCore/Recovery/Signatures.h"

#include <algorithm>
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

/// Follows what begins at the hits of one scan.
class Walks {
public:
    explicit Walks(CarveGround& ground)
        : ground_(ground), movie_(ground), run_(ground), wave_(ground) {}

    std::optional<Finding> from(FindingKind kind, std::int64_t start) {
        ground_.begin(start);
        auto finding = walk(kind, start);
        if (ground_.isCutOff()) finding.reset();
        return finding;
    }

private:
    std::optional<Finding> walk(FindingKind kind, std::int64_t start) {
        switch (kind) {
            case FindingKind::movie:
                return movie_.walk(start);
            case FindingKind::mxf:
                return walkMXF(ground_, start);
            case FindingKind::orphanProRes:
                return run_.walk(start);
            case FindingKind::wave:
                return wave_.walk(start);
        }
        return std::nullopt;
    }

    CarveGround& ground_;
    MovieWalker movie_;
    ProResWalker run_;
    WaveWalker wave_;
};

/// One scan. A chunk is read in pieces that stay in a processor's own cache, and each is searched
/// as it comes.
class Scan {
public:
    Scan(const File& image, std::int64_t total, const std::function<bool()>& isCancelled)
        : image_(image), ground_(image, total, isCancelled), walks_(ground_) {
        // Room that has to grow is held twice. What is never used takes no memory.
        constexpr std::int64_t smallestFinding = 12;
        constexpr std::int64_t manyFindings = 0x1000000;
        findings_.reserve(
            static_cast<std::size_t>(std::min(total / smallestFinding, manyFindings)));
    }

    std::vector<Finding> run(const std::function<void(const CarveProgress&)>& progress) {
        const std::int64_t total = ground_.total();
        std::int64_t position = 0;
        while (position < total && !ground_.askCancelled()) {
            if (!isHole(image_, position, total) && !searchChunk(position)) break;
            position = std::max(position + step, skipUntil_);
            progress({std::min(position, total), total, std::ssize(findings_)});
        }
        return std::move(findings_);
    }

private:
    static constexpr std::int64_t pieceSize = 0x10000;
    /// What a piece shares with the next: no less than the longest signature with what it needs
    /// behind it.
    static constexpr std::int64_t overlap = 32;

    /// False if the image has no bytes there, or the scan was cancelled.
    bool searchChunk(std::int64_t position) {
        const std::int64_t end = position + chunkSize;
        buffer_.resize(pieceSize + overlap);
        for (std::int64_t at = position; at < end; at += pieceSize) {
            readAhead(at);
            const auto wanted = static_cast<std::size_t>(std::min(pieceSize + overlap, end - at));
            const auto into = std::span(buffer_).first(wanted);
            const auto piece = into.first(image_.readAt(at, into));
            if (piece.empty()) return at > position;
            if (at + pieceSize > skipUntil_) searchPiece(piece, at);
            if (ground_.askCancelledInTime()) return false;
        }
        return true;
    }

    /// Keeps the device busy while what it brought is searched, also from one chunk to the next.
    void readAhead(std::int64_t at) {
        constexpr std::int64_t distance = 0x800000;
        constexpr std::int64_t part = 0x100000;
        expected_ = std::max(expected_, at);
        while (expected_ < std::min(at + distance, ground_.total())) {
            image_.expectRead(expected_, part);
            expected_ += part;
        }
    }

    void searchPiece(std::span<const std::byte> piece, std::int64_t at) {
        ground_.hold(piece, at);
        SignatureSearch search(piece);
        search.skipTo(static_cast<std::size_t>(std::max(skipUntil_ - at, std::int64_t{0})));
        while (search.next()) {
            const std::int64_t start = at + static_cast<std::int64_t>(search.hit().offset);
            // A hit in the overlap is the next piece's.
            if (start >= at + pieceSize) break;
            if (start < skipUntil_) continue;
            const auto finding = walks_.from(search.hit().kind, start);
            if (!finding) continue;
            findings_.push_back(*finding);
            skipUntil_ = finding->offset + finding->length;
            search.skipTo(static_cast<std::size_t>(skipUntil_ - at));
        }
    }

    const File& image_;
    CarveGround ground_;
    Walks walks_;
    std::vector<std::byte> buffer_;
    std::vector<Finding> findings_;
    std::int64_t skipUntil_ = 0;
    std::int64_t expected_ = 0;  ///< What lies before it was asked for.
};

}  // namespace

std::optional<Finding> walkMXF(CarveGround& ground, std::int64_t start) {
    constexpr int fewestTriplets = 3;
    int reads = 0;
    const MXFScan::Reader read = [&](std::int64_t offset) {
        if (++reads > fewestTriplets) ground.settle();
        return ground.read(offset, 32);
    };
    const auto walked = MXFScan::walk(read, start, ground.total());
    if (!walked) return std::nullopt;
    return Finding{FindingKind::mxf, start, walked->length, walked->sawFooter};
}

std::vector<Finding> CardCarver::scan(const URL& image, const std::function<bool()>& isCancelled,
                                      const std::function<void(const CarveProgress&)>& progress) {
    const File file = openSource(image);
    const std::int64_t total = file.size();
    if (total == 0) throw RecoveryError(RecoveryError::IOFailed{"image is empty"});
    return Scan(file, total, isCancelled).run(progress);
}

}  // namespace ReelCore
