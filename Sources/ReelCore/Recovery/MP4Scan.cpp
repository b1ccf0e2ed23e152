#include "ReelCore/Recovery/MP4Scan.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/BoxHeader.h"
#include "ReelCore/Recovery/OpenSource.h"

#include <algorithm>
#include <array>
#include <span>

namespace ReelCore {

namespace {

/// The bytes of box headers. Those of boxes that are no larger than a header are read together,
/// more and more at once; all others by themselves.
class HeaderReader {
public:
    explicit HeaderReader(const File& file) : file_(file) {}

    /// The 16 bytes at an offset, or fewer where the file ends. To be called from front to back.
    std::span<const std::byte> at(std::int64_t offset) {
        const std::int64_t end = begin_ + std::ssize(held_);
        if (offset + headerSize > end) {
            count_ = offset <= end ? std::min(2 * count_, buffer_.size()) : headerSize;
            begin_ = offset;
            const auto into = std::span(buffer_).first(count_);
            held_ = into.first(file_.readAt(offset, into));
        }
        const auto rest = held_.subspan(static_cast<std::size_t>(offset - begin_));
        return rest.first(std::min<std::size_t>(rest.size(), headerSize));
    }

private:
    static constexpr std::int64_t headerSize = 16;

    const File& file_;
    std::array<std::byte, 4096> buffer_;
    std::size_t count_ = headerSize / 2;  ///< Bytes that the last read asked for.
    std::int64_t begin_ = 0;
    std::span<const std::byte> held_;  ///< What stands in the file on from `begin_`.
};

/// Absent where no box can stand.
std::optional<TopLevelBox> boxAt(std::int64_t offset, HeaderReader& headers,
                                 std::int64_t fileSize) {
    const auto header = BoxHeader::read(headers.at(offset));
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
    TopLevel result;
    result.fileSize = walk(url, [&](const TopLevelBox& box) { result.boxes.push_back(box); });
    return result;
}

std::int64_t MP4Scan::walk(const URL& url, const std::function<void(const TopLevelBox&)>& visit) {
    const File file = openSource(url);
    const std::int64_t fileSize = file.size();
    HeaderReader headers(file);
    std::int64_t cursor = 0;
    while (cursor <= fileSize - 8) {
        const auto box = boxAt(cursor, headers, fileSize);
        if (!box) break;
        visit(*box);
        if (box->declaredPayload > fileSize - box->payloadOffset()) break;
        cursor = box->payloadOffset() + box->declaredPayload;
    }
    return fileSize;
}

}  // namespace ReelCore
