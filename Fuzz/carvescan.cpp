#include "ReelCore/Recovery/CardCarver.h"
#include "ReelCore/Recovery/Signatures.h"
#include "Require.h"
#include "ScratchFile.h"

using namespace ReelCore;

namespace {

void requireSoundScan(const std::string& image) {
    static const URL path = scratchFile("carvescan");
    write(path, image);
    const auto total = static_cast<std::int64_t>(image.size());
    std::int64_t end = 0;
    for (const Finding& finding : CardCarver::scan(path)) {
        REQUIRE(finding.offset >= end && finding.length >= 0);
        REQUIRE(finding.offset + finding.length <= total);
        end = finding.offset + finding.length;
    }
    std::filesystem::remove(path);
}

/// Every hit that a search place by place would find in a clip's first bytes.
void requireHits(std::string_view bytes) {
    std::size_t last = 0;
    for (const Hit& hit : signatureHits(bytesOf(bytes))) {
        REQUIRE(hit.offset >= last && hit.offset < bytes.size());
        last = hit.offset;
        const std::string_view at = bytes.substr(hit.offset);
        REQUIRE(at.substr(4, 4) == "ftyp" || at.substr(4, 4) == "icpf" || at.starts_with("RIFF") ||
                at.starts_with("\x06\x0E\x2B\x34"));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(textOf(data, size));
    requireHits(text);
    requireSoundScan(text);
    // Blank flash between two of the same.
    const std::string blank(data[0] * 32U, data[size - 1] % 2 == 0 ? '\0' : '\xFF');
    requireSoundScan(text + blank + text);
    return 0;
}
