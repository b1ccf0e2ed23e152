#include "ReelCore/Recovery/BoxHeader.h"
#include "ReelCore/Recovery/CarveWalks.h"

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

std::optional<BoxHeader> boxAt(ImagePages& pages, std::int64_t offset) {
    std::array<std::byte, 16> bytes;
    return BoxHeader::read(pages.read(offset, bytes));
}

}  // namespace

/// The 8 bytes behind a clip are asked for no more than a type of box.
bool MovieWalker::endsAt(std::int64_t offset) {
    std::array<std::byte, 8> bytes;
    const auto head = pages_.read(offset, bytes);
    if (head.size() < bytes.size()) return true;
    const std::string_view type(reinterpret_cast<const char*>(head.data()) + 4, 4);
    const BoxHeader next{0, 8, boxType(type)};
    return !isKnown(next) || next.type == "ftyp";
}

std::optional<Finding> MovieWalker::walk(std::int64_t start) {
    deadEnds_.forgetBefore(start);
    std::int64_t position = start;
    bool sawMoov = false;
    bool sawMdat = false;
    bool reachedTail = false;
    const auto upTo = [&](std::int64_t end, bool complete) {
        return Finding{FindingKind::movie, start, end - start, complete};
    };
    while (position <= total_ - 8) {
        if (position != start && !sawMoov && !sawMdat) {
            if (deadEnds_.contains(position)) return std::nullopt;
            // If it proves to be none it is part of a finding, and no walk comes by again.
            deadEnds_.insert(position);
        }
        const auto box = boxAt(pages_, position);
        if (!box || !isKnown(*box)) break;
        if (box->type == "ftyp" && position != start) break;
        const bool isImpossible = box->size >> 63U != 0;
        const bool toTheEnd = box->size == 0 && box->headerSize == 8;
        const auto rest = static_cast<std::uint64_t>(total_ - position);
        const std::uint64_t size = toTheEnd ? rest : box->size;
        if (size < 8 || isImpossible) break;
        sawMoov = sawMoov || box->type == "moov";
        sawMdat = sawMdat || box->type == "mdat";
        if (size > rest) return upTo(total_, false);
        position += static_cast<std::int64_t>(size);
        if (sawMoov && sawMdat && endsAt(position)) return upTo(position, true);
        reachedTail = sawMdat;
    }
    if (position == start || !(sawMoov || reachedTail)) return std::nullopt;
    return upTo(position, sawMoov && reachedTail);
}

}  // namespace ReelCore
