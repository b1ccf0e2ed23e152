#include "ReelCore/Recovery/MdatIndex.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/MoovRebuilder.h"
#include "ReelCore/Recovery/ProResFrame.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace ReelCore {

namespace {

constexpr std::int64_t headSize = 8;

std::optional<std::size_t> findTag(std::span<const std::byte> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto found = text.find(proResTag);
    if (found == text.npos) return std::nullopt;
    return found;
}

/// Media that is in memory.
class MemoryMedia {
public:
    explicit MemoryMedia(std::span<const std::byte> bytes) : bytes_(bytes) {}

    std::int64_t size() const { return std::ssize(bytes_); }

    /// The 8 bytes at a position, or fewer at the end.
    std::span<const std::byte> head(std::int64_t at) const {
        const auto rest = bytes_.subspan(static_cast<std::size_t>(at));
        return rest.first(std::min<std::size_t>(headSize, rest.size()));
    }

    /// Where the tag next stands at or behind a position; absent where it does not.
    std::optional<std::int64_t> tagFrom(std::int64_t at) const {
        const auto found = findTag(bytes_.subspan(static_cast<std::size_t>(at)));
        if (!found) return std::nullopt;
        return at + static_cast<std::int64_t>(*found);
    }

private:
    std::span<const std::byte> bytes_;
};

/// Media in a file, read by pieces: small ones at frames, larger ones on the way through gaps.
class FileMedia {
public:
    FileMedia(const File& file, std::int64_t offset, std::int64_t length)
        : file_(file), offset_(offset), length_(length) {}

    std::int64_t size() const { return length_; }

    std::span<const std::byte> head(std::int64_t at) {
        const auto bytes = bytesFrom(at, headSize, smallestPiece);
        return bytes.first(std::min<std::size_t>(headSize, bytes.size()));
    }

    std::optional<std::int64_t> tagFrom(std::int64_t at) {
        constexpr std::int64_t tagSize = std::ssize(proResTag);
        for (std::int64_t piece = smallestPiece;; piece = std::min(piece * 4, largestPiece)) {
            const auto bytes = bytesFrom(at, tagSize, piece);
            if (const auto found = findTag(bytes)) return at + static_cast<std::int64_t>(*found);
            if (std::ssize(bytes) < tagSize) return std::nullopt;
            // The tag may begin at the end of one piece and go on in the next, but not in a hole.
            at = nextStored(at + std::ssize(bytes) - tagSize + 1);
        }
    }

private:
    std::int64_t nextStored(std::int64_t at) const {
        return std::min(file_.nextStored(offset_ + at) - offset_, length_);
    }

    static constexpr std::int64_t smallestPiece = 16'384;
    static constexpr std::int64_t largestPiece = 4'194'304;

    /// The bytes held from a position on, at least `wanted` but where the media ends. A piece is
    /// read only where they are not held yet.
    std::span<const std::byte> bytesFrom(std::int64_t at, std::int64_t wanted, std::int64_t piece) {
        const std::int64_t rest = std::max<std::int64_t>(length_ - at, 0);
        if (at < begin_ || at + std::min(wanted, rest) > begin_ + count_) {
            const auto size = static_cast<std::size_t>(std::min(piece, rest));
            if (buffer_.size() < size) buffer_.resize(size);
            const auto into = std::span(buffer_).first(size);
            begin_ = at;
            count_ = static_cast<std::int64_t>(file_.readAt(offset_ + at, into));
        }
        const auto held = std::span(buffer_).first(static_cast<std::size_t>(count_));
        return held.subspan(static_cast<std::size_t>(std::min(at - begin_, count_)));
    }

    const File& file_;
    std::int64_t offset_;
    std::int64_t length_;
    std::vector<std::byte> buffer_;
    std::int64_t begin_ = 0;
    std::int64_t count_ = 0;
};

template <class Media>
class Indexer {
public:
    Indexer(Media media, std::int64_t bytesPerAudioFrame)
        : media_(std::move(media)), bytesPerAudioFrame_(bytesPerAudioFrame) {}

    MdatIndex run() {
        std::int64_t position = 0;
        while (position < media_.size()) {
            if (const auto size = frameAt(position)) {
                index_.videoSamples.push_back({position, *size});
                position += *size;
                index_.referencedEnd = position;
                requireRoom();
                continue;
            }
            if (cutFrameAt(position)) break;
            const std::int64_t end = gapEnd(position);
            addAudio(position, end);
            position = end;
        }
        return std::move(index_);
    }

private:
    /// A frame takes 12 bytes in an index, sound between two of them 8.
    void requireRoom() const {
        const std::uint64_t size = 12 * std::uint64_t{index_.videoSamples.size()} +
                                   8 * std::uint64_t{index_.audioChunks.size()};
        if (size >> 32U != 0) throw OutOfRange();
    }

    /// The size of the whole frame that begins at a position; absent where none does.
    std::optional<std::int64_t> frameAt(std::int64_t position) {
        if (position > media_.size() - headSize) return std::nullopt;
        const auto size = proResFrameSize(media_.head(position));
        if (!size || *size < smallestProResFrame || *size > media_.size() - position) {
            return std::nullopt;
        }
        return size;
    }

    /// True where a frame begins that the media does not hold whole; asked where none does whole.
    bool cutFrameAt(std::int64_t position) {
        return proResFrameSize(media_.head(position)).value_or(0) >= smallestProResFrame;
    }

    /// Where the next whole frame begins behind a position. Where none does, what was cut off ends
    /// the gap, so that its bytes are not taken for sound, and else the media.
    std::int64_t gapEnd(std::int64_t position) {
        constexpr std::int64_t tagOffset = 4;
        std::optional<std::int64_t> cut;
        for (std::int64_t from = position; from <= media_.size() - headSize;) {
            const auto tag = media_.tagFrom(from + tagOffset);
            if (!tag) break;
            const std::int64_t candidate = *tag - tagOffset;
            if (frameAt(candidate)) return candidate;
            if (!cut && cutFrameAt(candidate)) cut = candidate;
            from = candidate + 1;
        }
        return cut.value_or(media_.size());
    }

    void addAudio(std::int64_t begin, std::int64_t end) {
        if (bytesPerAudioFrame_ < 1) return;
        const std::int64_t gap = end - begin;
        const std::int64_t usable = gap - gap % bytesPerAudioFrame_;
        if (usable < 1) return;
        index_.audioChunks.push_back({begin, usable});
        index_.referencedEnd = std::max(index_.referencedEnd, begin + usable);
    }

    Media media_;
    std::int64_t bytesPerAudioFrame_;
    MdatIndex index_;
};

}  // namespace

MdatIndex MoovRebuilder::indexMdat(std::span<const std::byte> mdat,
                                   std::int64_t bytesPerAudioFrame) {
    return Indexer(MemoryMedia(mdat), bytesPerAudioFrame).run();
}

MdatIndex MoovRebuilder::indexMdat(const File& file, std::int64_t offset, std::int64_t length,
                                   std::int64_t bytesPerAudioFrame) {
    return Indexer(FileMedia(file, offset, length), bytesPerAudioFrame).run();
}

}  // namespace ReelCore
