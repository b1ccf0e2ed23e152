#include "ReelCore/Recovery/MoovRebuilder.h"
#include "Require.h"
#include "ScratchFile.h"

#include <optional>

using namespace ReelCore;

namespace {

/// The index taken place by place: no pieces, no search, no haste.
class Model {
public:
    Model(std::string_view media, std::int64_t bytesPerAudioFrame)
        : media_(media), bytesPerAudioFrame_(bytesPerAudioFrame) {}

    MdatIndex index() {
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
    MdatIndex index_;
};

void requireModel(const std::string& media, std::int64_t bytesPerAudioFrame) {
    static const URL path = scratchFile("mdatindex");
    const MdatIndex expected = Model(media, bytesPerAudioFrame).index();
    REQUIRE(MoovRebuilder::indexMdat(bytesOf(media), bytesPerAudioFrame) == expected);
    write(path, "before" + media);
    const File file = File::openForReading(path);
    const auto length = static_cast<std::int64_t>(media.size());
    REQUIRE(MoovRebuilder::indexMdat(file, 6, length, bytesPerAudioFrame) == expected);
    std::filesystem::remove(path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(textOf(data, size));
    const std::int64_t bytesPerAudioFrame = size == 0 ? 0 : data[0] % 13;
    requireModel(text, bytesPerAudioFrame);
    // A frame of each piece, with what follows it for sound.
    std::string media;
    constexpr std::size_t pieceSize = 32;
    for (std::size_t at = 0; at < size; at += pieceSize) {
        media += std::string("\0\0\0\x18icpf", 8) + text.substr(at, pieceSize);
    }
    requireModel(media, bytesPerAudioFrame);
    // Gaps wider than what is read at once.
    const std::string silence(size == 0 || data[0] % 8 != 0 ? 0 : data[size - 1] * 97U, '\0');
    requireModel(media + silence + text + silence, bytesPerAudioFrame);
    return 0;
}
