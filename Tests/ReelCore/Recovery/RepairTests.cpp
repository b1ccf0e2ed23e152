#include "DoctorFixture.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReferenceMovie.h"
#include "Support/FakeTool.h"
#include "Support/Forked.h"
#include "Support/Snapshot.h"
#include "Support/SparseFile.h"

#include <future>
#include <latch>

namespace ReelCore {

namespace {

using namespace TestSupport;

const std::string referenceRequired =
    "A healthy reference clip from the same camera is required: pick a healthy clip from the same "
    "camera";

class Repair : public DoctorFixture {
protected:
    /// A clip whose index was never written, in the manner of a camera that lost power.
    URL neverClosed(const std::string& name = "A001.MOV") const {
        const std::string whole = cameraClip();
        return file("card/" + name, whole.substr(0, beginOf(whole, "moov")));
    }

    URL reference() const { return file("reference.mov", cameraClip(0.2)); }

    /// The index of a clip with one channel of 16 bits.
    URL monoReference() const {
        TrackRecipe mono = stereoSound;
        mono.sampleSize = 2;
        return file("mono.mov", moovBox({{}, mono}));
    }
};

TEST_F(Repair, MissingIndexWithAReference_IsRebuilt) {
    const URL clip = neverClosed();
    const Snapshot card = snapshotOf(folder() / "card");

    const RepairOutcome outcome = repaired(clip, reference());

    EXPECT_EQ(outcome, (RepairOutcome{clip, output() / "A001_recovered.mov", true, "moov rebuild",
                                      "recovered 25 frames (1.0s video, 1.0s audio)"}));
    EXPECT_EQ(probed(*outcome.output, "stream=nb_frames", "v:0"), "25");
    EXPECT_EQ(probed(*outcome.output, "stream=codec_name", "a:0"), "pcm_s16le");
    EXPECT_EQ(snapshotOf(folder() / "card"), card);
}

TEST_F(Repair, MissingIndexWithoutAReference_AsksForOneAndOnlyMakesTheFolder) {
    const URL clip = file("A001.mov", box("mdat", "media"));

    const RepairOutcome outcome = repairedInto(output() / "a/b", clip);

    EXPECT_EQ(outcome,
              (RepairOutcome{clip, std::nullopt, false, "moov rebuild", referenceRequired}));
    EXPECT_TRUE(FileSystem::names(output() / "a/b").empty());
}

TEST_F(Repair, MissingIndexWithABadReference_SaysWhatIsWrongWithIt) {
    const URL clip = file("A001.mov", box("mdat", proResFrame(100)));
    const auto failureWith = [&](const URL& bad) {
        return RepairOutcome{clip, std::nullopt, false, "repair", repaired(clip, bad).detail};
    };
    const auto expectFailure = [&](const URL& bad, const std::string& detail) {
        EXPECT_EQ(repaired(clip, bad), failureWith(bad));
        EXPECT_EQ(repaired(clip, bad).detail, detail);
    };

    expectFailure(folder() / "gone.mov", "Not found: " + (folder() / "gone.mov").native());
    expectFailure(file("no-index.mov", box("mdat", "media")),
                  "Reference clip unusable: reference has no moov");
    expectFailure(file("no-tracks.mov", box("moov")),
                  "Reference clip unusable: no video track in reference");
    expectFailure(file("h264.mp4", h264Clip()),
                  "Unsupported for native rebuild: video codec 'avc1' — native rebuild covers "
                  "ProRes; H.264/HEVC cards need a tool like untrunc");
}

TEST_F(Repair, MissingIndexWithoutFrames_IsAFailureAndNotRemuxed) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    const URL clip = file("A001.mov", box("mdat", "no frames in here"));

    const RepairOutcome outcome = repaired(clip, reference());

    EXPECT_EQ(outcome, (RepairOutcome{clip, std::nullopt, false, "repair",
                                      "No recoverable media frames found in the damaged file."}));
    EXPECT_TRUE(ffmpeg.calls().empty());
}

TEST_F(Repair, PreallocatedClipOfNineGigabytes_IsAFailureThatIsTold) {
    const URL clip = folder() / "A001.mov";
    writeSparse(clip, {{0, boxHeader("mdat", 0) + proResFrame(100)}}, 9'000'000'000);

    const RepairOutcome outcome = repaired(clip, monoReference());

    EXPECT_EQ(outcome, (RepairOutcome{clip, std::nullopt, false, "repair",
                                      "Clip is too large to rebuild."}));
    EXPECT_TRUE(FileSystem::names(output()).empty()) << "something partial was written";
}

TEST_F(Repair, ClipWhoseIndexTellsImpossibleSizes_IsAnOutcome) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    for (const std::uint64_t childSize : {0x8000000000000000U, ~0UL}) {
        const std::string index = box("moov", wideBoxHeader("trak", childSize));
        const URL clip = file("A001.mov", box("mdat", proResFrame(100)));
        const URL cut = file("A002.mov", index + boxHeader("mdat", 1000) + proResFrame(100));

        EXPECT_EQ(repaired(clip, file("R.mov", index)).detail,
                  "Reference clip unusable: no video track in reference");
        EXPECT_FALSE(ClipDoctor::diagnose(cut).isHealthy());
        EXPECT_EQ(repaired(cut).method, "repair") << "neither rebuilt nor remuxed";
    }
}

TEST_F(Repair, ReferenceWhoseClockRunsTooFast_IsAFailureThatIsTold) {
    const URL clip = file("A001.mov", box("mdat", proResFrame(100) + proResFrame(100)));
    const URL fast =
        file("R.mov", box("moov", movieHeader(0, 0xFFFFFFFF) +
                                      TrackBoxes({.timescale = 1, .delta = 0xFFFFFFFF}).trak()));

    EXPECT_EQ(repaired(clip, fast).detail, "Clip is too large to rebuild.");
}

TEST_F(Repair, ReferenceThatIsTheClipItself_IsUnusable) {
    const URL clip = neverClosed();

    EXPECT_EQ(repaired(clip, clip).detail, "Reference clip unusable: reference has no moov");
}

TEST_F(Repair, TruncatedProRes_IsRebuiltByItsOwnIndexWithoutFFmpeg) {
    const std::string whole = indexedClip();
    const auto frames = framesOf(whole);
    const URL clip = file("A001.mov", whole.substr(0, frames.at(10).begin + 50));
    const FakeTool ffmpeg("FFMPEG_PATH");

    const RepairOutcome outcome = repaired(clip);

    EXPECT_EQ(outcome, (RepairOutcome{clip, output() / "A001_repaired.mov", true, "index rebuild",
                                      "recovered 10 frames (0.4s video, 0.4s audio)"}));
    EXPECT_EQ(probed(*outcome.output, "stream=nb_frames", "v:0"), "10");
    EXPECT_TRUE(ffmpeg.calls().empty());
}

TEST_F(Repair, TruncatedClip_NeedsNoReferenceAndTakesNone) {
    const std::string whole = indexedClip();
    const URL clip = file("A001.mov", whole.substr(0, whole.size() / 2));

    const RepairOutcome outcome = repaired(clip, folder() / "gone.mov");

    EXPECT_EQ(outcome.method, "index rebuild") << outcome.detail;
}

TEST_F(Repair, StaleRecording_GetsItsSizes) {
    const URL clip = file("R001.BWF", staleRecording(2.5));

    const RepairOutcome outcome = repaired(clip);

    EXPECT_EQ(outcome, (RepairOutcome{clip, output() / "R001_repaired.wav", true, "WAV size fix",
                                      "2.5s of audio recovered"}));
    EXPECT_EQ(probed(*outcome.output, "stream=duration", "a:0"), "2.500000");
    EXPECT_EQ(readFile(clip), staleRecording(2.5));
}

TEST_F(Repair, IntoAFolderThatCannotBeListed_Succeeds) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    const URL clip = file("R001.BWF", staleRecording(2.5));
    std::filesystem::create_directory(output());
    std::filesystem::permissions(output(), std::filesystem::perms(0333));
    std::filesystem::permissions(folder(), std::filesystem::perms(0755));

    const int status = statusOfForked([&] {
        if (::setuid(12345) != 0) return 2;
        return repaired(clip).succeeded ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(Repair, HealthyAndUnreadable_HaveNothingToRepair) {
    const URL clip = file("A001.mov", wholeMovie());

    for (const ClipDiagnosis& diagnosis : {healthy, unreadable("empty file")}) {
        EXPECT_EQ(ClipDoctor::repair({clip, 1, diagnosis}, clip, output()),
                  (RepairOutcome{clip, std::nullopt, false, "—", "nothing to repair"}));
    }
    EXPECT_TRUE(FileSystem::names(output()).empty());
}

TEST_F(Repair, NameThatIsTaken_GetsANumber) {
    const URL clip = neverClosed("clip.mov");
    const URL healthyClip = reference();

    EXPECT_EQ(repaired(clip, healthyClip).output, output() / "clip_recovered.mov");
    const std::string first = readFile(output() / "clip_recovered.mov");
    EXPECT_EQ(repaired(clip, healthyClip).output, output() / "clip_recovered 2.mov");
    EXPECT_EQ(repaired(clip, healthyClip).output, output() / "clip_recovered 3.mov");

    EXPECT_EQ(readFile(output() / "clip_recovered.mov"), first);
    EXPECT_EQ(FileSystem::names(output()).size(), 3U);
}

TEST_F(Repair, TwoAtOnceIntoOneFolder_EachKeepTheirClip) {
    const URL first = file("card 1/R001.wav", staleRecording(0.1));
    const URL second = file("card 2/R001.wav", staleRecording(0.2));
    const auto sizeOfRepaired = [&](const URL& clip, std::latch& start, const URL& into) {
        start.arrive_and_wait();
        const RepairOutcome outcome = repairedInto(into, clip);
        return outcome.succeeded ? FileSystem::sizeOf(*outcome.output) : std::nullopt;
    };
    for (int round = 0; round < 100; ++round) {
        const URL into = output() / std::to_string(round);
        std::latch start(2);
        auto other =
            std::async(std::launch::async, [&] { return sizeOfRepaired(second, start, into); });

        EXPECT_EQ(sizeOfRepaired(first, start, into), FileSystem::sizeOf(first)) << round;
        EXPECT_EQ(other.get(), FileSystem::sizeOf(second)) << round;

        EXPECT_EQ(FileSystem::names(into).size(), 2U) << round;
    }
}

TEST_F(Repair, FailureBeforeAnythingIsWritten_LeavesNoEmptyClip) {
    const URL clip = file("A001.mov", box("mdat", "no frames in here"));

    EXPECT_FALSE(repaired(clip, reference()).succeeded);

    EXPECT_TRUE(FileSystem::names(output()).empty());
}

TEST_F(Repair, NamesTakenByFoldersAndDanglingLinks_AreLeftAlone) {
    const URL clip = file("R001.wav", staleRecording(0.1));
    std::filesystem::create_directories(output() / "R001_repaired.wav");
    std::filesystem::create_symlink("nowhere", output() / "R001_repaired 2.wav");

    EXPECT_EQ(repaired(clip).output, output() / "R001_repaired 3.wav");
    EXPECT_FALSE(FileSystem::exists(output() / "nowhere"));
}

TEST_F(Repair, DotsInTheName_StayButForTheExtension) {
    const URL clip = file("A.001.take 2.WAV", staleRecording(0.1));

    EXPECT_EQ(repaired(clip).output, output() / "A.001.take 2_repaired.wav");
}

TEST_F(Repair, OutputBesideTheSource_LeavesTheSource) {
    const URL clip = file("card/R001.wav", staleRecording(0.1));

    const RepairOutcome outcome = repairedInto(folder() / "card", clip);

    EXPECT_EQ(outcome.output, folder() / "card/R001_repaired.wav");
    EXPECT_EQ(readFile(clip), staleRecording(0.1));
}

}  // namespace

}  // namespace ReelCore
