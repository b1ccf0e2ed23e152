// Repairs of real recordings, and on drives that are full or fail.

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/WAVRepairer.h"
#include "SoundFile.h"
#include "Support/Clip.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"
#include "Support/RIFF.h"
#include "Support/Snapshot.h"

#include <cerrno>

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

class WAVRepairerDriveTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

    /// The code of the SystemError of a repair, 0 if there was none; `sentence` is what it says.
    static int codeOf(const URL& source, const URL& output, std::string& sentence) {
        try {
            WAVRepairer::repair(source, output);
        } catch (const SystemError& error) {
            sentence = error.sentence();
            return error.code();
        }
        return 0;
    }

private:
    TemporaryFolder folder_;
};

/// The samples of a recording, by ffmpeg: a line with a checksum for each 1024.
std::string samplesOf(const URL& recording) {
    return outputOf("ffmpeg", {"-nostdin", "-v", "error", "-i", "file:" + recording.native(), "-f",
                               "framemd5", "-"});
}

/// The recording with both sizes as they stand while a recorder is at work.
std::string asLeftByAPowerCut(std::string bytes) {
    bytes.replace(4, 4, std::string(4, '\0'));
    bytes.replace(bytes.find("data") + 4, 4, std::string(4, '\0'));
    return bytes;
}

/// A mono recording of about 8 MiB that was never closed.
std::string longRecording() {
    return "RIFF" + littleEndian(0, 4) + "WAVE" + riffChunk("fmt ", formatPayload({})) +
           riffHeader("data", 0) + noise(8 << 20U);
}

}  // namespace

TEST_F(WAVRepairerDriveTest, RealRecording_WithItsSizesLost_ComesBackByteForByte) {
    makeSound(at("whole.wav"));
    const std::string whole = readFile(at("whole.wav"));
    writeFile(at("lost.wav"), asLeftByAPowerCut(whole));

    const auto fixed = WAVRepairer::repair(at("lost.wav"), at("mended.wav"));

    EXPECT_TRUE(readFile(at("mended.wav")) == whole);
    EXPECT_EQ(fixed.seconds, 0.5);
}

TEST_F(WAVRepairerDriveTest, RealRecording_BrokenOff_PlaysUpToItsLastWholeSample) {
    makeSound(at("whole.wav"));
    const std::string whole = readFile(at("whole.wav"));
    const std::size_t sound = whole.find("data") + 8;
    writeFile(at("lost.wav"), asLeftByAPowerCut(whole).substr(0, sound + 6 * 10'240 + 5));
    writeFile(at("peer.s24"), whole.substr(sound, 6 * 10'240));
    outputOf("ffmpeg", {"-nostdin", "-v", "error", "-f", "s24le", "-ar", "48000", "-ac", "2", "-i",
                        at("peer.s24"), "-c:a", "pcm_s24le", at("peer.wav")});

    const auto fixed = WAVRepairer::repair(at("lost.wav"), at("mended.wav"));

    EXPECT_EQ(fixed.seconds, 10'240.0 / 48000.0);
    EXPECT_EQ(probed(at("mended.wav"), "stream=duration_ts", "a:0"), "10240");
    EXPECT_EQ(samplesOf(at("mended.wav")), samplesOf(at("peer.wav")));
}

TEST_F(WAVRepairerDriveTest, DriveFull_IsTheSystemsErrorAndTheSourceStays) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    writeFile(at("card/T001.WAV"), longRecording());
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));
    const LoopMount drive("ext4", 4);
    std::string sentence;

    EXPECT_EQ(codeOf(at("card/T001.WAV"), drive.path() / "mended.WAV", sentence), ENOSPC);

    EXPECT_EQ(sentence, "No space left on device");
    EXPECT_EQ(snapshotOf(at("card")), before);
}

TEST_F(WAVRepairerDriveTest, CardFailsHalfWay_IsTheSystemsError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeFile(at("back/T001.WAV"), longRecording());
    const FaultyFileSystem card(at("back"), at("card"), {.failReadAt = 4 << 20U});
    std::string sentence;

    EXPECT_EQ(codeOf(card.path() / "T001.WAV", at("mended.WAV"), sentence), EIO);

    EXPECT_EQ(sentence, "Input/output error");
    EXPECT_TRUE(readFile(at("back/T001.WAV")) == longRecording());
}

TEST_F(WAVRepairerDriveTest, DriveFailsWhileTheSizesAreWritten_LeavesTheCopy) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const std::string recording = longRecording();
    writeFile(at("T001.WAV"), recording);
    std::filesystem::create_directory(at("back"));
    const FaultyFileSystem drive(at("back"), at("drive"),
                                 {.failWriteAfter = std::ssize(recording) + 4});
    std::string sentence;

    EXPECT_EQ(codeOf(at("T001.WAV"), drive.path() / "mended.WAV", sentence), EIO);

    const std::string riffSizeAlone = littleEndian(recording.size() - 8, 4);
    EXPECT_TRUE(readFile(at("back/mended.WAV")) == "RIFF" + riffSizeAlone + recording.substr(8));
}
