#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Recovery/CarveWalks.h"

#include <algorithm>
#include <array>

namespace ReelCore {

namespace {

/// A type as the number that its four characters make.
constexpr std::uint32_t code(const char (&type)[5]) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) number = number << 8U | static_cast<unsigned char>(type[i]);
    return number;
}

bool isKnown(std::uint32_t type) {
    switch (type) {
        case code("ftyp"):
        case code("moov"):
        case code("mdat"):
        case code("free"):
        case code("skip"):
        case code("wide"):
        case code("uuid"):
        case code("meta"):
        case code("moof"):
        case code("mfra"):
        case code("pnot"):
            return true;
        default:
            return false;
    }
}

struct Box {
    std::uint32_t type;
    std::uint64_t size;
};

/// The box that `bytes` begin with, `rest` bytes before the image's end; absent where none that a
/// clip can hold does.
std::optional<Box> boxIn(std::span<const std::byte> bytes, std::int64_t rest) {
    ByteCursor cursor(bytes);
    const auto size = cursor.bigEndian<std::uint32_t>();
    const auto type = cursor.bigEndian<std::uint32_t>();
    if (!size || !type || !isKnown(*type)) return std::nullopt;
    Box box{*type, *size};
    if (*size == 0) box.size = static_cast<std::uint64_t>(rest);
    if (*size == 1) box.size = cursor.bigEndian<std::uint64_t>().value_or(0);
    if (box.size < 8 || box.size >> 63U != 0) return std::nullopt;
    return box;
}

}  // namespace

/// The 8 bytes behind a clip are asked for no more than a type of box.
bool MovieWalker::endsAt(std::int64_t offset) {
    ByteCursor head(ground_.read(offset, 8));
    head.skip(4);
    const auto type = head.bigEndian<std::uint32_t>();
    return !type || !isKnown(*type) || *type == code("ftyp");
}

std::optional<Finding> MovieWalker::walk(std::int64_t start) {
    const std::int64_t total = ground_.total();
    std::int64_t position = start;
    std::int64_t boxes = 0;
    bool sawMoov = false;
    bool sawMdat = false;
    bool reachedTail = false;
    const auto upTo = [&](std::int64_t end, bool complete) {
        return Finding{FindingKind::movie, start, end - start, complete};
    };
    ways_.begin(start);
    while (position <= total - 8) {
        if (++boxes > shortWay && !sawMoov && !sawMdat) {
            const std::int64_t further = ways_.pass(position);
            if (further != position) {
                position = further;
                continue;
            }
        }
        const std::int64_t rest = total - position;
        const auto box = boxIn(ground_.read(position, 16), rest);
        if (!box || (box->type == code("ftyp") && position != start)) break;
        sawMoov = sawMoov || box->type == code("moov");
        sawMdat = sawMdat || box->type == code("mdat");
        if (sawMoov || sawMdat) ground_.settle();
        const auto size = static_cast<std::int64_t>(box->size);
        if (size > rest) return upTo(total, false);
        position += size;
        if (sawMoov && sawMdat && endsAt(position)) return upTo(position, true);
        reachedTail = sawMdat;
    }
    if (position != start && (sawMoov || reachedTail)) {
        return upTo(position, sawMoov && reachedTail);
    }
    ways_.end(position);
    return std::nullopt;
}

}  // namespace ReelCore
