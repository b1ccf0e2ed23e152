#include "CarveImage.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "Support/Boxes.h"
#include "Support/FaultyFileSystem.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Found = std::optional<Finding>;

/// Walks from a place of an image that has these bytes and nothing else.
Found walkFrom(std::int64_t start, std::string_view bytes) {
    const CarveImage image(bytes);
    const File file = image.open();
    CarveGround ground(file, image.size(), [] { return false; });
    ground.begin(start);
    return MovieWalker(ground).walk(start);
}

Found walk(std::string_view bytes) {
    return walkFrom(0, bytes);
}

Found complete(std::size_t length) {
    return Finding{FindingKind::movie, 0, static_cast<std::int64_t>(length), true};
}

Found incomplete(std::size_t length) {
    return Finding{FindingKind::movie, 0, static_cast<std::int64_t>(length), false};
}

const std::string ftyp = fileTypeBox();
const std::string moov = box("moov", "an index");
const std::string mdat = box("mdat", "the pictures and the sound");

TEST(WalkMovie, IndexBehindMedia_EndsWithTheIndexAndIsComplete) {
    EXPECT_EQ(walk(ftyp + mdat + moov), complete((ftyp + mdat + moov).size()));
}

TEST(WalkMovie, IndexBeforeMediaAndGarbageBehind_IsComplete) {
    const std::string clip = ftyp + moov + mdat;

    EXPECT_EQ(walk(clip + garbage(100)), complete(clip.size()));
}

TEST(WalkMovie, ClipInTheMiddleOfAnImage_IsFollowedFromWhereItBegins) {
    const std::string clip = ftyp + mdat + moov;

    EXPECT_EQ(walkFrom(13, garbage(13) + clip + garbage(50)),
              (Finding{FindingKind::movie, 13, std::ssize(clip), true}));
}

TEST(WalkMovie, KnownBoxesBehindTheIndex_BelongToTheClip) {
    for (const char* type :
         {"moov", "mdat", "free", "skip", "wide", "uuid", "meta", "moof", "mfra", "pnot"}) {
        const std::string clip = ftyp + mdat + moov + box(type, "more");

        EXPECT_EQ(walk(clip + garbage(100)), complete(clip.size())) << type;
    }
}

TEST(WalkMovie, KnownBoxesBeforeTheIndex_AreSteppedOver) {
    for (const char* type : {"free", "skip", "wide", "uuid", "meta", "moof", "mfra", "pnot"}) {
        const std::string clip = ftyp + box(type, "more") + mdat + box(type) + moov;

        EXPECT_EQ(walk(clip + garbage(100)), complete(clip.size())) << type;
    }
}

TEST(WalkMovie, UnknownBoxBehindTheIndex_IsNotOfTheClip) {
    for (const char* type : {"udta", "trak", "ftyq", "MDAT", "Free", "icpf"}) {
        const std::string clip = ftyp + mdat + moov;

        EXPECT_EQ(walk(clip + box(type, "more")), complete(clip.size())) << type;
    }
}

TEST(WalkMovie, UnknownBoxBeforeTheIndex_EndsAnIncompleteClip) {
    EXPECT_EQ(walk(ftyp + mdat + box("udta") + moov), incomplete((ftyp + mdat).size()));
}

TEST(WalkMovie, TypeThatIsNotASCII_EndsTheClip) {
    const std::string other = box("m\xF6ov", "more");

    EXPECT_EQ(walk(ftyp + mdat + other), incomplete((ftyp + mdat).size()));
    EXPECT_EQ(walk(ftyp + mdat + moov + other), complete((ftyp + mdat + moov).size()));
}

TEST(WalkMovie, TwoClipsBackToBack_TheFirstEndsAtTheSecond) {
    const std::string clip = ftyp + mdat + moov;

    EXPECT_EQ(walk(clip + ftyp + mdat + moov), complete(clip.size()));
}

TEST(WalkMovie, ClipWithoutAnIndexBeforeAnother_EndsThereAndIsIncomplete) {
    EXPECT_EQ(walk(ftyp + mdat + ftyp + mdat + moov), incomplete((ftyp + mdat).size()));
}

TEST(WalkMovie, FileTypeAndMediaWithoutAnIndex_IsAnIncompleteClip) {
    EXPECT_EQ(walk(ftyp + mdat), incomplete((ftyp + mdat).size()));
    EXPECT_EQ(walk(ftyp + mdat + garbage(50)), incomplete((ftyp + mdat).size()));
    EXPECT_EQ(walk(ftyp + mdat + box("free") + garbage(50)),
              incomplete((ftyp + mdat + box("free")).size()));
}

TEST(WalkMovie, FileTypeAndIndexWithoutMedia_IsAnIncompleteClip) {
    EXPECT_EQ(walk(ftyp + moov), incomplete((ftyp + moov).size()));
    EXPECT_EQ(walk(ftyp + moov + box("free") + garbage(50)),
              incomplete((ftyp + moov + box("free")).size()));
}

TEST(WalkMovie, FileTypeAlone_IsNothing) {
    EXPECT_EQ(walk(ftyp), std::nullopt);
    EXPECT_EQ(walk(ftyp + garbage(100)), std::nullopt);
    EXPECT_EQ(walk(ftyp + box("free", "much room") + box("wide") + garbage(9)), std::nullopt);
    EXPECT_EQ(walk(ftyp + ftyp), std::nullopt);
}

TEST(WalkMovie, MediaBeyondTheImage_IsAnIncompleteClipUpToItsEnd) {
    const std::string image = ftyp + boxHeader("mdat", 5000) + garbage(700);

    EXPECT_EQ(walk(image), incomplete(image.size()));
}

TEST(WalkMovie, AnyKnownBoxBeyondTheImage_IsAnIncompleteClipUpToItsEnd) {
    for (const std::string& image :
         {boxHeader("ftyp", 100) + garbage(20), ftyp + boxHeader("free", 100) + garbage(20),
          ftyp + mdat + boxHeader("moov", 100) + garbage(20),
          ftyp + mdat + moov + boxHeader("free", 100) + garbage(20)}) {
        EXPECT_EQ(walk(image), incomplete(image.size()));
    }
}

TEST(WalkMovie, BoxThatEndsWithTheImage_IsWhole) {
    const std::string media = boxHeader("mdat", 28) + garbage(20);

    EXPECT_EQ(walk(ftyp + moov + media), complete((ftyp + moov + media).size()));
    EXPECT_EQ(walk(ftyp + moov + media.substr(0, 27)),
              incomplete((ftyp + moov + media).size() - 1));
}

TEST(WalkMovie, SizeZero_ReachesToTheEndOfTheImage) {
    const std::string image = ftyp + moov + boxHeader("mdat", 0) + garbage(300);

    EXPECT_EQ(walk(image), complete(image.size()));
    const std::string withoutIndex = ftyp + boxHeader("mdat", 0) + garbage(300);
    EXPECT_EQ(walk(withoutIndex), incomplete(withoutIndex.size()));
}

TEST(WalkMovie, SizeOf64Bits_IsFollowed) {
    const std::string clip = ftyp + wideBox("mdat", "pictures") + moov;

    EXPECT_EQ(walk(clip + garbage(100)), complete(clip.size()));
}

TEST(WalkMovie, SizeOf64BitsThatIsCutOff_EndsTheClip) {
    const std::string header = wideBoxHeader("moov", 64).substr(0, 15);

    EXPECT_EQ(walk(ftyp + mdat + header), incomplete((ftyp + mdat).size()));
    EXPECT_EQ(walk(ftyp + header), std::nullopt);
}

TEST(WalkMovie, SizeOf64BitsBelow8_EndsTheClip) {
    for (const std::uint64_t size : {0U, 1U, 7U}) {
        EXPECT_EQ(walk(ftyp + mdat + wideBoxHeader("moov", size) + garbage(100)),
                  incomplete((ftyp + mdat).size()))
            << size;
    }
}

TEST(WalkMovie, SizeOf64BitsFrom8OnIsTakenAsItStands) {
    const std::string head = ftyp + mdat + boxHeader("moov", 1);

    EXPECT_EQ(walk(head + bigEndian(8, 8) + garbage(100)), complete(head.size()));
}

TEST(WalkMovie, LargestSizes_AreAnIncompleteClipUpToTheEnd) {
    for (const std::uint64_t size : {(1ULL << 63U) - 1, (1ULL << 63U) - 40}) {
        const std::string image = ftyp + wideBoxHeader("mdat", size) + garbage(50);

        EXPECT_EQ(walk(image), incomplete(image.size())) << size;
    }
}

TEST(WalkMovie, SizeFrom2To63On_EndsTheClip) {
    for (const std::uint64_t size : {~0ULL, 1ULL << 63U}) {
        const std::string head = ftyp + moov;

        EXPECT_EQ(walk(ftyp + wideBoxHeader("mdat", size) + garbage(50)), std::nullopt) << size;
        EXPECT_EQ(walk(head + wideBoxHeader("mdat", size) + garbage(50)), incomplete(head.size()))
            << size;
    }
}

TEST(WalkMovie, SizeBelow8_EndsTheClip) {
    for (const std::uint32_t size : {2U, 7U}) {
        EXPECT_EQ(walk(ftyp + mdat + boxHeader("moov", size) + garbage(100)),
                  incomplete((ftyp + mdat).size()))
            << size;
    }
}

TEST(WalkMovie, EmptyMediaAndIndex_AreBoxesLikeAnyOther) {
    const std::string clip = ftyp + box("moov") + box("mdat");

    EXPECT_EQ(walk(clip + garbage(20)), complete(clip.size()));
}

TEST(WalkMovie, LessThan8BytesBehindTheClip_EndIt) {
    const std::string clip = ftyp + moov + mdat;
    for (std::size_t rest = 0; rest < 8; ++rest) {
        EXPECT_EQ(walk(clip + box("free").substr(0, rest)), complete(clip.size())) << rest;
        EXPECT_EQ(walk(ftyp + mdat + box("moov").substr(0, rest)), incomplete((ftyp + mdat).size()))
            << rest;
    }
}

TEST(WalkMovie, DamagedBoxOfKnownTypeBehindTheClip_LeavesItComplete) {
    const std::string clip = ftyp + moov + mdat;

    EXPECT_EQ(walk(clip + boxHeader("free", 3) + garbage(50)), complete(clip.size()));
    EXPECT_EQ(walk(clip + wideBoxHeader("free", 3) + garbage(50)), complete(clip.size()));
}

TEST(WalkMovie, MovieThatBeginsWithoutAFileType_IsFollowedToo) {
    EXPECT_EQ(walk(mdat + moov + garbage(20)), complete((mdat + moov).size()));
}

TEST(WalkMovie, LessThan8BytesOfImage_IsNothing) {
    EXPECT_EQ(walk(ftyp.substr(0, 7)), std::nullopt);
    EXPECT_EQ(walkFrom(3, "xxx" + ftyp.substr(0, 7)), std::nullopt);
    EXPECT_EQ(walkFrom(100, ftyp), std::nullopt);
    EXPECT_EQ(walk(""), std::nullopt);
}

TEST(WalkMovie, PartThatCannotBeRead_EndsTheClip) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    CarveImage image(ftyp + boxHeader("mdat", 0x100000));
    const std::int64_t end = std::ssize(ftyp) + 0x100000;
    image.put(end, moov);
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(image.folder(), mountPoint.path(), {.failReadAt = 0x80000});
    const File file = File::openForReading(drive.path() / "card.img");

    CarveGround ground(file, image.size(), [] { return false; });
    EXPECT_EQ(MovieWalker(ground).walk(0), incomplete(static_cast<std::size_t>(end)));
}

}  // namespace
