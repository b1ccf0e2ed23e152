#include "../Tests/Support/MdatIndexModel.h"
#include "ReelCore/Recovery/MoovRebuilder.h"
#include "Require.h"
#include "ScratchFile.h"

using namespace ReelCore;

namespace {

void requireModel(const std::string& media, std::int64_t bytesPerAudioFrame) {
    static const URL path = scratchFile("mdatindex");
    const MdatIndex expected = TestSupport::MdatIndexModel(media, bytesPerAudioFrame).index();
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
