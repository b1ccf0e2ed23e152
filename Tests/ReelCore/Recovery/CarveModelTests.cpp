#include "Support/CarveModel.h"

#include "CarveImage.h"
#include "ReelCore/Recovery/Signatures.h"
#include "Support/HostileImage.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

void expectModel(const std::string& image, std::uint64_t seed) {
    ASSERT_EQ(CarveImage(image).scan(), CarveModel(image).scan()) << "seed " << seed;
}

TEST(CarveModel, SignaturesOfHostileImages_AreThoseFoundNeedleByNeedle) {
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        const std::string image = HostileImage(seed).make(2000 + seed);
        std::vector<Hit> expected;
        for (const auto& hit : CarveModel::hits(image)) {
            expected.push_back({static_cast<std::size_t>(hit.offset), hit.kind});
        }
        ASSERT_EQ(signatureHits(std::as_bytes(std::span(image))), expected) << "seed " << seed;
    }
}

TEST(CarveModel, SmallHostileImages_AreScannedAsPlaceByPlace) {
    for (std::uint64_t seed = 0; seed < 1500; ++seed) {
        expectModel(HostileImage(seed).make(20 + seed % 3000), seed);
    }
}

TEST(CarveModel, HostileImagesOfManyPages_AreScannedAsPlaceByPlace) {
    for (std::uint64_t seed = 5000; seed < 5060; ++seed) {
        expectModel(HostileImage(seed).make(150'000), seed);
    }
}

TEST(CarveModel, HostileStretchesFarApart_AreScannedAsPlaceByPlace) {
    for (std::uint64_t seed = 9000; seed < 9012; ++seed) {
        HostileImage stretches(seed);
        std::string image = stretches.make(20'000) + std::string(1'500'000, 'x');
        image += stretches.make(20'000) + std::string(9'000'000, 'y') + stretches.make(20'000);
        expectModel(image, seed);
    }
}

}  // namespace
