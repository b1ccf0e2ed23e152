#include "ReelCore/Recovery/MP4Scan.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/BoxHeader.h"
#include "ReelCore/Recovery/OpenSource.h"

#include <algorithm>
#include <array>

namespace ReelCore {

namespace {

/// Absent where no box can stand.
std::optional<TopLevelBox> boxAt(std::int64_t offset, const File& file, std::int64_t fileSize) {
    std::array<std::byte, 16> bytes;
    const auto header = BoxHeader::read(std::span(bytes).first(file.readAt(offset, bytes)));
    if (!header || !header->type) return std::nullopt;
    const auto size = static_cast<std::int64_t>(header->size);
    const bool extendsToEOF = size == 0 && header->headerSize == 8;
    if (extendsToEOF) return TopLevelBox{*header->type, offset, 8, fileSize - offset - 8, true};
    if (size < header->headerSize) return std::nullopt;
    return TopLevelBox{*header->type, offset, header->headerSize, size - header->headerSize, false};
}

}  // namespace

const TopLevelBox* MP4Scan::TopLevel::first(std::string_view type) const {
    const auto found = std::ranges::find(boxes, type, &TopLevelBox::type);
    return found == boxes.end() ? nullptr : &*found;
}

MP4Scan::TopLevel MP4Scan::topLevel(const URL& url) {
    const File file = openSource(url);
    TopLevel result{{}, file.size()};
    std::int64_t cursor = 0;
    while (cursor <= result.fileSize - 8) {
        const auto box = boxAt(cursor, file, result.fileSize);
        if (!box) break;
        result.boxes.push_back(*box);
        if (box->declaredPayload > result.fileSize - box->payloadOffset()) break;
        cursor = box->payloadOffset() + box->declaredPayload;
    }
    return result;
}

}  // namespace ReelCore
