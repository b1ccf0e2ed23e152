#include "ReelCore/Sync/BWFReader.h"
#include "Require.h"

#include <algorithm>
#include <fstream>

#include <unistd.h>

using namespace ReelCore;

namespace {

std::uint64_t numberAt(std::string_view text, std::size_t offset, std::size_t bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes; i-- > 0;) {
        number = number << 8U | static_cast<unsigned char>(text[offset + i]);
    }
    return number;
}

/// What the reader is to find, taken chunk by chunk from bytes in memory: no pieces, no holes, no
/// haste.
class Model {
public:
    explicit Model(std::string_view chunks) : rest_(chunks) {
        while (rest_.size() >= 8) takeChunk();
    }

    AudioClip clip(const URL& url) const {
        AudioClip clip;
        clip.url = url;
        clip.sampleRate = rate_;
        if (rate_ > 0.0) {
            clip.startSeconds = static_cast<double>(reference_) / rate_;
            clip.duration =
                (blockAlign_ > 0 ? sound_ / static_cast<double>(blockAlign_) : 0.0) / rate_;
        }
        const auto slate = BWFReader::parseIXML(slate_);
        clip.scene = slate.scene;
        clip.take = slate.take;
        clip.tape = slate.tape;
        clip.note = slate.note;
        clip.trackNames = slate.tracks;
        return clip;
    }

private:
    void takeChunk() {
        const std::string_view id = rest_.substr(0, 4);
        const std::uint64_t size = numberAt(rest_, 4, 4);
        rest_.remove_prefix(8);
        const std::string_view payload = rest_.substr(0, size);
        if (id == "fmt ") {
            rate_ = payload.size() < 8 ? 0.0 : static_cast<double>(numberAt(payload, 4, 4));
            blockAlign_ = payload.size() < 14 ? 0 : numberAt(payload, 12, 2);
        }
        if (id == "bext" && payload.size() >= 346) reference_ = numberAt(payload, 338, 8);
        if (id == "iXML" || id == "ixml") slate_ = payload;
        if (id == "data") sound_ = static_cast<double>(size);
        rest_.remove_prefix(std::min<std::uint64_t>(size + size % 2, rest_.size()));
    }

    std::string_view rest_;
    double rate_ = 48000.0;
    double sound_ = 0.0;
    std::uint64_t blockAlign_ = 0;
    std::uint64_t reference_ = 0;
    std::string_view slate_;
};

void requireModel(const URL& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
    const bool isWave =
        bytes.size() >= 12 && bytes.starts_with("RIFF") && bytes.compare(8, 4, "WAVE") == 0;
    try {
        const AudioClip clip = BWFReader::read(path);
        REQUIRE(isWave);
        REQUIRE(clip == Model(std::string_view(bytes).substr(12)).clip(path));
    } catch (const BWFReader::BWFError& error) {
        REQUIRE(!isWave && error.is<BWFReader::BWFError::NotRIFF>());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const URL path =
        std::filesystem::temp_directory_path() / ("keldo-fuzz-bwf-" + std::to_string(::getpid()));
    const std::string chunks(textOf(data, size));

    requireModel(path, chunks);
    requireModel(path, "RIFF    WAVE" + chunks);
    // Silence as long as some pieces, so that headers lie across their ends.
    const std::size_t silence = size == 0 ? 0 : data[0] * 64U + data[size - 1] % 16U;
    requireModel(path, "RIFF    WAVE" + std::string(silence, '\0') + chunks);
    requireModel(path, "RIFF    WAVE" + chunks + std::string(silence, '\0') + chunks);

    std::filesystem::remove(path);
    return 0;
}
