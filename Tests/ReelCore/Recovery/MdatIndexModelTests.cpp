#include "Support/MdatIndexModel.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/MoovRebuilder.h"
#include "Support/FolderTree.h"
#include "Support/HostileImage.h"

#include <fstream>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

TEST(MdatIndexModel, HostileMedia_IsIndexedAsPlaceByPlace) {
    const TemporaryFolder folder;
    const URL path = folder.path() / "clip.mov";
    std::size_t frames = 0;
    for (std::uint64_t seed = 0; seed < 600; ++seed) {
        HostileImage pieces(seed);
        std::string media = pieces.make(seed % 4000);
        // Gaps wider than what is read at once.
        if (seed % 20 == 0) media += std::string(50'000, 's') + pieces.make(3000);
        const auto bytesPerAudioFrame = static_cast<std::int64_t>(seed % 9);
        const MdatIndex expected = MdatIndexModel(media, bytesPerAudioFrame).index();
        frames += expected.videoSamples.size();

        const auto bytes = std::as_bytes(std::span(media));
        ASSERT_EQ(MoovRebuilder::indexMdat(bytes, bytesPerAudioFrame), expected) << "seed " << seed;
        std::ofstream(path, std::ios::binary) << "before" << media << "behind";
        const File file = File::openForReading(path);
        ASSERT_EQ(MoovRebuilder::indexMdat(file, 6, std::ssize(media), bytesPerAudioFrame),
                  expected)
            << "seed " << seed;
    }
    EXPECT_GT(frames, 500U) << "media without frames proves nothing";
}

}  // namespace
