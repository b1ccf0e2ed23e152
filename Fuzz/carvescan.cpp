#include "../Tests/Support/CarveModel.h"
#include "../Tests/Support/HostileImage.h"
#include "ReelCore/Recovery/CardCarver.h"
#include "ReelCore/Recovery/Signatures.h"
#include "Require.h"
#include "ScratchFile.h"

using namespace ReelCore;
using TestSupport::CarveModel;

namespace {

void requireModel(const std::string& image) {
    static const URL path = scratchFile("carvescan");
    write(path, image);
    REQUIRE(CardCarver::scan(path) == CarveModel(image).scan());
    std::filesystem::remove(path);
}

void requireHits(std::string_view bytes) {
    std::vector<Hit> expected;
    for (const auto& hit : CarveModel::hits(bytes)) {
        expected.push_back({static_cast<std::size_t>(hit.offset), hit.kind});
    }
    REQUIRE(signatureHits(bytesOf(bytes)) == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(textOf(data, size));
    requireHits(text);
    requireModel(text);
    // Blank flash between two of the same.
    const std::string blank(data[0] * 32U, data[size - 1] % 2 == 0 ? '\0' : '\xFF');
    requireModel(text + blank + text);
    // Among what leads everywhere.
    std::uint64_t seed = 0;
    for (std::size_t i = 0; i < std::min<std::size_t>(size, 8); ++i) seed = seed << 8U | data[i];
    TestSupport::HostileImage hostile(seed);
    requireModel(hostile.make(4 * size) + text + hostile.make(4 * size));
    return 0;
}
