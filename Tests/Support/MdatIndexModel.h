#pragma once

#include "ReelCore/Recovery/MdatIndex.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

namespace TestSupport {

/// The index taken place by place: no pieces, no search, no haste.
class MdatIndexModel {
public:
    MdatIndexModel(std::string_view media, std::int64_t bytesPerAudioFrame)
        : media_(media), bytesPerAudioFrame_(bytesPerAudioFrame) {}

    ReelCore::MdatIndex index() {
        while (position_ < media_.size()) {
            if (const auto size = frameAt(position_)) {
                takeFrame(*size);
            } else if (isCutFrame(position_)) {
                break;
            } else {
                takeGap();
            }
        }
        return index_;
    }

private:
    bool isTagged(std::size_t at) const {
        return media_.size() - at >= 8 && media_.substr(at + 4, 4) == "icpf";
    }

    std::uint64_t sizeAt(std::size_t at) const {
        std::uint64_t size = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            size = size << 8U | static_cast<unsigned char>(media_[at + i]);
        }
        return size;
    }

    std::optional<std::uint64_t> frameAt(std::size_t at) const {
        if (!isTagged(at)) return std::nullopt;
        if (sizeAt(at) < 20 || sizeAt(at) > media_.size() - at) return std::nullopt;
        return sizeAt(at);
    }

    bool isCutFrame(std::size_t at) const {
        return isTagged(at) && sizeAt(at) >= 20 && !frameAt(at);
    }

    std::size_t gapEnd() const {
        for (std::size_t at = position_ + 1; at < media_.size(); ++at) {
            if (frameAt(at)) return at;
        }
        for (std::size_t at = position_ + 1; at < media_.size(); ++at) {
            if (isCutFrame(at)) return at;
        }
        return media_.size();
    }

    void takeFrame(std::uint64_t size) {
        index_.videoSamples.push_back(
            {static_cast<std::int64_t>(position_), static_cast<std::int64_t>(size)});
        position_ += size;
        index_.referencedEnd = static_cast<std::int64_t>(position_);
    }

    void takeGap() {
        const std::size_t next = gapEnd();
        const auto gap = static_cast<std::int64_t>(next - position_);
        const auto begin = static_cast<std::int64_t>(position_);
        position_ = next;
        if (bytesPerAudioFrame_ < 1 || gap < bytesPerAudioFrame_) return;
        const std::int64_t usable = gap / bytesPerAudioFrame_ * bytesPerAudioFrame_;
        index_.audioChunks.push_back({begin, usable});
        index_.referencedEnd = std::max(index_.referencedEnd, begin + usable);
    }

    std::string_view media_;
    std::int64_t bytesPerAudioFrame_;
    std::size_t position_ = 0;
    ReelCore::MdatIndex index_;
};

}  // namespace TestSupport
