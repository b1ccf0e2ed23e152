// What a walk over the top level costs, and what it makes of real clips.

#include "ReelCore/Recovery/MP4Scan.h"
#include "Support/Boxes.h"
#include "Support/Clip.h"
#include "Support/CountedReads.h"
#include "Support/FolderTree.h"
#include "Support/SparseFile.h"
#include "Support/Tool.h"

#include <regex>

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Boxes = std::vector<TopLevelBox>;
using Types = std::vector<std::string>;

constexpr std::int64_t tebibyte = std::int64_t{1} << 40U;

class MP4ScanCostTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

private:
    TemporaryFolder folder_;
};

Types typesOf(const Boxes& boxes) {
    Types types;
    for (const TopLevelBox& box : boxes) types.push_back(box.type);
    return types;
}

/// The boxes as ffprobe tells them while it opens a clip; it tells no header sizes, and the clips
/// here have the plain ones.
Boxes boxesByFFprobe(const URL& clip) {
    const std::string log = outputOf("ffprobe", {"-v", "trace", "file:" + clip.native()});
    const std::regex line("type:'(....)' parent:'root' sz: ([0-9]+) ([0-9]+) ");
    Boxes boxes;
    for (std::sregex_iterator found(log.begin(), log.end(), line), end; found != end; ++found) {
        const std::int64_t size = std::stoll((*found)[2]);
        const std::int64_t payloadOffset = std::stoll((*found)[3]);
        boxes.push_back({(*found)[1], payloadOffset - 8, 8, size - 8, false});
    }
    return boxes;
}

}  // namespace

TEST_F(MP4ScanCostTest, Walk_FourTerabytesOfMedia_Takes16BytesABox) {
    const std::int64_t end = 4 * tebibyte;
    writeSparse(at("clip.mov"),
                {{0, fileTypeBox() + wideBoxHeader("mdat", end - 20)}, {end, box("moov", "index")}},
                end + 13);
    MP4Scan::TopLevel found;

    const Reads cost = readsOf([&] { found = MP4Scan::topLevel(at("clip.mov")); });

    EXPECT_EQ(typesOf(found.boxes), (Types{"ftyp", "mdat", "moov"}));
    EXPECT_EQ(found.boxes.back().offset, end);
    EXPECT_LE(cost.calls, 4) << "one a box, and one that comes back short at the end";
    EXPECT_LE(cost.bytes, 3 * 16);
}

TEST_F(MP4ScanCostTest, Walk_BoxesOfAHeaderEach_TakesFewReadsAndEachByteOnce) {
    std::string boxes;
    for (int i = 0; i < 10'000; ++i) boxes += box("free") + wideBox("skip") + box("wide", "1");
    writeFile(at("clip.mov"), boxes + box("mdat", std::string(100'000, 'm')) + box("moov", "1"));
    Types types;

    const Reads cost = readsOf([&] {
        MP4Scan::walk(at("clip.mov"), [&](const TopLevelBox& one) { types.push_back(one.type); });
    });

    ASSERT_EQ(types.size(), 30'002U);
    EXPECT_EQ((Types{types.end() - 4, types.end()}), (Types{"skip", "wide", "mdat", "moov"}));
    EXPECT_LE(cost.calls, 110);
    EXPECT_LE(cost.bytes, std::ssize(boxes) + 110 * 16 + 4096);
}

TEST_F(MP4ScanCostTest, RealClip_QuickTime_HasTheBoxesThatFFprobeFinds) {
    makeClip(at("clip.mov"), {.timecode = "10:00:00:00"});

    const MP4Scan::TopLevel found = MP4Scan::topLevel(at("clip.mov"));

    EXPECT_EQ(typesOf(found.boxes), (Types{"ftyp", "wide", "mdat", "moov"}));
    EXPECT_EQ(found.boxes, boxesByFFprobe(at("clip.mov")));
    EXPECT_EQ(found.boxes.back().payloadOffset() + found.boxes.back().declaredPayload,
              found.fileSize);
}

TEST_F(MP4ScanCostTest, RealClip_MP4WithItsIndexInFront_HasTheBoxesThatFFprobeFinds) {
    makeClip(
        at("clip.mp4"),
        {.video = {"-c:v", "mpeg4"}, .audio = {"-c:a", "aac"}, .more = {"-movflags", "faststart"}});

    const Boxes found = MP4Scan::topLevel(at("clip.mp4")).boxes;

    EXPECT_EQ(typesOf(found), (Types{"ftyp", "moov", "free", "mdat"}));
    EXPECT_EQ(found, boxesByFFprobe(at("clip.mp4")));
}

TEST_F(MP4ScanCostTest, RealClip_FragmentedMP4_HasTheBoxesThatFFprobeFinds) {
    makeClip(at("clip.mp4"), {.video = {"-c:v", "mpeg4", "-g", "10"},
                              .audio = {"-c:a", "aac"},
                              .more = {"-movflags", "frag_keyframe+empty_moov"}});

    const Boxes found = MP4Scan::topLevel(at("clip.mp4")).boxes;

    EXPECT_EQ(typesOf(found),
              (Types{"ftyp", "moov", "moof", "mdat", "moof", "mdat", "moof", "mdat", "mfra"}));
    EXPECT_EQ(found, boxesByFFprobe(at("clip.mp4")));
}

TEST_F(MP4ScanCostTest, RealClip_CutOff_EndsWithABoxBeyondTheEnd) {
    makeClip(at("clip.mov"));
    const MP4Scan::TopLevel whole = MP4Scan::topLevel(at("clip.mov"));
    std::filesystem::resize_file(at("clip.mov"), 50'000);

    const MP4Scan::TopLevel cut = MP4Scan::topLevel(at("clip.mov"));

    EXPECT_EQ(cut.fileSize, 50'000);
    EXPECT_EQ(typesOf(cut.boxes), (Types{"ftyp", "wide", "mdat"}));
    EXPECT_EQ(cut.boxes.back(), whole.boxes[2]);
    EXPECT_GT(cut.boxes.back().payloadOffset() + cut.boxes.back().declaredPayload, cut.fileSize);
}
