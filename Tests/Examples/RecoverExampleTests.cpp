#include "ReelCore/Platform/ChildProcess.h"
#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"
#include "Support/RIFF.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

ChildProcess::Outcome runExample(const std::vector<std::string>& arguments) {
    return ChildProcess::run(EXAMPLE_RECOVER, arguments);
}

/// Cuts a clip off where `text` stands for the last time in it, and `behind` bytes further on.
void cutAt(const URL& clip, const std::string& text, std::size_t behind = 0) {
    std::filesystem::resize_file(clip, readFile(clip).rfind(text) + behind);
}

/// A card of a camera and a recorder that lost power, and a healthy clip of the same camera.
struct LostCard {
    explicit LostCard(const URL& folder)
        : path(folder / "CARD"), reference(folder / "reference.mov") {
        const std::vector<std::string> indexInFront{"-movflags", "+faststart"};
        std::filesystem::create_directories(path / "DCIM");
        makeClip(reference, {.seconds = 0.4});
        makeClip(path / "DCIM/A001.mov", {});
        makeClip(path / "DCIM/A002.MOV", {});
        cutAt(path / "DCIM/A002.MOV", "moov");
        makeClip(path / "DCIM/A003.mov", {.more = indexInFront});
        cutAt(path / "DCIM/A003.mov", "icpf", 100);
        makeClip(path / "DCIM/A004\nagain.mp4", {.video = {"-c:v", "libx264", "-g", "5"},
                                                 .audio = {"-c:a", "aac"},
                                                 .more = indexInFront});
        std::filesystem::resize_file(
            path / "DCIM/A004\nagain.mp4",
            std::filesystem::file_size(path / "DCIM/A004\nagain.mp4") * 3 / 4);
        makeClip(path / "DCIM/C0001.MXF", {.video = {"-c:v", "mpeg2video"}});
        std::filesystem::resize_file(path / "DCIM/C0001.MXF",
                                     std::filesystem::file_size(path / "DCIM/C0001.MXF") / 2);
        writeFile(path / "DCIM/notes.txt", "no clip");
        writeFile(path / "R001.wav", broadcastWAV({.seconds = 1.5}).replace(4, 4, 4, '\0'));
        writeFile(path / "R002.wav", "");
    }

    URL path;
    URL reference;
};

TEST(RecoverExample, LostCard_IsToldClipByClipAndRepaired) {
    const TemporaryFolder folder;
    const LostCard card(folder.path());
    const URL output = folder.path() / "new/output";
    const FolderTree before = readTree(card.path);

    const auto outcome = runExample({card.path, output, card.reference});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "A001.mov  Healthy\n"
              "A002.MOV  Missing index (header never closed)  A002_recovered.mov  recovered 25 "
              "frames (1.0s video, 1.0s audio)\n"
              "A003.mov  Truncated  A003_repaired.mov  recovered 24 frames (1.0s video, 1.0s "
              "audio)\n"
              "A004 again.mp4  Truncated  A004 again_repaired.mov  container rebuilt from intact "
              "index\n"
              "C0001.MXF  Truncated  C0001_repaired.mov  container rebuilt from intact index\n"
              "R001.wav  WAV sizes stale  R001_repaired.wav  1.5s of audio recovered\n"
              "R002.wav  Unreadable — empty file\n"
              "clips: 7, healthy: 1, repaired: 5 of 5, unreadable: 1\n");
    EXPECT_EQ(readTree(card.path), before);
    EXPECT_EQ(readTree(output).size(), 5U);
    EXPECT_EQ(probed(output / "A002_recovered.mov", "stream=nb_frames", "v:0"), "25");
    EXPECT_EQ(probed(output / "A003_repaired.mov", "stream=nb_frames", "v:0"), "24");
    EXPECT_EQ(probed(output / "A004\nagain_repaired.mov", "stream=codec_name", "v:0"), "h264");
    EXPECT_EQ(probed(output / "C0001_repaired.mov", "stream=codec_name", "v:0"), "mpeg2video");
    EXPECT_EQ(probed(output / "R001_repaired.wav", "format=duration"), "1.500000");
}

TEST(RecoverExample, ClipsThatStayLost_AreNamedWithTheReason) {
    const TemporaryFolder folder;
    const URL card = folder.path() / "CARD";
    writeTree(card, {{"A001.mov", std::string("\0\0\0\x0Dmdatmedia", 13)}});

    const auto outcome = runExample({card, folder.path() / "output"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "A001.mov  Missing index (header never closed)  NOT REPAIRED  A healthy reference "
              "clip from the same camera is required: pick a healthy clip from the same camera\n"
              "clips: 1, healthy: 0, repaired: 0 of 1, unreadable: 0\n");
}

TEST(RecoverExample, FolderWithoutClips_IsSaid) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "CARD");

    const auto outcome = runExample({folder.path() / "CARD", folder.path() / "output"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "clips: 0, healthy: 0, repaired: 0 of 0, unreadable: 0\n");
}

TEST(RecoverExample, MissingFolder_IsSaidAndNothingIsMade) {
    const TemporaryFolder folder;
    const std::string card = folder.path() / "CARD";

    const auto outcome = runExample({card, folder.path() / "output"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "Not a folder: " + card + "\n");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "output"));
}

TEST(RecoverExample, FileInPlaceOfTheFolder_IsSaid) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "A001.mov", "a file");

    const auto outcome = runExample({folder.path() / "A001.mov", folder.path() / "output"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.output.starts_with("Not a folder: ")) << outcome.output;
}

TEST(RecoverExample, OutputThatIsAFile_IsSaidAndTheFileStays) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "CARD");
    writeFile(folder.path() / "output", "a file");

    const auto outcome = runExample({folder.path() / "CARD", folder.path() / "output"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "Not a directory: " + (folder.path() / "output").native() + "\n");
    EXPECT_EQ(readFile(folder.path() / "output"), "a file");
}

TEST(RecoverExample, OutputOnAReadOnlyDrive_IsSaidInTheSystemsWords) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "CARD");
    LoopMount drive("ext4", 4);
    drive.makeReadOnly();
    const std::string output = drive.path() / "output";

    const auto outcome = runExample({folder.path() / "CARD", output});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "Read-only file system: " + output + "\n");
}

TEST(RecoverExample, WrongArguments_GiveTheUsage) {
    for (const auto& arguments :
         {std::vector<std::string>{}, {"CARD"}, {"CARD", "OUTPUT", "REFERENCE", "MORE"}}) {
        const auto outcome = runExample(arguments);

        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "usage: example-recover FOLDER OUTPUT [REFERENCE]\n");
    }
}

}  // namespace
