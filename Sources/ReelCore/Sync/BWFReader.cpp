#include "ReelCore/Sync/BWFReader.h"

#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Platform/File.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace ReelCore {

namespace {

/// A file by pieces: small reads that lie close together cost one.
class Window {
public:
    explicit Window(const URL& url) : file_(File::openForReading(url)) {}

    /// The bytes at `offset`, at most 4096 and fewer only where the file ends. Valid until the next
    /// call.
    std::span<const std::byte> at(std::int64_t offset, std::size_t count) {
        if (offset < begin_ || offset + static_cast<std::int64_t>(count) > begin_ + held_) {
            begin_ = offset;
            held_ = static_cast<std::int64_t>(file_.readAt(offset, buffer_));
        }
        const auto inside = static_cast<std::size_t>(offset - begin_);
        const auto held = std::span(buffer_).first(static_cast<std::size_t>(held_));
        return held.subspan(inside, std::min(count, held.size() - inside));
    }

    const File& file() const { return file_; }

private:
    File file_;
    std::array<std::byte, 4096> buffer_;
    std::int64_t begin_ = 0;
    std::int64_t held_ = 0;
};

struct Chunk {
    std::string id;
    std::int64_t payload;  ///< Its offset in the file.
    std::int64_t size;     ///< As its header says, which may be more than there is.
};

/// What the chunks tell, until told otherwise.
struct Facts {
    double sampleRate = 48000.0;
    std::uint16_t blockAlign = 0;
    double dataBytes = 0.0;
    std::uint64_t timeReference = 0;
    std::string iXML;
};

std::span<const std::byte> beginningOf(Window& window, const Chunk& chunk, std::int64_t most) {
    return window.at(chunk.payload, static_cast<std::size_t>(std::min(chunk.size, most)));
}

void readFormat(Facts& facts, std::span<const std::byte> payload) {
    ByteCursor cursor(payload);
    cursor.skip(4);
    facts.sampleRate = cursor.littleEndian<std::uint32_t>().value_or(0);
    facts.blockAlign = cursor.skip(4) ? cursor.littleEndian<std::uint16_t>().value_or(0) : 0;
}

void readBroadcastExtension(Facts& facts, std::span<const std::byte> payload) {
    ByteCursor cursor(payload);
    if (!cursor.skip(338)) return;
    if (const auto samples = cursor.littleEndian<std::uint64_t>()) facts.timeReference = *samples;
}

std::string readText(const File& file, const Chunk& chunk) {
    // No slate is that long; a damaged size must not fill the memory.
    constexpr std::int64_t longest = std::int64_t{16} << 20U;
    const std::int64_t there = std::max<std::int64_t>(file.size() - chunk.payload, 0);
    std::string text(static_cast<std::size_t>(std::min({chunk.size, there, longest})), '\0');
    text.resize(file.readAt(chunk.payload, std::as_writable_bytes(std::span(text))));
    return text;
}

void take(Facts& facts, Window& window, const Chunk& chunk) {
    if (chunk.id == "fmt ") {
        readFormat(facts, beginningOf(window, chunk, 14));
    } else if (chunk.id == "bext") {
        readBroadcastExtension(facts, beginningOf(window, chunk, 346));
    } else if (chunk.id == "iXML" || chunk.id == "ixml") {
        facts.iXML = readText(window.file(), chunk);
    } else if (chunk.id == "data") {
        facts.dataBytes = static_cast<double>(chunk.size);
    }
}

constexpr std::int64_t headerSize = 8;

/// Where, on from `offset`, a header stands that is not all zeros.
std::int64_t behindEmptyChunks(const File& file, std::int64_t offset) {
    constexpr std::size_t largestBlock = std::size_t{1} << 20U;
    for (std::vector<std::byte> block(4096);;
         block.resize(std::min(block.size() * 2, largestBlock))) {
        offset += (file.nextStored(offset) - offset) / headerSize * headerSize;
        const auto read = std::span(block).first(file.readAt(offset, block));
        const auto stored =
            std::ranges::find_if(read, [](std::byte b) { return b != std::byte{}; });
        offset += (stored - read.begin()) / headerSize * headerSize;
        if (stored != read.end() || read.size() < block.size()) return offset;
    }
}

/// Goes over the chunk headers from front to back, whatever they claim.
class ChunkWalk {
public:
    ChunkWalk(Window& window, std::int64_t offset) : window_(window), offset_(offset) {}

    /// Absent where no whole header stands.
    std::optional<Chunk> next() {
        // Silence without a size reads as millions of empty chunks, one after the other.
        constexpr int manyEmptyChunks = 512;
        if (emptyChunks_ == manyEmptyChunks) offset_ = behindEmptyChunks(window_.file(), offset_);
        ByteCursor header(window_.at(offset_, headerSize));
        const auto id = header.text(4);
        const auto size = header.littleEndian<std::uint32_t>();
        if (!id || !size) return std::nullopt;
        const bool isEmpty = *size == 0 && id->find_first_not_of('\0') == id->npos;
        emptyChunks_ = isEmpty && emptyChunks_ < manyEmptyChunks ? emptyChunks_ + 1 : 0;
        Chunk chunk{std::string(*id), offset_ + headerSize, *size};
        offset_ = chunk.payload + chunk.size + chunk.size % 2;
        return chunk;
    }

private:
    Window& window_;
    std::int64_t offset_;
    int emptyChunks_ = 0;
};

Facts factsOf(Window& window) {
    constexpr std::int64_t riffHeaderSize = 12;
    ByteCursor riff(window.at(0, riffHeaderSize));
    if (riff.text(4) != "RIFF" || !riff.skip(4) || riff.text(4) != "WAVE") {
        throw BWFReader::BWFError(BWFReader::BWFError::NotRIFF{});
    }
    Facts facts;
    ChunkWalk walk(window, riffHeaderSize);
    while (const auto chunk = walk.next()) take(facts, window, *chunk);
    return facts;
}

}  // namespace

AudioClip BWFReader::read(const URL& url) {
    Window window(url);
    const Facts facts = factsOf(window);
    AudioClip clip;
    clip.url = url;
    clip.sampleRate = facts.sampleRate;
    if (facts.sampleRate > 0.0) {
        const double frames = facts.blockAlign < 1 ? 0.0 : facts.dataBytes / facts.blockAlign;
        clip.startSeconds = static_cast<double>(facts.timeReference) / facts.sampleRate;
        clip.duration = frames / facts.sampleRate;
    }
    IXML slate = parseIXML(facts.iXML);
    clip.scene = std::move(slate.scene);
    clip.take = std::move(slate.take);
    clip.tape = std::move(slate.tape);
    clip.note = std::move(slate.note);
    clip.trackNames = std::move(slate.tracks);
    return clip;
}

}  // namespace ReelCore
