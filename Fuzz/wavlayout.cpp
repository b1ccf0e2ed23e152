#include "ReelCore/Recovery/WAVLayout.h"

#include "ReelCore/Recovery/WAVRepairer.h"
#include "ReelCore/Sync/BWFReader.h"
#include "Require.h"
#include "ScratchFile.h"

#include <iterator>

using namespace ReelCore;

namespace {

std::string contentOf(const URL& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Reads and repairs; the two files differ in the eight bytes of the sizes alone.
void requireSound(const std::string& content) {
    static const URL path = scratchFile("wavlayout");
    static const URL output = scratchFile("wavlayout-repaired");
    write(path, content);
    try {
        const WAVLayout layout = WAVLayout::read(path);
        const auto size = static_cast<std::int64_t>(content.size());
        REQUIRE(layout.dataOffset >= 20 && layout.dataOffset <= size);
        REQUIRE(layout.dataSizeOffset == layout.dataOffset - 4);
        const auto fixed = WAVRepairer::repair(path, output);
        REQUIRE(fixed.seconds >= 0.0);
        std::string expected = contentOf(output);
        REQUIRE(expected.size() == content.size());
        expected.replace(4, 4, content, 4, 4);
        const auto dataSize = static_cast<std::size_t>(layout.dataSizeOffset);
        expected.replace(dataSize, 4, content, dataSize, 4);
        REQUIRE(expected == content);
    } catch (const BWFReader::BWFError&) {
    }
    std::filesystem::remove(path);
    std::filesystem::remove(output);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(textOf(data, size));
    requireSound(text);
    requireSound("RIFF    WAVE" + text);
    requireSound("RIFF    WAVE" + text + "data    " + text);
    return 0;
}
