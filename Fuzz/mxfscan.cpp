#include "ReelCore/Recovery/MXFScan.h"

#include "Require.h"
#include "ScratchFile.h"

using namespace ReelCore;

namespace {

void requireSoundLength(std::string_view text) {
    const auto found = MXFScan::berLength(bytesOf(text), 0);
    if (!found) return;
    REQUIRE(found->length >= 0 && found->size >= 1 && found->size <= 9);
    REQUIRE(found->size <= static_cast<std::int64_t>(text.size()));
}

void requireSoundWalk(const File& file, std::int64_t at, std::int64_t limit) {
    const auto walk = MXFScan::walk(file, at, limit);
    if (!walk) return;
    REQUIRE(walk->klvCount >= 3 && walk->length >= 3 * 17);
    REQUIRE(at + walk->length <= limit);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const URL path = scratchFile("mxfscan");
    const std::string text(textOf(data, size));
    requireSoundLength(text);
    // A key that counts in front of each piece, so that chains come about.
    std::string chain;
    constexpr std::size_t pieceSize = 20;
    for (std::size_t at = 0; at < size; at += pieceSize) {
        chain += std::string("\x06\x0E\x2B\x34", 4) + text.substr(at, pieceSize);
    }
    for (const std::string& content : {text, chain}) {
        write(path, content);
        const File file = File::openForReading(path);
        const auto whole = static_cast<std::int64_t>(content.size());
        requireSoundWalk(file, 0, whole);
        requireSoundWalk(file, size == 0 ? 0 : data[0] % 64, whole);
        requireSoundWalk(file, 0, whole / 2);
    }
    std::filesystem::remove(path);
    return 0;
}
