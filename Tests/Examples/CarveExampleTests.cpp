#include "ReelCore/Platform/ChildProcess.h"
#include "Support/Boxes.h"
#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Arguments = std::vector<std::string>;

ChildProcess::Outcome runExample(const Arguments& arguments) {
    return ChildProcess::run(EXAMPLE_CARVE, arguments);
}

std::string shown(const Arguments& arguments) {
    return ChildProcess::readOutput(EXAMPLE_CARVE, arguments).output;
}

const std::string movie = fileTypeBox() + box("mdat", noise(5000)) + box("moov", "index");

/// A recording whose recorder lost power: every size is 0.
const std::string unclosedWave = "RIFF" + littleEndian(0, 4) + "WAVE" +
                                 riffChunk("fmt ", formatPayload({})) + riffHeader("data", 0) +
                                 std::string(144'000, 's');

TEST(CarveExample, EveryFinding_IsCutOutAndShownInALine) {
    const TemporaryFolder folder;
    const std::string output = folder.path() / "new/output";
    writeFile(folder.path() / "card.img", std::string(10'000, '\xA5') + movie + fileTypeBox() +
                                              box("mdat", noise(900)) + unclosedWave +
                                              std::string(8192, '\0'));

    const std::string lines = shown({folder.path() / "card.img", output});

    EXPECT_EQ(lines,
              "QuickTime/MP4 @ 0.0 MB into image (0.0 MB)  carved_001.mov  QuickTime/MP4 @ 0.0 MB "
              "into image (0.0 MB) — intact\n"
              "QuickTime/MP4 @ 0.0 MB into image (0.0 MB) — incomplete  carved_002.mov  "
              "QuickTime/MP4 @ 0.0 MB into image (0.0 MB) — incomplete — A healthy reference clip "
              "from the same camera is required: pick a healthy clip from the same camera\n"
              "RIFF/WAVE audio @ 0.0 MB into image (0.1 MB) — incomplete  carved_003_repaired.wav  "
              "RIFF/WAVE audio @ 0.0 MB into image (0.1 MB) — incomplete — 1.0s of audio "
              "recovered\n");
    const FolderTree written = readTree(output);
    ASSERT_EQ(written.size(), 3U);
    EXPECT_EQ(written.at("carved_001.mov"), movie);
    EXPECT_EQ(written.at("carved_002.mov"), fileTypeBox() + box("mdat", noise(900)));
    EXPECT_EQ(written.at("carved_003_repaired.wav").substr(44), unclosedWave.substr(44));
}

TEST(CarveExample, Progress_IsOnStandardError) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "card.img", movie + "rest");

    const auto outcome = ChildProcess::readError(
        EXAMPLE_CARVE, {folder.path() / "card.img", folder.path() / "output"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "100%, 1 found\n");
}

TEST(CarveExample, ClipWithoutAnIndex_PlaysAgainByAReference) {
    const TemporaryFolder folder;
    makeClip(folder.path() / "whole.mov", {.channels = {}});
    const std::string whole = readFile(folder.path() / "whole.mov");
    writeFile(folder.path() / "card.img", whole.substr(0, whole.rfind("moov") - 4));

    const auto outcome = runExample(
        {folder.path() / "card.img", folder.path() / "output", folder.path() / "whole.mov"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.ends_with("recovered 25 frames (1.0s video, 0.0s audio)\n"))
        << outcome.output;
    EXPECT_EQ(probed(folder.path() / "output/carved_001_recovered.mov", "stream=nb_frames"), "25");
}

TEST(CarveExample, ImageWithoutAClip_ShowsNothing) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "card.img", noise(10'000));

    const auto outcome = runExample({folder.path() / "card.img", folder.path() / "output"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "100%, 0 found\n");
}

TEST(CarveExample, MissingImage_IsSaid) {
    const TemporaryFolder folder;
    const std::string image = folder.path() / "card.img";

    const auto outcome = runExample({image, folder.path() / "output"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "Not found: " + image + "\n");
}

TEST(CarveExample, EmptyImage_IsSaid) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "card.img", "");

    const auto outcome = runExample({folder.path() / "card.img", folder.path() / "output"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "I/O failed: image is empty\n");
}

TEST(CarveExample, OutputThatIsAFile_IsSaidBeforeTheScanAndStays) {
    const TemporaryFolder folder;
    const std::string output = folder.path() / "output";
    writeTree(folder.path(), {{"card.img", movie}, {"output", "a file"}});

    const auto outcome = runExample({folder.path() / "card.img", output});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.output.ends_with(": " + output + "\n")) << outcome.output;
    EXPECT_EQ(outcome.output.find("found"), std::string::npos) << outcome.output;
    EXPECT_EQ(readFile(output), "a file");
}

TEST(CarveExample, WrongArguments_GiveTheUsage) {
    for (const Arguments& arguments :
         {Arguments{}, Arguments{"IMAGE"}, Arguments{"IMAGE", "OUTPUT", "REFERENCE", "MORE"}}) {
        const auto outcome = runExample(arguments);

        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "usage: example-carve IMAGE OUTPUT [REFERENCE]\n");
    }
}

}  // namespace
