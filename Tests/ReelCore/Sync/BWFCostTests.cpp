// What a read costs, whatever the file's size: counted calls, bytes and memory, not times.

#include "BWFFixture.h"
#include "Support/CountedReads.h"
#include "Support/Forked.h"
#include "Support/SparseFile.h"

#include <map>

#include <sys/resource.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

constexpr std::int64_t mebibyte = 1 << 20U;
constexpr std::int64_t gibibyte = 1 << 30U;

struct CountedClip {
    AudioClip clip;
    Reads reads;
};

CountedClip countedRead(const URL& recording) {
    CountedClip counted;
    counted.reads = readsOf([&] { counted.clip = BWFReader::read(recording); });
    return counted;
}

/// The memory in KiB by which a read of the recording raises this process's peak. In a process of
/// its own only: a peak never falls.
std::int64_t peakRaisedBy(const URL& recording) {
    rusage before{};
    rusage after{};
    ::getrusage(RUSAGE_SELF, &before);
    BWFReader::read(recording);
    ::getrusage(RUSAGE_SELF, &after);
    return after.ru_maxrss - before.ru_maxrss;
}

/// The beginning of a recording up to its sound, which claims this many bytes.
std::string beginning(std::uint32_t soundSize) {
    return "RIFF" + littleEndian(0xFFFFFFFF, 4) + "WAVE" + plainFormat() +
           broadcastChunk(172800000) + riffHeader("data", soundSize);
}

const std::string slate = riffChunk("iXML", "<SCENE>12</SCENE><NAME>Boom</NAME>");

class BWFCostTest : public BWFTest {
protected:
    URL recording() const { return at("T001.WAV"); }

    /// A recording of 12 GiB, nearly all a hole, whose slate stands at its very end.
    void writeLong(const std::map<std::int64_t, std::string>& pieces,
                   std::int64_t slatePlace) const {
        auto all = pieces;
        all[slatePlace] = slate;
        writeSparse(recording(), all, slatePlace + std::ssize(slate));
    }
};

}  // namespace

TEST_F(BWFCostTest, Read_ShortRecording_TakesTwoReads) {
    writeFile(recording(), broadcastWAV({.seconds = 0.01, .iXML = "<SCENE>12</SCENE>"}));

    const Reads cost = countedRead(recording()).reads;

    EXPECT_LE(cost.calls, 2) << "the file, and its end";
    EXPECT_LE(cost.bytes, 2 * 4096);
}

TEST_F(BWFCostTest, Read_SlateBehindTheSound_TakesThreeReads) {
    writeFile(recording(), broadcastWAV({.seconds = 10.0, .iXML = "<SCENE>12</SCENE>"}));

    const Reads cost = countedRead(recording()).reads;

    EXPECT_LE(cost.calls, 3) << "the beginning, what follows the sound, and its end";
    EXPECT_LE(cost.bytes, 2 * 4096);
}

TEST_F(BWFCostTest, Read_12GBOfSoundInThreeChunks_TakesAHandfulOfReads) {
    constexpr std::uint32_t soundSize = 0xFFFFFFF0;
    const std::int64_t first = std::ssize(beginning(soundSize)) + soundSize;
    const std::int64_t second = first + 8 + soundSize;
    writeLong({{0, beginning(soundSize)},
               {first, riffHeader("junk", soundSize)},
               {second, riffHeader("data", soundSize)}},
              second + 8 + soundSize);

    const auto [clip, cost] = countedRead(recording());

    EXPECT_EQ(clip.scene, "12");
    EXPECT_EQ(clip.duration, 4294967280.0 / 3.0 / 48000.0);
    EXPECT_LE(cost.calls, 6);
    EXPECT_LE(cost.bytes, 6 * 4096);
}

TEST_F(BWFCostTest, Read_LargestSoundSizeIn12GB_TakesAHandfulOfReads) {
    constexpr std::uint32_t soundSize = 0xFFFFFFFF;
    const std::int64_t behind = std::ssize(beginning(soundSize)) + soundSize + 1;
    writeLong({{0, beginning(soundSize)}}, behind + 8 * gibibyte);

    const auto [clip, cost] = countedRead(recording());

    EXPECT_EQ(clip.scene, "12");
    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_LE(cost.calls, 6);
    EXPECT_LE(cost.bytes, 6 * 4096);
}

TEST_F(BWFCostTest, Read_SoundSizeNeverWrittenIn12GB_TakesAHandfulOfReads) {
    writeLong({{0, beginning(0)}}, std::ssize(beginning(0)) + 12 * gibibyte);

    const auto [clip, cost] = countedRead(recording());

    EXPECT_EQ(clip.scene, "12");
    EXPECT_EQ(clip.duration, 0.0);
    EXPECT_LE(cost.calls, 6);
    EXPECT_LE(cost.bytes, 6 * 4096);
}

TEST_F(BWFCostTest, Read_HoleUpToTheEnd_TakesAHandfulOfReads) {
    writeSparse(recording(), {{0, beginning(0)}}, 12 * gibibyte + 5);

    EXPECT_LE(countedRead(recording()).reads.calls, 6);
}

TEST_F(BWFCostTest, Read_WrittenSilenceWithoutASize_IsReadOnce) {
    const std::int64_t size = 256 * mebibyte;
    writeFile(recording(), beginning(0) + std::string(size, '\0') + slate);

    const auto [clip, cost] = countedRead(recording());

    EXPECT_EQ(clip.scene, "12");
    EXPECT_LE(cost.bytes, size + 4 * 4096);
    EXPECT_LE(cost.calls, size / 4096 + 8);
}

// Silence with sound between that reads as small chunks: at every length of the silence, nothing
// may be read again and again.
TEST_F(BWFCostTest, Read_ZerosAndTinyChunksInTurn_AreReadOnce) {
    for (const std::size_t zeros : {8U, 504U, 4080U, 4088U, 4096U, 8192U, 12'288U, 65'536U}) {
        std::string chunks;
        while (chunks.size() < 4 * mebibyte) {
            chunks += std::string(zeros, '\0') + riffChunk("tiny", "") + riffChunk("tiny", "four");
        }
        writeFile(recording(), riffFile(plainFormat() + chunks + slate));

        const auto [clip, cost] = countedRead(recording());

        EXPECT_EQ(clip.scene, "12") << zeros;
        EXPECT_LE(cost.bytes, std::ssize(chunks) * 11 / 10) << zeros;
    }
}

TEST_F(BWFCostTest, Read_ManySlates_ReadsTheLastAlone) {
    std::string chunks;
    while (chunks.size() < 4 * mebibyte) chunks += riffChunk("iXML", "<SCENE>1</SCENE>x");
    writeFile(recording(), riffFile(chunks + slate));

    const auto [clip, cost] = countedRead(recording());

    EXPECT_EQ(clip.scene, "12");
    EXPECT_LE(cost.calls, std::ssize(chunks) / 4096 * 11 / 10);
}

TEST_F(BWFCostTest, Read_LongRecording_TakesLittleMemory) {
    writeLong({{0, beginning(0)}}, std::ssize(beginning(0)) + 12 * gibibyte);

    const int status = statusOfForked([&] { return peakRaisedBy(recording()) < 4096 ? 0 : 1; });

    EXPECT_EQ(status, 0);
}

TEST_F(BWFCostTest, Read_SlateThatClaimsFourGigabytes_IsCutAt16MiB) {
    const std::string header = riffFile(plainFormat()) + riffHeader("iXML", 0xFFFFFFFF);
    const std::int64_t longest = 16 * mebibyte;
    const std::string last = "<SCENE>12</SCENE>";
    const std::int64_t place = std::ssize(header) + longest - std::ssize(last);
    const std::int64_t size = 6 * gibibyte;
    writeSparse(recording(), {{0, header}, {place, last + "<TAKE>3</TAKE>"}}, size);

    const auto [clip, cost] = countedRead(recording());
    // Four gigabytes if it were not cut; a sanitizer keeps some bytes for each of the program's.
    constexpr std::int64_t mostKiB = 512 * 1024;
    const int status = statusOfForked([&] { return peakRaisedBy(recording()) < mostKiB ? 0 : 1; });

    EXPECT_EQ(clip.scene, "12") << "the last that is read";
    EXPECT_EQ(clip.take, std::nullopt) << "the first that is not";
    EXPECT_LE(cost.bytes, longest + 4 * 4096);
    EXPECT_EQ(status, 0);
}
