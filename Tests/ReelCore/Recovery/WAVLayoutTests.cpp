#include "ReelCore/Recovery/WAVLayout.h"

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Sync/BWFReader.h"
#include "SoundFile.h"
#include "Support/Clip.h"
#include "Support/CountedReads.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"
#include "Support/Snapshot.h"
#include "Support/SparseFile.h"

#include <cerrno>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using BWFError = BWFReader::BWFError;

class WAVLayoutTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

    WAVLayout layoutOf(std::string_view bytes) const {
        writeFile(at("T001.WAV"), bytes);
        return WAVLayout::read(at("T001.WAV"));
    }

    /// The layout of a file whose sound follows a "fmt " chunk with this payload.
    WAVLayout layoutWithFormat(std::string_view payload) const {
        return layoutOf(riffFile(riffChunk("fmt ", payload) + riffChunk("data", "sound!")));
    }

    /// What the failure to read these bytes says; empty where it is another failure or none.
    std::string failureOf(std::string_view bytes) const {
        try {
            layoutOf(bytes);
        } catch (const BWFError& error) {
            return error.description();
        }
        return "";
    }

    int codeOf(const URL& file) const {
        try {
            WAVLayout::read(file);
        } catch (const SystemError& error) {
            return error.code();
        }
        return 0;
    }

private:
    TemporaryFolder folder_;
};

const std::string noSound = "Could not read WAV: no data chunk";
const std::string noRIFF = "Not a RIFF/WAVE file.";

/// 48 kHz, stereo, 24 bit.
std::string stereoFormat() {
    return formatPayload({.channels = 2});
}

}  // namespace

TEST_F(WAVLayoutTest, File_InOrder_TellsEachPlaceAndSize) {
    const std::string bytes =
        riffFile(riffChunk("fmt ", stereoFormat()) + riffChunk("data", "sound!"));

    const WAVLayout layout = layoutOf(bytes);

    EXPECT_EQ(layout, (WAVLayout{.riffSize = 42,
                                 .declaredData = 6,
                                 .dataSizeOffset = 40,
                                 .dataOffset = 44,
                                 .sampleRate = 48000.0,
                                 .blockAlign = 6}));
}

TEST_F(WAVLayoutTest, Sizes_AreToldAsDeclaredWhateverFollows) {
    const std::string bytes =
        "RIFF" + littleEndian(0xFFFFFFFF, 4) + "WAVE" + riffHeader("data", 0xFFFFFFFE) + "sound";

    EXPECT_EQ(layoutOf(bytes).riffSize, 0xFFFFFFFF);
    EXPECT_EQ(layoutOf(bytes).declaredData, 0xFFFFFFFE);
    EXPECT_EQ(layoutOf("RIFF" + littleEndian(0, 4) + "WAVE" + riffHeader("data", 0)),
              (WAVLayout{.riffSize = 0, .dataSizeOffset = 16, .dataOffset = 20}));
}

TEST_F(WAVLayoutTest, Beginning_OfNoRIFFWAVEFile_IsRefused) {
    const std::string sound = riffFile(riffChunk("data", "sound!"));
    for (const std::string& bytes :
         {std::string(), sound.substr(0, 11), "RIFX" + sound.substr(4), "RF64" + sound.substr(4),
          "riff" + sound.substr(4), sound.substr(0, 8) + "AVI " + sound.substr(12)}) {
        EXPECT_EQ(failureOf(bytes), noRIFF) << bytes;
    }
}

TEST_F(WAVLayoutTest, File_WithoutSound_IsUnreadable) {
    const std::string format = riffChunk("fmt ", stereoFormat());
    for (const std::string& chunks :
         {std::string(), format, format + riffHeader("data", 6).substr(0, 7),
          format + riffChunk("DATA", "sound!")}) {
        EXPECT_EQ(failureOf(riffFile(chunks)), noSound);
    }
}

TEST_F(WAVLayoutTest, Chunk_ThatReachesBeyondTheFile_EndsTheWalk) {
    for (const std::uint32_t size : {20U, 0xFFFFFFFFU}) {
        EXPECT_EQ(failureOf(riffFile(riffHeader("junk", size) + riffChunk("data", "sound!"))),
                  noSound);
    }
}

TEST_F(WAVLayoutTest, Chunk_OfOddSize_IsFollowedAtTheNextEvenDistance) {
    const WAVLayout layout = layoutOf(riffFile(riffChunk("junk", "odd") + riffChunk("data", "s")));

    EXPECT_EQ(layout.dataOffset, 12 + 8 + 4 + 8);
    EXPECT_EQ(layout.declaredData, 1);
}

TEST_F(WAVLayoutTest, EmptyChunks_AreStepsOf8Bytes) {
    for (const std::size_t zeros : {8U, 800U, 65'536U, 65'544U, 200'000U}) {
        const std::string chunks = std::string(zeros, '\0') + riffChunk("data", "s");

        EXPECT_EQ(layoutOf(riffFile(chunks)).dataOffset, 12 + zeros + 8);
    }
}

TEST_F(WAVLayoutTest, EmptyChunks_NextToSoundAtNoMultipleOf8_LeadAstray) {
    const std::string sound = riffChunk("data", "sound!");

    EXPECT_EQ(failureOf(riffFile(std::string(804, '\0') + sound)), noSound);
    EXPECT_EQ(failureOf(riffFile(std::string(801, '\0') + sound)), noSound);
}

TEST_F(WAVLayoutTest, EmptyChunks_UpToTheEnd_AreNoSound) {
    for (const std::size_t zeros : {7U, 8U, 12U, 65'536U, 65'540U}) {
        EXPECT_EQ(failureOf(riffFile(std::string(zeros, '\0'))), noSound) << zeros;
    }
}

TEST_F(WAVLayoutTest, Cost_ZerosInPlaceOfChunks_AreReadOnceAndHolesNotAtAll) {
    constexpr std::int64_t gibibyte = 1 << 30U;
    const std::string front = "RIFF" + littleEndian(0, 4) + "WAVE" + std::string(4'000'000, '\0');
    writeSparse(at("T001.WAV"), {{0, front}, {12 + 40 * gibibyte, riffHeader("data", 4) + "1234"}},
                41 * gibibyte);
    WAVLayout layout;

    const Reads cost = readsOf([&] { layout = WAVLayout::read(at("T001.WAV")); });

    EXPECT_EQ(layout.dataOffset, 12 + 40 * gibibyte + 8);
    EXPECT_LE(cost.bytes, std::ssize(front) + 200'000);
    EXPECT_LE(cost.calls, 80);
}

TEST_F(WAVLayoutTest, Cost_SingleEmptyChunksBetweenOthers_TakeAFewBytesEach) {
    std::string chunks;
    for (int i = 0; i < 1000; ++i) chunks += std::string(8, '\0') + riffChunk("junk", "odd");
    writeFile(at("T001.WAV"), riffFile(chunks + riffChunk("data", "s")));
    WAVLayout layout;

    const Reads cost = readsOf([&] { layout = WAVLayout::read(at("T001.WAV")); });

    EXPECT_EQ(layout.declaredData, 1);
    EXPECT_LE(cost.bytes, 1000 * 40);
}

TEST_F(WAVLayoutTest, Format_Of16BytesOrMore_GivesRateAndBlockAlign) {
    const std::string format = formatPayload({.sampleRate = 96000, .channels = 8});
    for (const std::string& payload : {format, format + "xx", format + std::string(1000, 'x')}) {
        EXPECT_EQ(layoutWithFormat(payload).sampleRate, 96000.0);
        EXPECT_EQ(layoutWithFormat(payload).blockAlign, 24);
    }
}

TEST_F(WAVLayoutTest, Format_CutShort_GivesWhatIsWhole) {
    for (const std::size_t size : {0U, 3U, 4U, 7U, 8U, 10U, 12U, 13U, 14U}) {
        const WAVLayout layout = layoutWithFormat(stereoFormat().substr(0, size));

        EXPECT_EQ(layout.sampleRate, size < 8 ? 0.0 : 48000.0) << size;
        EXPECT_EQ(layout.blockAlign, size < 14 ? 0 : 6) << size;
    }
}

TEST_F(WAVLayoutTest, Format_MissingOrBehindTheSound_IsThatOf48kHz) {
    const std::string other = riffChunk("fmt ", formatPayload({.sampleRate = 96000}));
    for (const std::string& behind : {std::string(), other}) {
        const WAVLayout layout = layoutOf(riffFile(riffChunk("data", "sound!") + behind));

        EXPECT_EQ(layout.sampleRate, 48000.0);
        EXPECT_EQ(layout.blockAlign, 0);
    }
}

TEST_F(WAVLayoutTest, Sound_ThatComesTwice_IsTheFirst) {
    const WAVLayout layout =
        layoutOf(riffFile(riffChunk("data", "1234") + riffChunk("data", "12")));

    EXPECT_EQ(layout.declaredData, 4);
    EXPECT_EQ(layout.dataOffset, 20);
}

TEST_F(WAVLayoutTest, LargestNumbers_StayPositive) {
    const WAVLayout layout = layoutWithFormat(std::string(16, '\xFF'));

    EXPECT_EQ(layout.sampleRate, 4294967295.0);
    EXPECT_EQ(layout.blockAlign, 65535);
}

TEST_F(WAVLayoutTest, File_ThatCannotBeOpened_IsTheSystemsError) {
    std::filesystem::create_directory(at("folder"));
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0666), 0);

    EXPECT_EQ(codeOf(at("gone")), ENOENT);
    EXPECT_EQ(codeOf(at("folder")), EINVAL);
    EXPECT_EQ(codeOf(at("pipe")), EINVAL);
}

TEST_F(WAVLayoutTest, File_BehindALink_IsRead) {
    writeFile(at("T001.WAV"), riffFile(riffChunk("data", "sound!")));
    std::filesystem::create_symlink("T001.WAV", at("link"));

    EXPECT_EQ(WAVLayout::read(at("link")).dataOffset, 20);
}

TEST_F(WAVLayoutTest, Drive_FailsAtAChunk_IsTheSystemsError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    constexpr std::int64_t second = 1 << 20U;
    const std::string junk = riffChunk("junk", noise(second - 20));
    writeFile(at("back/T001.WAV"), riffFile(junk + riffChunk("data", noise(10'000))));
    const FaultyFileSystem card(at("back"), at("card"), {.failReadAt = second});

    EXPECT_EQ(codeOf(card.path() / "T001.WAV"), EIO);
}

TEST_F(WAVLayoutTest, Cost_GigabytesOfSoundAndMetadata_Is8BytesAChunk) {
    constexpr std::int64_t gibibyte = 1 << 30U;
    const std::string front =
        "RIFF" + littleEndian(0, 4) + "WAVE" + riffChunk("fmt ", stereoFormat());
    const std::int64_t sound = std::ssize(front) + 8 + gibibyte;
    writeSparse(at("T001.WAV"),
                {{0, front + riffHeader("junk", gibibyte)}, {sound, riffHeader("data", 0)}},
                40 * gibibyte);
    WAVLayout layout;

    const Reads cost = readsOf([&] { layout = WAVLayout::read(at("T001.WAV")); });

    EXPECT_EQ(layout.dataOffset, sound + 8);
    EXPECT_EQ(cost, (Reads{5, 12 + 8 + 16 + 8 + 8}));
}

TEST_F(WAVLayoutTest, Read_Recording_LeavesNoTrace) {
    writeFile(at("card/T001.WAV"), broadcastWAV({.seconds = 0.1}));
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));

    WAVLayout::read(at("card/T001.WAV"));

    EXPECT_EQ(snapshotOf(at("card")), before);
}

TEST_F(WAVLayoutTest, RealRecording_ByFFmpeg_IsLaidOutAsFFprobeSays) {
    makeSound(at("T001.WAV"));

    const WAVLayout layout = WAVLayout::read(at("T001.WAV"));

    const std::int64_t size = std::ssize(readFile(at("T001.WAV")));
    EXPECT_EQ(layout.riffSize, size - 8);
    EXPECT_EQ(layout.dataOffset + layout.declaredData, size);
    EXPECT_GT(layout.dataOffset, 44) << "ffmpeg writes a LIST chunk before the sound";
    EXPECT_EQ(layout.sampleRate, std::stod(probed(at("T001.WAV"), "stream=sample_rate", "a:0")));
    EXPECT_EQ(layout.blockAlign, 6);
}

TEST_F(WAVLayoutTest, RealRecordings_OfTheWiderForms_AreRefused) {
    makeSound(at("rf64.wav"), {"-rf64", "always"});
    makeSound(at("sony.w64"));

    EXPECT_EQ(failureOf(readFile(at("rf64.wav"))), noRIFF);
    EXPECT_EQ(failureOf(readFile(at("sony.w64"))), noRIFF);
}
