// Days that were really scanned, as an editor gets them.

#include "ReelCore/Sync/ALEWriter.h"
#include "ReelCore/Sync/FCPXMLWriter.h"
#include "ReelCore/Sync/Synchronizer.h"
#include "Support/Clip.h"
#include "Support/EditorialReaders.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Row = std::vector<std::string>;

TEST(EditorialScan, ScannedDropFrameDay_KeepsNDFTimelineAndPlainRateSoundTC) {
    const TemporaryFolder folder;
    makeClip(folder.path() / "C1.mov",
             {.rate = "30000/1001", .seconds = 2.002, .timecode = "10:00:00;00"});
    writeFile(folder.path() / "T1.wav",
              broadcastWAV({.seconds = 10, .timeReference = 36'000ULL * 48'000}));

    const SyncResult day = Synchronizer::scan(folder.path());
    const URL timeline = FCPXMLWriter::write(day, folder.path() / "day.fcpxml", "Day 1");
    const URL log = ALEWriter::write(day, folder.path() / "day.ale");

    EXPECT_EQ(attributes(timeline, "format", "frameDuration"), Row{"1001/30000s"});
    EXPECT_EQ(attributes(timeline, "sequence", "tcFormat"), Row{"NDF"});
    EXPECT_EQ(attributes(timeline, "asset-clip", "tcFormat"), Row{"NDF"});
    EXPECT_EQ(attributes(timeline, "audio", "start"), Row{"0s"});
    // Ten hours are 1078921 real frames, which are 35964 seconds and a frame at 30 a second.
    EXPECT_EQ(readTabbed(log).back(), (Row{"C1.mov", "V", "10:00:00;00", "10:00:02;00", "", "", "",
                                           "T1.wav", "09:59:24:01"}));
}

}  // namespace
