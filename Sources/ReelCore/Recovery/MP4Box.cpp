#include "ReelCore/Recovery/MP4Box.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Recovery/BoxHeader.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace ReelCore {

namespace {

/// The children that stand in a container's body, each with its own bytes still whole.
struct RawBox {
    std::string type;
    std::span<const std::byte> payload;
};

std::vector<RawBox> boxesIn(std::span<const std::byte> body) {
    std::vector<RawBox> boxes;
    while (const auto header = BoxHeader::read(body)) {
        const auto headerSize = static_cast<std::uint64_t>(header->headerSize);
        if (header->size < headerSize || header->size > body.size()) break;
        const auto size = static_cast<std::size_t>(header->size);
        boxes.push_back({header->type.value_or(""), body.first(size).subspan(headerSize)});
        body = body.subspan(size);
    }
    return boxes;
}

std::shared_ptr<MP4Box> parseBox(const std::string& type, std::span<const std::byte> payload,
                                 int levelsLeft) {
    if (!MP4Box::containers.contains(type)) {
        return std::make_shared<MP4Box>(type, MP4Box::Bytes(payload.begin(), payload.end()),
                                        MP4Box::Children());
    }
    MP4Box::Children children;
    if (levelsLeft > 0) {
        for (const RawBox& child : boxesIn(payload)) {
            children.push_back(parseBox(child.type, child.payload, levelsLeft - 1));
        }
    }
    return std::make_shared<MP4Box>(type, MP4Box::Bytes(), std::move(children));
}

constexpr std::uint64_t plainHeaderSize = 8;

/// What the size field of a box counts. A type of no characters takes no bytes, but is counted.
std::uint64_t countedSize(const MP4Box& box) {
    if (!box.isContainer()) return plainHeaderSize + box.payload.size();
    std::uint64_t size = plainHeaderSize;
    for (const auto& child : box.children) size += countedSize(*child) - 4 + child->type.size();
    return size;
}

void append(MP4Box::Bytes& bytes, std::string_view text) {
    const auto more = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void append(MP4Box::Bytes& bytes, const MP4Box& box) {
    if (!boxType(box.type)) fatal("a box whose type is not ASCII");
    const std::uint64_t size = countedSize(box);
    for (unsigned shift = 32; shift > 0; shift -= 8) {
        bytes.push_back(static_cast<std::byte>(size >> (shift - 8) & 0xFFU));
    }
    append(bytes, box.type);
    if (box.isContainer()) {
        for (const auto& child : box.children) append(bytes, *child);
    } else {
        bytes.insert(bytes.end(), box.payload.begin(), box.payload.end());
    }
}

}  // namespace

const std::set<std::string, std::less<>> MP4Box::containers{"moov", "trak", "mdia", "minf",
                                                            "stbl", "edts", "udta"};

MP4Box::MP4Box(std::string itsType, Bytes itsPayload, Children itsChildren)
    : type(std::move(itsType)), payload(std::move(itsPayload)), children(std::move(itsChildren)) {}

std::shared_ptr<MP4Box> MP4Box::parse(const std::string& type, std::span<const std::byte> payload) {
    constexpr int levels = 32;
    return parseBox(type, payload, levels);
}

MP4Box::Bytes MP4Box::serialize() const {
    const std::uint64_t size = countedSize(*this);
    if (size > std::numeric_limits<std::uint32_t>::max()) throw OutOfRange();
    Bytes bytes;
    bytes.reserve(static_cast<std::size_t>(size));
    append(bytes, *this);
    return bytes;
}

std::shared_ptr<MP4Box> MP4Box::first(const std::vector<std::string_view>& path) const {
    std::shared_ptr<MP4Box> reached;
    const Children* level = &children;
    for (const std::string_view step : path) {
        const auto found =
            std::ranges::find_if(*level, [&](const auto& child) { return child->type == step; });
        if (found == level->end()) return nullptr;
        reached = *found;
        level = &reached->children;
    }
    return reached;
}

MP4Box::Children MP4Box::all(std::string_view wanted) const {
    Children found;
    std::ranges::copy_if(children, std::back_inserter(found),
                         [&](const auto& child) { return child->type == wanted; });
    return found;
}

void MP4Box::removeAll(const std::set<std::string, std::less<>>& types) {
    std::erase_if(children, [&](const auto& child) { return types.contains(child->type); });
}

void MP4Box::replace(std::string_view replaced, std::shared_ptr<MP4Box> box) {
    const auto found =
        std::ranges::find_if(children, [&](const auto& child) { return child->type == replaced; });
    if (found == children.end()) {
        children.push_back(std::move(box));
    } else {
        *found = std::move(box);
    }
}

}  // namespace ReelCore
