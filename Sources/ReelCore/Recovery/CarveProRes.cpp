#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/ImagePiece.h"
#include "ReelCore/Recovery/ProResFrame.h"
#include "ReelCore/Recovery/Signatures.h"

#include <array>
#include <string_view>
#include <vector>

namespace ReelCore {

namespace {

class ProResRun {
public:
    ProResRun(const File& image, std::int64_t start, std::int64_t total)
        : image_(image), total_(total), position_(start), start_(start) {}

    std::optional<Finding> run() {
        constexpr std::int64_t fewestFrames = 3;
        while (position_ <= total_ - 8) {
            if (const auto size = frameAt(position_)) {
                ++frames_;
                lastFrame_ = position_;
                position_ += *size;
                continue;
            }
            const auto next = nextFrame();
            if (!next) break;
            position_ = *next;
        }
        if (frames_ < fewestFrames) return std::nullopt;
        return Finding{FindingKind::orphanProRes, start_, lastFrame_ - start_, false};
    }

private:
    std::optional<std::int64_t> frameAt(std::int64_t offset) const {
        std::array<std::byte, 8> bytes;
        const auto size = proResFrameSize(readPiece(image_, offset, bytes));
        if (!size || *size < smallestProResFrame || *size > largestProResFrame) return std::nullopt;
        if (*size > total_ - offset) return std::nullopt;
        return size;
    }

    /// Sound may lie between two frames, up to this much.
    std::optional<std::int64_t> nextFrame() {
        constexpr std::size_t widestGap = 0x800000;
        if (buffer_.empty()) buffer_.resize(widestGap);
        const auto block = readPiece(image_, position_, buffer_);
        const std::string_view text(reinterpret_cast<const char*>(block.data()), block.size());
        for (auto tag = text.find(proResTag, 4); tag != text.npos;
             tag = text.find(proResTag, tag + 1)) {
            const std::int64_t candidate = position_ + static_cast<std::int64_t>(tag) - 4;
            if (frameAt(candidate)) return candidate;
        }
        return std::nullopt;
    }

    const File& image_;
    std::int64_t total_;
    std::int64_t position_;
    std::int64_t start_;
    std::int64_t lastFrame_ = 0;
    std::int64_t frames_ = 0;
    std::vector<std::byte> buffer_;
};

}  // namespace

std::optional<Finding> walkProResRun(const File& image, std::int64_t start, std::int64_t total) {
    return ProResRun(image, start, total).run();
}

}  // namespace ReelCore
