// Files that are cut off, lie about themselves or are no recording at all.

#include "BWFFixture.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/Forked.h"

#include <cerrno>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

constexpr std::uint64_t oneHour = 172800000;  // At 48 kHz.

class BWFDamageTest : public BWFTest {
protected:
    bool isNotRIFF(std::string_view bytes) const {
        try {
            clipOf(bytes);
            return false;
        } catch (const BWFReader::BWFError& error) {
            return error.is<BWFReader::BWFError::NotRIFF>() &&
                   error.description() == "Not a RIFF/WAVE file.";
        }
    }

    /// The code of the SystemError that a read of the path ends with, 0 if there is none.
    static int failureOf(const URL& path) {
        try {
            BWFReader::read(path);
            return 0;
        } catch (const SystemError& error) {
            return error.code();
        }
    }

    /// What is read of a file whose only chunks are a "fmt " of 96 kHz and 6 bytes a frame that
    /// ends early, and sound.
    AudioClip clipOfShortFormat(std::size_t size) const {
        const std::string format = formatPayload({.sampleRate = 96000, .channels = 2});
        return clipOfChunks(riffChunk("fmt ", format.substr(0, size)) + broadcastChunk(oneHour) +
                            riffChunk("data", std::string(600, 's')));
    }
};

/// Reads the whole file; throws SystemError where the drive fails.
void readToTheEnd(const URL& path) {
    File file = File::openForReading(path);
    std::vector<std::byte> block(65536);
    while (file.read(block) > 0) {
    }
}

}  // namespace

TEST_F(BWFDamageTest, Error_Unreadable_TellsTheReason) {
    const BWFReader::BWFError error(BWFReader::BWFError::Unreadable{"gone"});

    EXPECT_EQ(error.description(), "Could not read WAV: gone");
}

TEST_F(BWFDamageTest, Read_OtherHeaders_AreNotRIFF) {
    const std::string whole = broadcastWAV({});
    for (const std::string& id :
         std::vector<std::string>{"RIFX", "RF64", "riff", "FORM", std::string(4, '\0')}) {
        EXPECT_TRUE(isNotRIFF(id + whole.substr(4))) << id;
    }
    for (const std::string form : {"AVI ", "wave", "WAV ", "W64 "}) {
        EXPECT_TRUE(isNotRIFF(whole.substr(0, 8) + form + whole.substr(12))) << form;
    }
    EXPECT_TRUE(isNotRIFF("x" + whole));
    EXPECT_TRUE(isNotRIFF(noise(5000)));
    EXPECT_TRUE(isNotRIFF(std::string(5000, '\0')));
}

TEST_F(BWFDamageTest, Read_FewerThan12Bytes_AreNotRIFF) {
    for (std::size_t size = 0; size < 12; ++size) {
        EXPECT_TRUE(isNotRIFF(std::string("RIFF\4\0\0\0WAVE", 12).substr(0, size))) << size;
    }
}

TEST_F(BWFDamageTest, Read_HeaderAlone_IsAClipOfDefaults) {
    EXPECT_EQ(clipOfChunks(""), bareClip(48000.0));
}

TEST_F(BWFDamageTest, Read_FormatBelow8Bytes_LeavesNoRateAndNoTimes) {
    for (const std::size_t size : {0U, 1U, 3U, 4U, 6U, 7U}) {
        EXPECT_EQ(clipOfShortFormat(size), bareClip(0.0)) << size;
    }
}

TEST_F(BWFDamageTest, Read_FormatBelow14Bytes_LeavesNoLength) {
    for (const std::size_t size : {8U, 10U, 11U, 12U, 13U}) {
        const AudioClip clip = clipOfShortFormat(size);

        EXPECT_EQ(clip.sampleRate, 96000.0) << size;
        EXPECT_EQ(clip.startSeconds, 1800.0) << size;
        EXPECT_EQ(clip.duration, 0.0) << size;
    }
}

TEST_F(BWFDamageTest, Read_FormatOf14Bytes_TellsAll) {
    const AudioClip clip = clipOfShortFormat(14);

    EXPECT_EQ(clip.sampleRate, 96000.0);
    EXPECT_EQ(clip.duration, 100.0 / 96000.0);
}

TEST_F(BWFDamageTest, Read_ShortFormatBehindAWholeOne_TakesRateAndLengthAway) {
    const std::string sound = riffChunk("data", std::string(96, 's'));

    const AudioClip noLength =
        clipOfChunks(plainFormat() + sound + riffChunk("fmt ", formatPayload({}).substr(0, 13)));
    const AudioClip noRate =
        clipOfChunks(plainFormat() + sound + riffChunk("fmt ", formatPayload({}).substr(0, 7)));

    EXPECT_EQ(noLength.sampleRate, 48000.0);
    EXPECT_EQ(noLength.duration, 0.0);
    EXPECT_EQ(noRate.sampleRate, 0.0);
}

TEST_F(BWFDamageTest, Read_SampleRateOfZero_LeavesBothTimesZero) {
    const AudioClip clip = clipOf(broadcastWAV({.sampleRate = 0, .timeReference = oneHour}));

    EXPECT_EQ(clip.sampleRate, 0.0);
    EXPECT_EQ(clip.startSeconds, 0.0);
    EXPECT_EQ(clip.duration, 0.0);
}

TEST_F(BWFDamageTest, Read_BlockAlignOfZero_HasNoLengthButATime) {
    const AudioClip clip =
        clipOfChunks(riffChunk("fmt ", formatPayload({.bitsPerSample = 0})) +
                     broadcastChunk(oneHour) + riffChunk("data", std::string(96, 's')));

    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_EQ(clip.duration, 0.0);
}

TEST_F(BWFDamageTest, Read_BroadcastExtensionBelow346Bytes_HasNoTime) {
    const std::string payload = std::string(338, 'x') + littleEndian(oneHour, 8);
    for (const std::size_t size : {0U, 100U, 338U, 342U, 345U}) {
        EXPECT_EQ(clipOfChunks(riffChunk("bext", payload.substr(0, size))).startSeconds, 0.0)
            << size;
    }
    EXPECT_EQ(clipOfChunks(riffChunk("bext", payload)).startSeconds, 3600.0);
}

// Each value is there from the byte on that completes it, and the default before.
TEST_F(BWFDamageTest, Read_CutOffAtAnyByte_TellsWhatStandsBeforeTheCut) {
    const Recording recording{.sampleRate = 96000,
                              .channels = 2,
                              .seconds = 0.001,
                              .timeReference = 2 * oneHour,
                              .iXML = "<SCENE>12</SCENE><NAME>a</NAME>"};
    const std::string whole = broadcastWAV(recording);
    const std::size_t format = 12 + 8;
    const std::size_t extension = format + 16 + 8;
    const std::size_t sound = extension + 602 + 8;
    const std::size_t slate = sound + 96 * 6 + 8;
    ASSERT_EQ(whole.substr(slate, 7), "<SCENE>");

    for (std::size_t size = 12; size <= whole.size(); ++size) {
        const AudioClip clip = clipOf(std::string_view(whole).substr(0, size));

        const double rate = size < format ? 48000.0 : size < format + 8 ? 0.0 : 96000.0;
        ASSERT_EQ(clip.sampleRate, rate) << size;
        ASSERT_EQ(clip.startSeconds, size < extension + 346 ? 0.0 : 3600.0) << size;
        ASSERT_EQ(clip.duration, size < sound ? 0.0 : 0.001) << size;
        ASSERT_EQ(clip.scene.value_or(""), size < slate + 17 ? "" : "12") << size;
        ASSERT_EQ(clip.trackNames.size(), size < slate + 31 ? 0U : 1U) << size;
    }
}

TEST_F(BWFDamageTest, Read_SoundCutOff_KeepsTheDeclaredLength) {
    const AudioClip clip =
        clipOfChunks(plainFormat() + riffHeader("data", 144000 * 60) + std::string(100, 's'));

    EXPECT_EQ(clip.duration, 60.0);
}

TEST_F(BWFDamageTest, Read_FourGigabytesDeclaredInATinyFile_TakesWhatIsThere) {
    constexpr std::uint32_t lie = 0xFFFFFFFF;
    const std::string extension = broadcastPayload(oneHour);

    const AudioClip format = clipOfChunks(riffHeader("fmt ", lie) + formatPayload({}));
    const AudioClip broadcast = clipOfChunks(riffHeader("bext", lie) + extension);
    const AudioClip slate = clipOfChunks(riffHeader("iXML", lie) + "<TAKE>9</TAKE>");
    const AudioClip sound = clipOfChunks(plainFormat() + riffHeader("data", lie) + "sound");
    const AudioClip junk = clipOfChunks(riffHeader("junk", lie) + plainFormat());

    EXPECT_EQ(format.sampleRate, 48000.0);
    EXPECT_EQ(broadcast.startSeconds, 3600.0);
    EXPECT_EQ(slate.take, "9");
    EXPECT_EQ(sound.duration, 4294967295.0 / 3.0 / 48000.0);
    EXPECT_EQ(junk, bareClip(48000.0));
}

TEST_F(BWFDamageTest, Read_SlateAfterAFormatThatLies_IsPassedOver) {
    const AudioClip clip = clipOfChunks(riffHeader("fmt ", 1000) + formatPayload({}) +
                                        riffChunk("iXML", "<TAKE>9</TAKE>"));

    EXPECT_EQ(clip.take, std::nullopt) << "it stands inside of what the format claims";
}

TEST_F(BWFDamageTest, Read_ZerosBetweenChunks_AreEmptyChunksOnTheirGrid) {
    const std::string slate = riffChunk("iXML", "<TAKE>9</TAKE>");
    for (const std::size_t zeros : {8U, 16U, 4072U, 4080U, 4088U, 4096U, 8192U, 100'000U}) {
        EXPECT_EQ(clipOfChunks(plainFormat() + std::string(zeros, '\0') + slate).take, "9")
            << zeros;
    }
    // Off the grid, the id is read as a part of another and the walk goes astray.
    for (const std::size_t zeros : {2U, 4U, 6U, 4098U, 100'002U}) {
        EXPECT_EQ(clipOfChunks(plainFormat() + std::string(zeros, '\0') + slate).take, std::nullopt)
            << zeros;
    }
}

TEST_F(BWFDamageTest, Read_ZerosToTheEnd_EndTheWalk) {
    for (std::size_t zeros = 0; zeros < 40; ++zeros) {
        const AudioClip clip =
            clipOfChunks(plainFormat() + riffHeader("data", 0) + std::string(zeros, '\0'));

        EXPECT_EQ(clip, bareClip(48000.0)) << zeros;
    }
}

TEST_F(BWFDamageTest, Read_RandomBytesBehindTheHeader_GiveAClip) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        const AudioClip clip = clipOfChunks(plainFormat() + noise(300, seed));

        EXPECT_GE(clip.duration, 0.0) << seed;
        EXPECT_EQ(clip.url, at("T001.WAV")) << seed;
    }
}

TEST_F(BWFDamageTest, Read_BrokenXML_GivesWhatIsWhole) {
    const AudioClip clip =
        clipOfChunks(riffChunk("iXML", "<BWFXML><SCENE>7</SCENE><TAKE>3</TAPE><NOTE>&&<</NOTE"));

    EXPECT_EQ(clip.scene, "7");
    EXPECT_EQ(clip.take, std::nullopt);
    EXPECT_EQ(clip.note, std::nullopt);
}

TEST_F(BWFDamageTest, Read_WhatIsNoFile_FailsWithTheSystemsOwnError) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    ASSERT_EQ(::symlink("T001.WAV", at("link").c_str()), 0);

    EXPECT_EQ(failureOf(at("missing")), ENOENT);
    EXPECT_EQ(failureOf(at("missing") / "T001.WAV"), ENOENT);
    EXPECT_EQ(failureOf(at("")), EINVAL) << "a folder";
    EXPECT_EQ(failureOf(at("pipe")), EINVAL) << "with no writer to wait for";
    EXPECT_EQ(failureOf(at("link")), ENOENT) << "leads nowhere";
}

TEST_F(BWFDamageTest, Read_FileThatMayNotBeRead_FailsWithTheSystemsOwnError) {
    writeFile(at("T001.WAV"), broadcastWAV({}));
    ASSERT_EQ(::chmod(at("T001.WAV").c_str(), 0), 0);
    ASSERT_EQ(::chmod(at("").c_str(), 0755), 0);

    const int code = statusOfForked([&] {
        constexpr uid_t somebodyElse = 12345;
        if (::geteuid() == 0 && ::setuid(somebodyElse) != 0) return 255;
        return failureOf(at("T001.WAV"));
    });

    EXPECT_EQ(code, EACCES);
}

TEST_F(BWFDamageTest, Read_DriveThatFailsUnderTheSound_IsNotMet) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const std::string sound(4'000'000, 's');
    writeTree(at(""), {{"card/T001.WAV", riffFile(plainFormat() + broadcastChunk(oneHour) +
                                                  riffChunk("data", sound))}});
    std::filesystem::create_directory(at("mount"));
    const FaultyFileSystem drive(at("card"), at("mount"), {.failReadAt = 524'288});
    ASSERT_THROW(readToTheEnd(drive.path() / "T001.WAV"), SystemError);

    const AudioClip clip = BWFReader::read(drive.path() / "T001.WAV");

    EXPECT_EQ(clip.startSeconds, 3600.0);
    EXPECT_EQ(clip.duration, 4'000'000.0 / 3.0 / 48000.0);
}

TEST_F(BWFDamageTest, Read_DriveThatFailsUnderAChunk_FailsWithTheSystemsOwnError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at(""), {{"card/T001.WAV", broadcastWAV({.seconds = 30.0, .iXML = "<NOTE>"})}});
    std::filesystem::create_directory(at("mount"));
    const FaultyFileSystem drive(at("card"), at("mount"), {.failReadAt = 524'288});

    EXPECT_EQ(failureOf(drive.path() / "T001.WAV"), EIO);
}
