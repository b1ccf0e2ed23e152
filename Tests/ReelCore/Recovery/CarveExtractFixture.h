#pragma once

#include "CarveImage.h"
#include "Support/Boxes.h"
#include "Support/RIFF.h"

#include <gtest/gtest.h>

namespace TestSupport {

/// What a carve reads at once.
inline constexpr std::int64_t carveBlock = 0x800000;

inline const std::string healthyMovie =
    fileTypeBox() + box("mdat", noise(5000)) + box("moov", "index");

inline std::string unclosedWave(std::size_t sound) {
    return "RIFF" + littleEndian(0, 4) + "WAVE" + riffChunk("fmt ", formatPayload({})) +
           riffHeader("data", 0) + std::string(sound, 's');
}

inline ReelCore::RepairOutcome carveFailure(const CarveImage& image, const std::string& detail) {
    return {image.path(), std::nullopt, false, "carve", detail};
}

/// Cuts findings out into a folder of its own.
class CarveExtractFixture : public testing::Test {
protected:
    ReelCore::URL output() const { return folder_.path() / "carved"; }
    ReelCore::URL output(const std::string& name) const { return output() / name; }

    ReelCore::RepairOutcome extract(
        const CarveImage& image, const ReelCore::Finding& finding, std::int64_t index = 1,
        const std::optional<ReelCore::URL>& reference = std::nullopt) const {
        return ReelCore::CardCarver::extract(finding, image.path(), output(), reference, index);
    }

    ReelCore::URL folder() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
};

}  // namespace TestSupport
