// What a walk over triplets costs, and what it makes of real clips and of failing drives.

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/MXFScan.h"
#include "Support/Clip.h"
#include "Support/CountedReads.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/KLV.h"
#include "Support/Snapshot.h"
#include "Support/SparseFile.h"

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

class MXFScanFileTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

    static std::optional<MXFScan::Walk> walkOf(const URL& clip) {
        const File file = File::openForReading(clip);
        return MXFScan::walk(file, 0, file.size());
    }

    void makeMXF(const std::string& name) const {
        makeClip(at(name), {.video = {"-c:v", "mpeg2video"}});
    }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(MXFScanFileTest, Walk_TerabytesOfEssence_Takes32BytesATriplet) {
    constexpr std::int64_t tebibyte = std::int64_t{1} << 40U;
    const std::string header = triplet(partitionKey(2), std::string(88, '\0'));
    const std::string essence = essenceKey() + berLength(tebibyte, 8);
    const std::int64_t second = std::ssize(header + essence) + tebibyte;
    const std::int64_t footer = second + std::ssize(essence) + tebibyte;
    const std::int64_t end = footer + std::ssize(header);
    writeSparse(at("clip.mxf"),
                {{0, header + essence},
                 {second, essence},
                 {footer, triplet(partitionKey(4), std::string(88, '\0'))}},
                end);
    const File file = File::openForReading(at("clip.mxf"));
    std::optional<MXFScan::Walk> walk;

    const Reads cost = readsOf([&] { walk = MXFScan::walk(file, 0, end); });

    EXPECT_EQ(walk, (MXFScan::Walk{end, true, 4}));
    EXPECT_EQ(cost, (Reads{4, 4 * 32}));
}

TEST_F(MXFScanFileTest, RealClip_IsWalkedToItsEndAndHasAFooter) {
    makeMXF("clip.mxf");

    const auto walk = walkOf(at("clip.mxf"));

    ASSERT_TRUE(walk);
    EXPECT_EQ(walk->length, FileSystem::sizeOf(at("clip.mxf")));
    EXPECT_TRUE(walk->sawFooter);
    EXPECT_GT(walk->klvCount, 25) << "a frame of picture is a triplet at least";
    std::array<std::byte, 16> key;
    File::openForReading(at("clip.mxf")).readAt(0, key);
    EXPECT_TRUE(MXFScan::isPartitionKey(key, 0, MXFScan::PartitionKind::header));
}

TEST_F(MXFScanFileTest, RealClip_CutOffAnywhere_IsWalkedUpToAWholeTriplet) {
    makeMXF("clip.mxf");
    const auto whole = walkOf(at("clip.mxf"));
    ASSERT_TRUE(whole);
    for (std::int64_t size = whole->length / 2; size > 20'000; size -= 9973) {
        std::filesystem::resize_file(at("clip.mxf"), static_cast<std::uintmax_t>(size));

        const auto cut = walkOf(at("clip.mxf"));

        ASSERT_TRUE(cut) << size;
        EXPECT_FALSE(cut->sawFooter) << size;
        EXPECT_LE(cut->length, size);
        EXPECT_LT(cut->klvCount, whole->klvCount);
        std::filesystem::resize_file(at("clip.mxf"), static_cast<std::uintmax_t>(cut->length));
        EXPECT_EQ(walkOf(at("clip.mxf")), cut) << "cut behind its last whole triplet";
    }
}

TEST_F(MXFScanFileTest, RealClips_OneAfterTheOther_AreToldApart) {
    makeMXF("a.mxf");
    const std::string clip = readFile(at("a.mxf"));
    writeFile(at("card.img"), clip + clip);

    EXPECT_EQ(walkOf(at("card.img")), walkOf(at("a.mxf")));
}

TEST_F(MXFScanFileTest, RealClip_InAnotherContainer_IsNoMXF) {
    makeClip(at("clip.mov"));

    EXPECT_EQ(walkOf(at("clip.mov")), std::nullopt);
}

TEST_F(MXFScanFileTest, Walk_Clip_LeavesNoTraceAndTheFilesPosition) {
    writeFile(at("card/clip.mxf"), mxfClip("picture"));
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));
    File file = File::openForReading(at("card/clip.mxf"));

    MXFScan::walk(file, 0, file.size());

    std::array<std::byte, 4> first;
    file.read(first);
    EXPECT_EQ(first[0], std::byte{0x06});
    EXPECT_EQ(snapshotOf(at("card")), before);
}

TEST_F(MXFScanFileTest, Drive_FailsAtAKey_EndsTheWalkThere) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    constexpr std::int64_t fourth = 3 << 20U;
    const std::string one = triplet(essenceKey(), noise(fourth / 3 - 20));
    writeFile(at("back/clip.mxf"), one + one + one + one);
    const FaultyFileSystem card(at("back"), at("card"), {.failReadAt = fourth});
    std::array<std::byte, 4> key;
    const File file = File::openForReading(card.path() / "clip.mxf");
    ASSERT_THROW(file.readAt(fourth, key), SystemError);

    EXPECT_EQ(walkOf(card.path() / "clip.mxf"), (MXFScan::Walk{fourth, false, 3}));
}

TEST_F(MXFScanFileTest, Position_BeforeTheFile_IsNone) {
    writeFile(at("clip.mxf"), mxfClip("picture"));
    const File file = File::openForReading(at("clip.mxf"));

    EXPECT_EQ(MXFScan::walk(file, -1, file.size()), std::nullopt);
}
