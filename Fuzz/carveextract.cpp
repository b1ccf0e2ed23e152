#include "ReelCore/Recovery/CardCarver.h"
#include "Require.h"
#include "ScratchFile.h"

#include <iterator>
#include <optional>

using namespace ReelCore;

namespace {

std::string contentOf(const URL& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void requireSoundOutcome(const Finding& finding, const URL& image, const URL& folder) {
    const RepairOutcome outcome = CardCarver::extract(finding, image, folder, image, 7);
    REQUIRE(outcome.source == image && outcome.method.starts_with("carve"));
    REQUIRE(!outcome.detail.empty());
    REQUIRE(!outcome.succeeded || outcome.output);
    REQUIRE(!outcome.output || std::filesystem::exists(*outcome.output));
}

}  // namespace

/// What no index leads back is given to a tool that does nothing, for there is no time for more.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    return ::setenv("FFMPEG_PATH", "/bin/false", 1);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    static const URL image = scratchFile("carveextract");
    static const URL folder = scratchFile("carveextract-output");
    const std::string content(textOf(data + 3, size - 3));
    write(image, content);
    const auto kind = allCases<FindingKind>()[data[0] % allCases<FindingKind>().size()];
    std::vector<Finding> findings{{kind, data[1], data[2] * 8, true}};
    if (!content.empty()) {
        for (const Finding& finding : CardCarver::scan(image)) findings.push_back(finding);
    }
    for (const Finding& finding : findings) {
        requireSoundOutcome(finding, image, folder);
        std::filesystem::remove_all(folder);
    }
    REQUIRE(contentOf(image) == content);
    std::filesystem::remove(image);
    return 0;
}
