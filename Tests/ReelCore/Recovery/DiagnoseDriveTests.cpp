#include "DoctorFixture.h"
#include "Support/FaultyFileSystem.h"

namespace ReelCore {

namespace {

using namespace TestSupport;

using DiagnoseDrive = DoctorFixture;

TEST_F(DiagnoseDrive, ClipsThatCannotBeRead_FailTheirChecks) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    writeTree(folder() / "card",
              {{"a.mov", wholeMovie()}, {"a.wav", broadcastWAV({})}, {"a.mxf", mxfClip("x")}});
    const FaultyFileSystem card(folder() / "card", folder() / "mounted", {.failReadAt = 0});

    EXPECT_EQ(ClipDoctor::diagnose(card.path() / "a.mov"),
              unreadable("no QuickTime/MP4 structure"));
    EXPECT_EQ(ClipDoctor::diagnose(card.path() / "a.wav"), unreadable("not a RIFF/WAVE"));
    EXPECT_EQ(ClipDoctor::diagnose(card.path() / "a.mxf"), unreadable("no MXF header partition"));
}

TEST_F(DiagnoseDrive, ClipsThatCannotBeOpened_FailTheirChecks) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    writeTree(folder() / "card",
              {{"a.mov", wholeMovie()}, {"a.wav", broadcastWAV({})}, {"a.mxf", mxfClip("x")}});
    const FaultyFileSystem card(folder() / "card", folder() / "mounted",
                                {.failOpenForReading = true});

    EXPECT_EQ(ClipDoctor::diagnose(card.path() / "a.mov"),
              unreadable("no QuickTime/MP4 structure"));
    EXPECT_EQ(ClipDoctor::diagnose(card.path() / "a.wav"), unreadable("not a RIFF/WAVE"));
    EXPECT_EQ(ClipDoctor::diagnose(card.path() / "a.mxf"), unreadable("cannot open"));
}

}  // namespace

}  // namespace ReelCore
