#include "ReelCore/Recovery/WAVRepairer.h"

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReelCore/Sync/BWFReader.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"
#include "Support/Snapshot.h"

#include <cerrno>

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using BWFError = BWFReader::BWFError;

/// A recording whose two sizes were never written: what stands behind "fmt " and its like, then
/// sound up to the end.
std::string brokenOff(std::string_view chunks, std::string_view sound, std::uint32_t declared = 0) {
    return "RIFF" + littleEndian(0, 4) + "WAVE" + std::string(chunks) +
           riffHeader("data", declared) + std::string(sound);
}

/// 48 kHz, stereo, 24 bit: 6 bytes a sample.
std::string stereoFormat() {
    return riffChunk("fmt ", formatPayload({.channels = 2}));
}

class WAVRepairerTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }
    URL source() const { return at("card/T001.WAV"); }
    URL output() const { return at("T001_repaired.WAV"); }

    void SetUp() override { std::filesystem::create_directory(at("card")); }

    /// What the repair of these bytes makes of them.
    std::string repaired(std::string_view bytes) {
        writeFile(source(), bytes);
        fixed_ = WAVRepairer::repair(source(), output());
        return readFile(output());
    }

    double seconds() const { return fixed_.seconds; }

    /// The refusal of an output that is the source; empty where there is none.
    std::string refusalOf(const URL& from, const URL& to) const {
        try {
            WAVRepairer::repair(from, to);
        } catch (const RecoveryError& error) {
            return error.is<RecoveryError::IOFailed>() ? error.description() : "another";
        }
        return "";
    }

private:
    TemporaryFolder folder_;
    WAVRepairer::Fixed fixed_;
};

/// The bytes with these two sizes in the places where they belong.
std::string withSizes(std::string bytes, std::uint64_t riff, std::size_t dataSizeOffset,
                      std::uint64_t data) {
    bytes.replace(4, 4, littleEndian(riff, 4));
    bytes.replace(dataSizeOffset, 4, littleEndian(data, 4));
    return bytes;
}

}  // namespace

TEST_F(WAVRepairerTest, Repair_SizesNeverWritten_AreThoseOfWhatIsThere) {
    for (const std::uint32_t declared : {0U, 5U, 4800U, 0xFFFFFFFFU}) {
        const std::string bytes = brokenOff(stereoFormat(), noise(9600), declared);

        EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 40, 9600)) << declared;
        EXPECT_EQ(seconds(), 9600.0 / 6.0 / 48000.0);
    }
}

TEST_F(WAVRepairerTest, Repair_LastSampleCutOff_IsLeftOutOfTheSoundAndKeptInTheFile) {
    for (const std::size_t more : {1U, 5U, 7U}) {
        const std::string bytes = brokenOff(stereoFormat(), noise(9600 + more));
        const std::size_t whole = more < 6 ? 9600 : 9606;

        EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 40, whole)) << more;
        EXPECT_EQ(seconds(), static_cast<double>(whole) / 6.0 / 48000.0);
    }
}

TEST_F(WAVRepairerTest, Repair_ChunksInFrontOfTheSound_AreKept) {
    const std::string front = riffChunk("bext", broadcastPayload(172'800'000)) + stereoFormat() +
                              riffChunk("iXML", "<SCENE>12A</SCENE>");
    const std::string bytes = brokenOff(front, noise(600));

    EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 12 + front.size() + 4, 600));
    const AudioClip clip = BWFReader::read(output());
    EXPECT_EQ(clip.scene, "12A");
    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_EQ(clip.duration, seconds());
}

TEST_F(WAVRepairerTest, Repair_ChunksBehindTheSound_BecomeSound) {
    const std::string bytes = brokenOff(stereoFormat(), noise(600) + riffChunk("iXML", "1234"));

    EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 40, 612));
}

TEST_F(WAVRepairerTest, Repair_SoundFile_StaysAsItIs) {
    const std::string bytes = riffFile(stereoFormat() + riffChunk("data", noise(600)));

    EXPECT_EQ(repaired(bytes), bytes);
}

TEST_F(WAVRepairerTest, Repair_NoSoundAtAll_IsOfNoLength) {
    const std::string bytes = brokenOff(stereoFormat(), "", 4800);

    EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 40, 0));
    EXPECT_EQ(seconds(), 0.0);
}

TEST_F(WAVRepairerTest, Repair_FormatWithoutABlockAlign_CountsTheWholeTail) {
    const std::string format = riffChunk("fmt ", formatPayload({}).substr(0, 10));
    const std::string bytes = brokenOff(format, noise(601));

    EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 12 + 18 + 4, 601));
    EXPECT_EQ(seconds(), 0.0);
}

TEST_F(WAVRepairerTest, Repair_NoFormat_CountsTheWholeTail) {
    const std::string bytes = brokenOff("", noise(601));

    EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 16, 601));
    EXPECT_EQ(seconds(), 0.0);
}

TEST_F(WAVRepairerTest, Repair_SampleRateOfZero_HasNoSeconds) {
    const std::string format = riffChunk("fmt ", formatPayload({.sampleRate = 0, .channels = 2}));
    const std::string bytes = brokenOff(format, noise(601));

    EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 40, 600));
    EXPECT_EQ(seconds(), 0.0);
}

TEST_F(WAVRepairerTest, Repair_Twice_ReplacesTheEarlierResult) {
    repaired(brokenOff(stereoFormat(), noise(9600)));
    const std::string bytes = brokenOff(stereoFormat(), noise(600, 2));

    EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 40, 600));
}

TEST_F(WAVRepairerTest, Repair_OverALink_ReplacesTheLinkAndLeavesWhatItNames) {
    writeFile(at("precious"), "precious");
    std::filesystem::create_symlink("precious", output());
    const std::string bytes = brokenOff(stereoFormat(), noise(600));

    EXPECT_EQ(repaired(bytes), withSizes(bytes, bytes.size() - 8, 40, 600));

    EXPECT_FALSE(std::filesystem::is_symlink(output()));
    EXPECT_EQ(readFile(at("precious")), "precious");
}

TEST_F(WAVRepairerTest, Repair_Source_StaysAsItIsInEveryRespect) {
    writeFile(source(), brokenOff(stereoFormat(), noise(9607)));
    std::filesystem::permissions(source(), std::filesystem::perms(0444));
    std::filesystem::create_symlink("T001.WAV", at("card/link"));
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));

    WAVRepairer::repair(source(), output());
    WAVRepairer::repair(at("card/link"), output());

    EXPECT_EQ(snapshotOf(at("card")), before);
}

TEST_F(WAVRepairerTest, Repair_WhatIsNoWAV_SaysSoAndLeavesTheCopy) {
    writeFile(source(), "RIFF....AVI and more");

    try {
        WAVRepairer::repair(source(), output());
        FAIL() << "no error";
    } catch (const BWFError& error) {
        EXPECT_TRUE(error.is<BWFError::NotRIFF>());
    }
    EXPECT_EQ(readFile(output()), "RIFF....AVI and more");
}

TEST_F(WAVRepairerTest, Repair_WithoutSound_SaysSo) {
    writeFile(source(), riffFile(stereoFormat()));

    try {
        WAVRepairer::repair(source(), output());
        FAIL() << "no error";
    } catch (const BWFError& error) {
        EXPECT_EQ(error.description(), "Could not read WAV: no data chunk");
    }
}

TEST_F(WAVRepairerTest, Repair_MissingSource_SaysSoAndLeavesWhatIsAtTheOutput) {
    writeFile(output(), "an earlier result");

    try {
        WAVRepairer::repair(source(), output());
        FAIL() << "no error";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), ENOENT);
    }
    EXPECT_EQ(readFile(output()), "an earlier result");
}

TEST_F(WAVRepairerTest, Repair_IntoTheSource_IsRefusedUnderAnyOfItsNames) {
    writeFile(source(), brokenOff(stereoFormat(), noise(600)));
    std::filesystem::create_hard_link(source(), at("hard.WAV"));
    std::filesystem::create_symlink(source(), at("soft.WAV"));
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));
    const std::string refusal = "I/O failed: T001.WAV would be replaced by what is made from it";

    EXPECT_EQ(refusalOf(source(), source()), refusal);
    EXPECT_EQ(refusalOf(source(), at("card/../card/T001.WAV")), refusal);
    EXPECT_EQ(refusalOf(source(), at("hard.WAV")), refusal);
    EXPECT_EQ(refusalOf(source(), at("soft.WAV")), refusal);
    EXPECT_EQ(refusalOf(at("soft.WAV"), source()),
              "I/O failed: soft.WAV would be replaced by what is made from it");

    EXPECT_EQ(snapshotOf(at("card")), before);
    EXPECT_TRUE(std::filesystem::is_symlink(at("soft.WAV")));
}

TEST_F(WAVRepairerTest, Repair_IntoAFolder_IsTheSystemsErrorAndTheFolderStays) {
    writeFile(source(), brokenOff(stereoFormat(), noise(600)));
    writeFile(output() / "inside", "precious");

    try {
        WAVRepairer::repair(source(), output());
        FAIL() << "no error";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), EISDIR);
    }
    EXPECT_EQ(readFile(output() / "inside"), "precious");
}

// A file beyond 4 GiB is not copied here: the copy would be written in full.
TEST(WAVRepairerSizes, FileBeyond4GiB_HasTheLargestSizesAndAllItsSeconds) {
    constexpr std::int64_t largest = 0xFFFFFFFF;
    const WAVLayout layout{.dataSizeOffset = 40, .dataOffset = 44, .blockAlign = 6};
    const auto sizes = [&](std::int64_t fileSize) {
        return WAVRepairer::sizesOf(layout, fileSize);
    };

    EXPECT_EQ(sizes(largest + 8).riff, largest);
    EXPECT_EQ(sizes(largest + 9).riff, largest);
    EXPECT_EQ(sizes(largest + 7).riff, largest - 1);
    EXPECT_EQ(sizes(44 + 4'294'967'292).data, 4'294'967'292) << "the last that fits";
    EXPECT_EQ(sizes(44 + 4'294'967'298).data, largest);
    EXPECT_EQ(sizes(44 + 28'800'000'005).data, largest);
    EXPECT_EQ(sizes(44 + 28'800'000'005).fixed, WAVRepairer::Fixed{100'000.0});
}

TEST(WAVRepairerSizes, FileThatEndsBeforeTheSound_HasNone) {
    const WAVLayout layout{.dataSizeOffset = 40, .dataOffset = 44, .blockAlign = 6};

    EXPECT_EQ(WAVRepairer::sizesOf(layout, 0), (WAVRepairer::Sizes{0, 0, {0.0}}));
    EXPECT_EQ(WAVRepairer::sizesOf(layout, 43), (WAVRepairer::Sizes{35, 0, {0.0}}));
}
