#include "ReelCore/Sync/BWFReader.h"

#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Platform/File.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

namespace ReelCore {

namespace {

/// A file by pieces: small reads that lie close together cost one. Going forward, no byte is read
/// twice but the few that lie across the end of a piece.
class Window {
public:
    static constexpr std::size_t pieceSize = 4096;

    explicit Window(const URL& url) : file_(File::openForReading(url, FileLinks::follow)) {}

    /// All bytes at hand on from `offset`: at least `least`, which is no more than a piece, and
    /// fewer only where the file ends. Valid until the next call.
    std::span<const std::byte> from(std::int64_t offset, std::size_t least) {
        const std::int64_t end = begin_ + std::ssize(held_);
        const bool isShort = offset + static_cast<std::int64_t>(least) > end && !isLast_;
        if (offset < begin_ || offset > end || isShort) fill(offset);
        return held_.subspan(static_cast<std::size_t>(offset - begin_));
    }

    const File& file() const { return file_; }

private:
    void fill(std::int64_t offset) {
        begin_ = offset;
        held_ = std::span(buffer_).first(file_.readAt(offset, buffer_));
        isLast_ = held_.size() < buffer_.size();
    }

    File file_;
    std::array<std::byte, pieceSize> buffer_;
    std::int64_t begin_ = 0;
    std::span<const std::byte> held_;  ///< What stands in the file on from `begin_`.
    bool isLast_ = false;              ///< The file ends with it.
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
    std::optional<Chunk> iXML;
};

/// The payload's first `most` bytes, or all that there are.
std::span<const std::byte> beginningOf(Window& window, const Chunk& chunk, std::int64_t most) {
    const auto count = static_cast<std::size_t>(std::min(chunk.size, most));
    const auto bytes = window.from(chunk.payload, count);
    return bytes.first(std::min(count, bytes.size()));
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

void take(Facts& facts, Window& window, const Chunk& chunk) {
    if (chunk.id == "fmt ") {
        readFormat(facts, beginningOf(window, chunk, 14));
    } else if (chunk.id == "bext") {
        readBroadcastExtension(facts, beginningOf(window, chunk, 346));
    } else if (chunk.id == "iXML" || chunk.id == "ixml") {
        facts.iXML = chunk;
    } else if (chunk.id == "data") {
        facts.dataBytes = static_cast<double>(chunk.size);
    }
}

constexpr std::int64_t headerSize = 8;

/// How many zeros `bytes`, no more than a piece, begin with.
std::int64_t zerosInFront(std::span<const std::byte> bytes) {
    static constexpr std::array<std::byte, Window::pieceSize> zeros{};
    if (std::memcmp(bytes.data(), zeros.data(), bytes.size()) == 0) return std::ssize(bytes);
    return std::ranges::find_if(bytes, [](std::byte b) { return b != std::byte{}; }) -
           bytes.begin();
}

/// Where, on from `offset`, a header stands that is not all zeros. Silence behind a "data" chunk
/// that never got its size would else be taken for millions of empty chunks.
std::int64_t behindEmptyChunks(Window& window, std::int64_t offset) {
    for (;;) {
        const auto held = window.from(offset, headerSize);
        const std::int64_t zeros = zerosInFront(held);
        offset += zeros / headerSize * headerSize;
        if (zeros < std::ssize(held) || zeros < headerSize) return offset;
        offset += (window.file().nextStored(offset) - offset) / headerSize * headerSize;
    }
}

/// The chunk whose header stands at `offset`; absent where no whole header does.
std::optional<Chunk> chunkAt(Window& window, std::int64_t offset) {
    ByteCursor header(window.from(offset, headerSize));
    const auto id = header.text(4);
    const auto size = header.littleEndian<std::uint32_t>();
    if (!id || !size) return std::nullopt;
    return Chunk{std::string(*id), offset + headerSize, *size};
}

Facts factsOf(Window& window) {
    constexpr std::int64_t riffHeaderSize = 12;
    ByteCursor riff(window.from(0, riffHeaderSize));
    if (riff.text(4) != "RIFF" || !riff.skip(4) || riff.text(4) != "WAVE") {
        throw BWFReader::BWFError(BWFReader::BWFError::NotRIFF{});
    }
    Facts facts;
    std::int64_t offset = riffHeaderSize;
    while (const auto chunk = chunkAt(window, behindEmptyChunks(window, offset))) {
        take(facts, window, *chunk);
        offset = chunk->payload + chunk->size + chunk->size % 2;
    }
    return facts;
}

std::string readText(Window& window, const Chunk& chunk) {
    if (chunk.size <= std::int64_t{Window::pieceSize}) {
        const auto bytes = beginningOf(window, chunk, chunk.size);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    // No slate is that long; a damaged size must not fill the memory.
    constexpr std::int64_t longest = std::int64_t{16} << 20U;
    const std::int64_t there = std::max<std::int64_t>(window.file().size() - chunk.payload, 0);
    std::string text(static_cast<std::size_t>(std::min({chunk.size, there, longest})), '\0');
    text.resize(window.file().readAt(chunk.payload, std::as_writable_bytes(std::span(text))));
    return text;
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
    IXML slate = parseIXML(facts.iXML ? readText(window, *facts.iXML) : std::string());
    clip.scene = std::move(slate.scene);
    clip.take = std::move(slate.take);
    clip.tape = std::move(slate.tape);
    clip.note = std::move(slate.note);
    clip.trackNames = std::move(slate.tracks);
    return clip;
}

}  // namespace ReelCore
