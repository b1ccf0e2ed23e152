#include "ReelCore/Recovery/BoxHeader.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/ImagePiece.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace ReelCore {

namespace {

bool isKnown(const BoxHeader& box) {
    static constexpr std::array<std::string_view, 11> types{
        "ftyp", "moov", "mdat", "free", "skip", "wide", "uuid", "meta", "moof", "mfra", "pnot"};
    return box.type && std::ranges::find(types, *box.type) != types.end();
}

std::optional<BoxHeader> boxAt(const File& image, std::int64_t offset) {
    std::array<std::byte, 16> bytes;
    return BoxHeader::read(readPiece(image, offset, bytes));
}

/// The 8 bytes behind a clip are asked for no more than a type of box.
bool endsAt(const File& image, std::int64_t offset) {
    std::array<std::byte, 8> bytes;
    const auto head = readPiece(image, offset, bytes);
    if (head.size() < bytes.size()) return true;
    const std::string_view type(reinterpret_cast<const char*>(head.data()) + 4, 4);
    const BoxHeader next{0, 8, boxType(type)};
    return !isKnown(next) || next.type == "ftyp";
}

class MovieWalk {
public:
    MovieWalk(const File& image, std::int64_t start, std::int64_t total)
        : image_(image), start_(start), total_(total), position_(start) {}

    std::optional<Finding> run() {
        while (position_ <= total_ - 8) {
            const auto box = boxAt(image_, position_);
            if (!box || !isKnown(*box)) break;
            if (box->type == "ftyp" && position_ != start_) break;
            const bool isImpossible = box->size >> 63U != 0;
            const bool toTheEnd = box->size == 0 && box->headerSize == 8;
            const auto rest = static_cast<std::uint64_t>(total_ - position_);
            const std::uint64_t size = toTheEnd ? rest : box->size;
            if (size < 8 || isImpossible) break;
            sawMoov_ = sawMoov_ || box->type == "moov";
            sawMdat_ = sawMdat_ || box->type == "mdat";
            if (size > rest) return Finding{FindingKind::movie, start_, total_ - start_, false};
            position_ += static_cast<std::int64_t>(size);
            if (sawMoov_ && sawMdat_ && endsAt(image_, position_)) return found(true);
            reachedTail_ = sawMdat_;
        }
        if (position_ == start_ || !(sawMoov_ || reachedTail_)) return std::nullopt;
        return found(sawMoov_ && reachedTail_);
    }

private:
    Finding found(bool complete) const {
        return {FindingKind::movie, start_, position_ - start_, complete};
    }

    const File& image_;
    std::int64_t start_;
    std::int64_t total_;
    std::int64_t position_;
    bool sawMoov_ = false;
    bool sawMdat_ = false;
    bool reachedTail_ = false;
};

}  // namespace

std::optional<Finding> walkMovie(const File& image, std::int64_t start, std::int64_t total) {
    return MovieWalk(image, start, total).run();
}

}  // namespace ReelCore
