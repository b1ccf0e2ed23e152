#include "ReelCore/Recovery/ClipDoctor.h"
#include "Require.h"
#include "ScratchFile.h"

using namespace ReelCore;

namespace {

/// What a diagnosis may say of a file of that size.
struct Claim {
    std::int64_t size;

    bool operator()(const ClipDiagnosis::MissingIndex& clip) const {
        return clip.mdatBytes > 0 && clip.mdatBytes <= size - 8;
    }
    bool operator()(const ClipDiagnosis::Truncated& clip) const {
        return clip.declared >= size && clip.actual <= size;
    }
    bool operator()(const ClipDiagnosis::StaleWAVSizes& clip) const {
        return clip.actualData >= 0 && clip.actualData < size;
    }
    bool operator()(const ClipDiagnosis::Unreadable& clip) const { return !clip.reason.empty(); }
    bool operator()(const ClipDiagnosis::Healthy&) const { return size > 0; }
};

void requireSoundDiagnosis(const std::string& extension, const std::string& content) {
    const URL path = scratchFile("diagnose." + extension);
    write(path, content);
    const ClipDiagnosis diagnosis = ClipDoctor::diagnose(path);
    REQUIRE(std::visit(Claim{static_cast<std::int64_t>(content.size())}, diagnosis.value));
    std::filesystem::remove(path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(textOf(data, size));
    requireSoundDiagnosis("mov", text);
    requireSoundDiagnosis("wav", text);
    requireSoundDiagnosis("wav", "RIFF    WAVE" + text);
    requireSoundDiagnosis("mxf", text);
    const std::string header("\x06\x0E\x2B\x34\x02\x05\x01\x01\x0D\x01\x02\x01\x01\x02\x04\0\0",
                             17);
    requireSoundDiagnosis("mxf", header + text);
    return 0;
}
