#include "RebuildFixture.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/MoovRebuilder.h"
#include "Support/FaultyFileSystem.h"
#include "Support/LoopMount.h"
#include "Support/Snapshot.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

namespace fs = std::filesystem;
using TestSupport::box;
using TestSupport::boxHeader;
using TestSupport::FaultyFileSystem;
using TestSupport::fileTypeBox;
using TestSupport::LoopMount;
using TestSupport::moovBox;
using TestSupport::noise;
using TestSupport::proResFrame;
using TestSupport::readFile;
using TestSupport::stereoSound;
using TestSupport::TrackBoxes;
using TestSupport::TrackRecipe;
using TestSupport::wideBox;
using TestSupport::writeFile;

}  // namespace

TEST_F(MoovRebuilderFiles, Refusals_SayWhatIsMissing) {
    const std::string media = boxHeader("mdat", 0) + someMedia();
    const URL good = referenceOf({{}});
    EXPECT_EQ(failureOf(damaged(fileTypeBox()), good),
              "Unsupported for native rebuild: damaged file has no mdat");
    EXPECT_EQ(failureOf(damaged(fileTypeBox() + boxHeader("mdat", 0)), good),
              "No recoverable media frames found in the damaged file.");
    EXPECT_EQ(failureOf(damaged(boxHeader("mdat", 0) + sound(500)), good),
              "No recoverable media frames found in the damaged file.");

    const URL clip = damaged(media);
    EXPECT_EQ(failureOf(clip, reference(fileTypeBox())),
              "Reference clip unusable: reference has no moov");
    EXPECT_EQ(failureOf(clip, referenceOf({stereoSound})),
              "Reference clip unusable: no video track in reference");
    EXPECT_EQ(failureOf(clip, reference(box("moov", TrackBoxes().trak()))),
              "Reference clip unusable: reference moov has no mvhd");
    EXPECT_EQ(failureOf(clip, referenceOf({{.format = "avc1"}})),
              "Unsupported for native rebuild: video codec 'avc1' — native rebuild covers ProRes; "
              "H.264/HEVC cards need a tool like untrunc");
    TrackRecipe compressed = stereoSound;
    compressed.format = "mp4a";
    EXPECT_EQ(failureOf(clip, referenceOf({{}, compressed})),
              "Unsupported for native rebuild: audio codec 'mp4a' — expected PCM");
    EXPECT_FALSE(fs::exists(output()));
}

TEST_F(MoovRebuilderFiles, FirstThingAmiss_IsTheOneTold) {
    const URL bad =
        referenceOf({{.format = "avc1"}, {.kind = "soun", .format = "mp4a", .sampleSize = 4}});

    EXPECT_EQ(failureOf(folder() / "gone", folder() / "also gone"),
              "Not found: " + (folder() / "gone").native());
    EXPECT_EQ(failureOf(damaged(""), folder() / "also gone"),
              "Unsupported for native rebuild: damaged file has no mdat");
    EXPECT_EQ(failureOf(damaged(boxHeader("mdat", 0) + sound(9)), folder() / "also gone"),
              "Not found: " + (folder() / "also gone").native());
    EXPECT_TRUE(failureOf(damaged(boxHeader("mdat", 0) + sound(9)), bad)
                    .starts_with("Unsupported for native rebuild: video codec 'avc1'"));
}

TEST_F(MoovRebuilderFiles, ReferenceWhoseIndexIsCut_IsUnusable) {
    const std::string index = moovBox({{}});
    const URL clip = damaged(boxHeader("mdat", 0) + someMedia());

    EXPECT_EQ(failureOf(clip, reference(index.substr(0, index.size() - 1))),
              "Reference clip unusable: no video track in reference");
}

TEST_F(MoovRebuilderFiles, ExistingOutput_IsReplaced) {
    const URL clip = damaged(boxHeader("mdat", 0) + proResFrame(100));
    writeFile(output(), noise(100'000));

    EXPECT_EQ(rebuilt(clip, referenceOf({{}})).at(1), wideBox("mdat", proResFrame(100)));
}

TEST_F(MoovRebuilderFiles, OutputThatIsALink_IsReplacedItself) {
    const URL clip = damaged(boxHeader("mdat", 0) + proResFrame(100));
    writeFile(folder() / "other", "precious");
    fs::create_symlink(folder() / "other", output());

    rebuilt(clip, referenceOf({{}}));

    EXPECT_FALSE(fs::is_symlink(output()));
    EXPECT_EQ(readFile(folder() / "other"), "precious");
}

TEST_F(MoovRebuilderFiles, OutputThatIsAnInput_IsRefusedUnderAnyName) {
    const URL clip = damaged(boxHeader("mdat", 0) + proResFrame(100));
    const URL healthy = referenceOf({{}});
    fs::create_hard_link(clip, folder() / "second name");
    fs::create_symlink(healthy, folder() / "link");
    const auto before = TestSupport::readTree(folder());

    for (const URL& target : {clip, healthy, folder() / "second name", folder() / "link"}) {
        EXPECT_THROW(MoovRebuilder::rebuild(clip, healthy, target), RecoveryError) << target;
    }

    EXPECT_EQ(TestSupport::readTree(folder()), before);
}

TEST_F(MoovRebuilderFiles, Sources_AreLeftWithoutATrace) {
    const URL clip = damaged(boxHeader("mdat", 0) + someMedia());
    const URL healthy = referenceOf({{}, stereoSound});
    TestSupport::ageAccessDates(folder() / "card");
    const auto before = TestSupport::snapshotOf(folder() / "card");

    MoovRebuilder::rebuild(clip, healthy, output());

    EXPECT_EQ(TestSupport::snapshotOf(folder() / "card"), before);
}

TEST_F(MoovRebuilderFiles, OutputInAMissingFolder_IsTheSystemsError) {
    const URL clip = damaged(boxHeader("mdat", 0) + someMedia());

    EXPECT_THROW(MoovRebuilder::rebuild(clip, referenceOf({{}}), folder() / "gone/A.mov"),
                 SystemError);
}

TEST_F(MoovRebuilderFiles, DriveThatRunsFull_LeavesThePartAndTheSources) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 8);
    const URL clip = damaged(boxHeader("mdat", 0) + proResFrame(12'000'000));
    const URL healthy = referenceOf({{}});
    const auto before = TestSupport::snapshotOf(folder() / "card");

    try {
        MoovRebuilder::rebuild(clip, healthy, drive.path() / "A001.mov");
        FAIL() << "a full drive took the clip";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), ENOSPC);
    }

    EXPECT_GT(fs::file_size(drive.path() / "A001.mov"), 1'000'000U);
    EXPECT_EQ(TestSupport::snapshotOf(folder() / "card"), before);
}

TEST_F(MoovRebuilderFiles, CardThatFailsHalfWay_IsTheSystemsErrorAndThePartStays) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    damaged(boxHeader("mdat", 0) + proResFrame(20'000'000));
    referenceOf({{}});
    const FaultyFileSystem card(folder() / "card", folder() / "mount",
                                {.onlyFile = "A001.MOV", .failReadAt = 12 << 20U});

    try {
        MoovRebuilder::rebuild(card.path() / "A001.MOV", card.path() / "A000.MOV", output());
        FAIL() << "an unreadable clip was rebuilt";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), EIO);
    }

    EXPECT_GT(fs::file_size(output()), 1'000'000U);
    EXPECT_EQ(readFile(output()).find("moov"), std::string::npos);
}

TEST_F(MoovRebuilderFiles, ReferenceThatCannotBeRead_IsTheSystemsError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const URL clip = damaged(boxHeader("mdat", 0) + someMedia());
    reference(box("moov", box("free", noise(5'000'000)) + TrackBoxes().trak()));
    const FaultyFileSystem card(folder() / "card", folder() / "mount",
                                {.onlyFile = "A000.MOV", .failReadAt = 4 << 20U});

    EXPECT_THROW(MoovRebuilder::rebuild(clip, card.path() / "A000.MOV", output()), SystemError);
    EXPECT_FALSE(fs::exists(output()));
}

}  // namespace ReelCore
