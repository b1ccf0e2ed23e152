#include "CarveImage.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "Support/Boxes.h"
#include "Support/FaultyFileSystem.h"
#include "Support/KLV.h"
#include "Support/RIFF.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Found = std::optional<Finding>;

constexpr std::int64_t mebibyte = 0x100000;

Found walkFrom(std::int64_t start, const CarveImage& image) {
    const File file = image.open();
    CarveGround ground(file, image.size(), [] { return false; });
    ground.begin(start);
    return WaveWalker(ground).walk(start);
}

Found walk(std::string_view bytes) {
    return walkFrom(0, CarveImage(bytes));
}

Found complete(std::int64_t length) {
    return Finding{FindingKind::wave, 0, length, true};
}

Found incomplete(std::int64_t length) {
    return Finding{FindingKind::wave, 0, length, false};
}

/// The first 12 bytes, then chunks or pieces of them.
std::string wave(std::uint32_t riffSize, std::string_view chunks) {
    return "RIFF" + littleEndian(riffSize, 4) + "WAVE" + std::string(chunks);
}

const std::string format = riffChunk("fmt ", formatPayload({}));

/// The head of a recording that was never closed: 44 bytes, every size of it 0.
const std::string neverClosed = wave(0, format + riffHeader("data", 0));

/// Sound of which no two neighbouring bytes are the same.
std::string sound(std::size_t size) {
    std::string bytes(size, 'a');
    for (std::size_t i = 1; i < size; i += 2) bytes[i] = 'b';
    return bytes;
}

TEST(WalkWave, WholeFile_EndsWithItsData) {
    const std::string file = broadcastWAV({.seconds = 0.1});

    EXPECT_EQ(walk(file + garbage(100)), complete(std::ssize(file)));
}

TEST(WalkWave, FileInTheMiddleOfAnImage_IsFollowedFromWhereItBegins) {
    const std::string file = broadcastWAV({.seconds = 0.1});

    EXPECT_EQ(walkFrom(33, CarveImage(garbage(33) + file + garbage(9))),
              (Finding{FindingKind::wave, 33, std::ssize(file), true}));
}

TEST(WalkWave, ChunksBehindTheData_AreHeldByTheRiffSize) {
    const std::string file = broadcastWAV({.seconds = 0.1, .iXML = "<BWFXML/>"});

    EXPECT_EQ(walk(file + garbage(100)), complete(std::ssize(file)));
}

TEST(WalkWave, DataBeyondAShorterRiffSize_TakesTheLaterEnd) {
    const std::string file = wave(100, format + riffChunk("data", sound(500)));

    EXPECT_EQ(walk(file + garbage(100)), complete(44 + 500));
}

TEST(WalkWave, RiffSizeBeyondTheData_TakesTheLaterEnd) {
    EXPECT_EQ(walk(wave(2000, format + riffChunk("data", sound(500))) + garbage(5000)),
              complete(2008));
}

TEST(WalkWave, DataOfOddSize_EndsWithItsLastByte) {
    EXPECT_EQ(walk(wave(0, format + riffHeader("data", 501)) + sound(600)), complete(44 + 501));
}

TEST(WalkWave, EmptyDataWithARiffSize_EndsByThatAndIsIncomplete) {
    EXPECT_EQ(walk(wave(36, format + riffHeader("data", 0)) + garbage(100)), incomplete(44));
    EXPECT_EQ(walk(wave(90, format + riffHeader("data", 0)) + garbage(100)), incomplete(98));
}

TEST(WalkWave, RiffSizeWithoutAnyChunk_EndsByThat) {
    EXPECT_EQ(walk(wave(1, garbage(100))), incomplete(9));
    EXPECT_EQ(walk(wave(50, garbage(100))), incomplete(58));
}

TEST(WalkWave, SizesBeyondTheImage_EndWithTheImage) {
    const std::string data = wave(0xFFFFFFFF, format + riffHeader("data", 0xFFFFFFFF)) + sound(300);

    EXPECT_EQ(walk(data), complete(std::ssize(data)));
    EXPECT_EQ(walk(wave(9999, garbage(100))), incomplete(112));
}

TEST(WalkWave, ChunkOfOddSize_IsFollowedByAByte) {
    const std::string odd = riffChunk("odd ", "12345");
    const std::string file = wave(0, odd + riffChunk("data", sound(40)));

    EXPECT_EQ(odd.size(), 14U);
    EXPECT_EQ(walk(file + garbage(10)), complete(std::ssize(file)));
}

TEST(WalkWave, ChunkBelow16MiB_IsSteppedOverOnlyWithinTheFirstMebibyte) {
    CarveImage within(wave(0, riffHeader("JUNK", mebibyte - 28)));
    within.put(mebibyte - 8, riffHeader("data", 1000));
    within.resize(2 * mebibyte);
    CarveImage behind(wave(0, riffHeader("JUNK", mebibyte - 26)));
    behind.put(mebibyte - 6, riffHeader("data", 1000));
    behind.resize(2 * mebibyte);

    EXPECT_EQ(walkFrom(0, within), complete(mebibyte + 1000));
    EXPECT_FALSE(walkFrom(0, behind)->complete);
}

TEST(WalkWave, FirstMebibyte_CountsFromWhereTheFileBegins) {
    CarveImage image;
    image.put(5000, wave(0, riffHeader("JUNK", mebibyte - 28)));
    image.put(5000 + mebibyte - 8, riffHeader("data", 1000));
    image.resize(2 * mebibyte);

    EXPECT_EQ(walkFrom(5000, image), (Finding{FindingKind::wave, 5000, mebibyte + 1000, true}));
}

TEST(WalkWave, ChunkOf16MiBOrMore_EndsTheChunks) {
    const auto file = [](std::uint32_t size) {
        return wave(0, riffHeader("huge", size)) + sound(200) + std::string(5000, '\0');
    };

    // The search for blank flash begins behind the header of the last chunk, 44 bytes in or later.
    EXPECT_EQ(walk(file(0x1000000)), incomplete(20 + 200));
    EXPECT_EQ(walk(file(0xFFFFFFFF)), incomplete(20 + 200));
    // A chunk below that is stepped over: the search begins behind it, where there is no image.
    EXPECT_EQ(walk(file(0xFFFFFF)), incomplete(std::ssize(file(0xFFFFFF))));
}

TEST(WalkWave, IdThatIsNotASCIIOrBreaksALine_EndsTheChunks) {
    for (const char c : {'\x80', '\xFF', '\n', '\v', '\f', '\r'}) {
        const std::string id = std::string("da") + c + "x";
        const std::string file = wave(0, riffHeader(id, 4) + "1234" + riffChunk("data", sound(90)));

        EXPECT_FALSE(walk(file)->complete) << static_cast<int>(c);
    }
}

TEST(WalkWave, IdOfOtherControlCharacters_IsAChunk) {
    for (const char c : {'\0', '\t', '\x0E', '\x1F', '\x7F', ' '}) {
        const std::string id = std::string("da") + c + "x";
        const std::string file = wave(0, riffHeader(id, 4) + "1234" + riffChunk("data", sound(90)));

        EXPECT_EQ(walk(file), complete(std::ssize(file))) << static_cast<int>(c);
    }
}

TEST(WalkWave, LessThan12Bytes_IsNothing) {
    EXPECT_EQ(walk(wave(50, "").substr(0, 11)), std::nullopt);
    EXPECT_EQ(walkFrom(5, CarveImage("xxxxx" + wave(50, "").substr(0, 11))), std::nullopt);
    EXPECT_EQ(walk(wave(50, "")), incomplete(12));
}

TEST(WalkWave, NeverClosed_EndsAtBlankFlash) {
    for (const char blank : {'\0', '\xFF'}) {
        const std::string file = neverClosed + sound(1000);

        EXPECT_EQ(walk(file + std::string(4096, blank) + "more"), incomplete(std::ssize(file)));
    }
}

TEST(WalkWave, NeverClosed_RunBelow4096BytesIsSound) {
    const std::string file = neverClosed + sound(1000) + std::string(4095, '\0') +
                             std::string(4095, '\xFF') + sound(10) + std::string(9000, 'r');

    EXPECT_EQ(walk(file), incomplete(std::ssize(file)));
}

TEST(WalkWave, NeverClosed_BlankRightBehindTheHeaderEndsItThere) {
    EXPECT_EQ(walk(neverClosed + std::string(5000, '\0')), incomplete(44));
}

TEST(WalkWave, NeverClosed_EndsAtTheNextSignature) {
    const std::string file = neverClosed + sound(1000);

    EXPECT_EQ(walk(file + fileTypeBox()), incomplete(std::ssize(file)));
    EXPECT_EQ(walk(file + partitionKey(2)), incomplete(std::ssize(file)));
    EXPECT_EQ(walk(file + neverClosed), incomplete(std::ssize(file)));
    EXPECT_EQ(walk(file + boxHeader("icpf", 20)), incomplete(std::ssize(file)));
}

TEST(WalkWave, NeverClosed_SignatureRightWhereTheSearchBeginsIsPassedOver) {
    EXPECT_EQ(walk(neverClosed + fileTypeBox() + sound(100)),
              incomplete(44 + std::ssize(fileTypeBox()) + 100));
    EXPECT_EQ(walk(neverClosed + "a" + fileTypeBox()), incomplete(45));
}

TEST(WalkWave, NeverClosed_BlankWinsOverAnEarlierSignatureOfTheSameBlock) {
    const std::string sounding = neverClosed + sound(1000) + fileTypeBox() + sound(1000);

    EXPECT_EQ(walk(sounding + std::string(4096, '\0')), incomplete(std::ssize(sounding)));
}

TEST(WalkWave, NeverClosed_SignatureInOneBlockWinsOverBlankInTheNext) {
    CarveImage image(neverClosed + sound(9 * mebibyte) + std::string(8192, '\0'));
    image.put(44 + 0x7F0000, fileTypeBox());

    EXPECT_EQ(walkFrom(0, image), incomplete(44 + 0x7F0000));
}

TEST(WalkWave, NeverClosed_BlankInALaterBlockIsFound) {
    const std::string file = neverClosed + sound(20 * mebibyte);

    EXPECT_EQ(walk(file + std::string(4096, '\xFF')), incomplete(std::ssize(file)));
}

TEST(WalkWave, NeverClosed_BlankAcrossTheEndOfABlockIsFoundInTheNext) {
    const std::int64_t endOfBlock = 44 + 0x800000;
    CarveImage image(neverClosed + sound(9 * mebibyte));
    image.put(endOfBlock - 4000, std::string(4096, '\0'));

    EXPECT_EQ(walkFrom(0, image), incomplete(endOfBlock - 4000));
}

TEST(WalkWave, NeverClosed_SignatureAcrossTheEndOfABlockIsFoundInTheNext) {
    const std::int64_t endOfBlock = 44 + 0x800000;
    CarveImage image(neverClosed + sound(9 * mebibyte));
    image.put(endOfBlock - 5, fileTypeBox());

    EXPECT_EQ(walkFrom(0, image), incomplete(endOfBlock - 5));
}

TEST(WalkWave, NeverClosed_SearchBeginsAtLeast44BytesIn) {
    const std::string file = wave(0, "\n") + std::string(30, '\0');

    EXPECT_EQ(walk(file + std::string(5000, '\0')), incomplete(44));
}

TEST(WalkWave, NeverClosed_SearchBeginsBehindTheLastChunksHeader) {
    const std::string file =
        wave(0, format + riffChunk("bext", std::string(8192, '\0')) + riffHeader("data", 0));

    EXPECT_EQ(walk(file + sound(500) + std::string(4096, '\0')),
              incomplete(std::ssize(file) + 500));
}

TEST(WalkWave, NeverClosed_ImageThatEndsBeforeTheSearchBegins) {
    EXPECT_EQ(walk(neverClosed), incomplete(44));
    EXPECT_EQ(walk(wave(0, "")), incomplete(12));
    EXPECT_EQ(walk(wave(0, riffHeader("JUNK", 5000))), incomplete(20));
}

TEST(WalkWave, NeverClosed_PartThatCannotBeRead_EndsWithTheImage) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    CarveImage image(neverClosed + sound(100'000));
    image.resize(300'000);
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(image.folder(), mountPoint.path(), {.failReadAt = 65'536});
    const File file = File::openForReading(drive.path() / "card.img");

    CarveGround ground(file, image.size(), [] { return false; });
    EXPECT_EQ(WaveWalker(ground).walk(0), incomplete(300'000));
}

TEST(CarveWave, EveryFileOfTwoBackToBack_IsFound) {
    const std::string first = broadcastWAV({.seconds = 0.1});
    const std::string second = broadcastWAV({.seconds = 0.2});

    EXPECT_EQ(
        CarveImage(first + second).scan(),
        (std::vector<Finding>{{FindingKind::wave, 0, std::ssize(first), true},
                              {FindingKind::wave, std::ssize(first), std::ssize(second), true}}));
}

TEST(CarveWave, NeverClosedBeforeAMovie_EndsThere) {
    const std::string file = neverClosed + sound(1000);
    const std::string movie = fileTypeBox() + box("moov", "index") + box("mdat", "pictures");

    EXPECT_EQ(
        CarveImage(file + movie).scan(),
        (std::vector<Finding>{{FindingKind::wave, 0, std::ssize(file), false},
                              {FindingKind::movie, std::ssize(file), std::ssize(movie), true}}));
}

}  // namespace
