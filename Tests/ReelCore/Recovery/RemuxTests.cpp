#include "DoctorFixture.h"
#include "ReelCore/Platform/FileSystem.h"
#include "Support/AwkwardNames.h"
#include "Support/FakeTool.h"
#include "Support/LoopMount.h"
#include "Support/OwnMounts.h"
#include "Support/Tool.h"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace ReelCore {

namespace {

using namespace TestSupport;

const std::string remuxFailed = "I/O failed: remux failed: ";

/// A clip that no rebuild helps, so that it is remuxed. ffmpeg is the real one or a script.
class Remux : public DoctorFixture {
protected:
    URL cutClip(const std::string& name = "A001.mov") const {
        const std::string whole = wholeMovie();
        return file("card/" + name, whole.substr(0, whole.size() - 1));
    }

    /// What the repair of such a clip says where ffmpeg is a script.
    std::string detailWith(const std::string& script) const {
        const FakeTool ffmpeg("FFMPEG_PATH", script);
        const URL clip = cutClip();
        const RepairOutcome outcome = repaired(clip);
        EXPECT_EQ(outcome, (RepairOutcome{clip, std::nullopt, false, "repair", outcome.detail}));
        EXPECT_EQ(ffmpeg.calls().size(), 1U);
        EXPECT_EQ(readFile(clip), wholeMovie().substr(0, wholeMovie().size() - 1));
        return outcome.detail;
    }
};

TEST_F(Remux, TruncatedH264_ComesBackAsFarAsItGoes) {
    const std::string whole = h264Clip(2.0);
    const URL clip = file("A001.mp4", whole.substr(0, whole.size() / 2));

    const RepairOutcome outcome = repaired(clip);

    EXPECT_EQ(outcome, (RepairOutcome{clip, output() / "A001_repaired.mov", true, "remux",
                                      "container rebuilt from intact index"}));
    EXPECT_EQ(probed(*outcome.output, "stream=codec_name", "v:0"), "h264");
    const int frames = std::stoi(probed(*outcome.output, "stream=nb_frames", "v:0"));
    EXPECT_GT(frames, 15);
    EXPECT_LT(frames, 35);
    EXPECT_EQ(readFile(clip), whole.substr(0, whole.size() / 2));
}

TEST_F(Remux, TruncatedMXF_ComesBackAsAMovie) {
    const std::string whole = mxfMovie();
    const URL clip = file("C0001.MXF", whole.substr(0, whole.size() * 3 / 4));

    const RepairOutcome outcome = repaired(clip);

    EXPECT_EQ(outcome, (RepairOutcome{clip, output() / "C0001_repaired.mov", true, "remux",
                                      "container rebuilt from intact index"}));
    EXPECT_EQ(probed(*outcome.output, "stream=codec_name", "v:0"), "mpeg2video");
    EXPECT_GT(std::stoi(probed(*outcome.output, "stream=nb_frames", "v:0")), 14);
}

TEST_F(Remux, AwkwardNames_AreFilesToFFmpegAndNothingElse) {
    const std::string whole = h264Clip();
    for (const std::string& name : awkwardNames) {
        const URL clip = file(name + ".mp4", whole.substr(0, whole.size() / 2));

        const RepairOutcome outcome = repairedInto(output() / name, clip);

        EXPECT_EQ(outcome.output, output() / name / (name + "_repaired.mov")) << outcome.detail;
        EXPECT_EQ(FileSystem::names(output() / name).size(), 1U) << name;
    }
}

TEST_F(Remux, Arguments_AreThese) {
    const FakeTool ffmpeg("FFMPEG_PATH", "for last; do :; done; echo media > \"$last\"");
    const URL clip = cutClip("two words.mov");

    const RepairOutcome outcome = repaired(clip);

    EXPECT_EQ(outcome.method, "remux");
    const std::vector<std::string> expected{
        "-y",   "-err_detect",     "ignore_err",
        "-i",   clip.native(),     "-c",
        "copy", "-ignore_unknown", output() / "two words_repaired.mov"};
    EXPECT_EQ(ffmpeg.calls(), std::vector(1, expected));
}

TEST_F(Remux, ClipWhoseTitleIsAComplaint_IsRepairedAllTheSame) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "for last; do :; done; echo media > \"$last\"\n"
                          "echo '    title           : Host is down' >&2");

    EXPECT_TRUE(repaired(cutClip()).succeeded);
}

TEST_F(Remux, WhatTheToolPrints_GoesNowhereAndItsInputIsEmpty) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "for last; do :; done; yes | head -c 1000000\n"
                          "{ cat; echo media; } > \"$last\"");

    const RepairOutcome outcome = repaired(cutClip());

    EXPECT_EQ(outcome.method, "remux") << outcome.detail;
    EXPECT_EQ(readFile(*outcome.output), "media\n");
}

TEST_F(Remux, ToolThatFails_GivesItsLastFourLinesThatAreNotEmpty) {
    EXPECT_EQ(detailWith("printf 'one\\ntwo\\n\\nthree\\n\\n\\nfour\\nfive\\n\\n' >&2; exit 1"),
              remuxFailed + "two\nthree\nfour\nfive");
    EXPECT_EQ(detailWith("printf 'one\\ntwo' >&2; exit 187"), remuxFailed + "one\ntwo");
}

TEST_F(Remux, ToolThatFailsWithoutAWord_LeavesNothingBehindTheColon) {
    EXPECT_EQ(detailWith("exit 1"), remuxFailed);
    EXPECT_EQ(detailWith("echo printed; exit 1"), remuxFailed);
}

TEST_F(Remux, ComplaintsThatAreNotUTF8_LeaveNothingBehindTheColon) {
    EXPECT_EQ(detailWith("printf 'one\\nno \\377 text\\n' >&2; exit 1"), remuxFailed);
}

TEST_F(Remux, LongComplaints_AreReadToTheirEnd) {
    EXPECT_EQ(detailWith("seq 200000 >&2; exit 1"), remuxFailed + "199997\n199998\n199999\n200000");
}

TEST_F(Remux, ToolThatIsKilled_HasFailed) {
    EXPECT_EQ(detailWith("for last; do :; done; echo x > \"$last\"; echo dying >&2; kill -9 $$"),
              remuxFailed + "dying");
}

TEST_F(Remux, ToolThatSucceedsAndWritesNothing_HasFailed) {
    EXPECT_EQ(detailWith("echo all done >&2"), remuxFailed + "all done");
    EXPECT_EQ(detailWith("for last; do :; done; echo opened >&2; : > \"$last\""),
              remuxFailed + "opened");
}

TEST_F(Remux, ToolThatFailsAfterWriting_LeavesItsFileAndTheNextTryTakesANewName) {
    {
        const FakeTool ffmpeg("FFMPEG_PATH", "for last; do :; done; echo half > \"$last\"; exit 1");
        EXPECT_FALSE(repaired(cutClip()).succeeded);
    }
    EXPECT_EQ(readFile(output() / "A001_repaired.mov"), "half\n");

    const FakeTool ffmpeg("FFMPEG_PATH", "for last; do :; done; echo whole > \"$last\"");
    EXPECT_EQ(repaired(cutClip()).output, output() / "A001_repaired 2.mov");
}

TEST_F(Remux, ToolThatTellsOfAFailedDriveAndSucceeds_HasFailed) {
    EXPECT_EQ(detailWith("for last; do :; done; echo x > \"$last\"\n"
                         "echo \"av_interleaved_write_frame(): No space left on device\" >&2"),
              remuxFailed + "av_interleaved_write_frame(): No space left on device");
}

TEST_F(Remux, ClipCutOffRightBehindItsIndex_IsNoSuccessThoughFFmpegCallsItOne) {
    const std::string whole = h264Clip();
    const URL clip = file("A001.mp4", whole.substr(0, beginOf(whole, "mdat") + 20));

    const RepairOutcome outcome = repaired(clip);

    EXPECT_EQ(outcome, (RepairOutcome{clip, std::nullopt, false, "repair", outcome.detail}));
    EXPECT_TRUE(outcome.detail.starts_with(remuxFailed)) << outcome.detail;
}

/// Told early, between much else.
TEST_F(Remux, EveryKindOfFailedDrive_IsSeenHoweverMuchIsSaidBehindIt) {
    for (const int code : {EIO, EHOSTDOWN, EREMOTEIO, ENODATA, ENOMEDIUM, EUCLEAN, ESTALE}) {
        const std::string detail = detailWith(
            "for last; do :; done; echo x > \"$last\"\necho \"$last: " +
            std::string(std::strerror(code)) +
            "\" >&2\nyes 'another complaint' | head -c 3000000 >&2; echo >&2; echo end >&2");

        EXPECT_TRUE(detail.starts_with(remuxFailed)) << detail;
        EXPECT_TRUE(detail.ends_with("\nend")) << detail;
    }
}

TEST_F(Remux, FailedDriveInTheMiddleOfALine_IsAnotherComplaint) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "for last; do :; done; echo x > \"$last\"\n"
                          "echo 'a clip named: Input/output error.mov: Invalid data' >&2");

    EXPECT_TRUE(repaired(cutClip()).succeeded);
}

TEST_F(Remux, NoTemporaryFolder_IsNoReasonToFail) {
    const std::string whole = h264Clip();
    const URL clip = file("A001.mp4", whole.substr(0, whole.size() / 2));
    const EnvironmentVariable variable("TMPDIR", folder() / "missing");

    const RepairOutcome outcome = repaired(clip);

    EXPECT_TRUE(outcome.succeeded) << outcome.detail;
}

TEST_F(Remux, FullTemporaryFolder_IsNoReasonToFail) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const std::string whole = h264Clip();
    const URL clip = file("A001.mp4", whole.substr(0, whole.size() / 2));
    const LoopMount drive("ext4", 4);
    std::ofstream filler(drive.path() / "filler", std::ios::binary);
    while (filler.write(whole.data(), 4096).flush()) {
    }
    const EnvironmentVariable variable("TMPDIR", drive.path().native());

    const RepairOutcome outcome = repaired(clip);

    EXPECT_TRUE(outcome.succeeded) << outcome.detail;
}

/// A sum over the first frame of a stream, as ffmpeg decodes it; nothing if there is none.
std::string firstFrameOf(const URL& clip, const std::string& kind) {
    const auto [status, output] =
        runTool("ffmpeg", {"-nostdin", "-v", "quiet", "-i", clip.native(), "-map", "0:" + kind,
                           "-frames:" + kind.substr(0, 1), "1", "-f", "md5", "-"});
    return status == 0 ? output : std::string();
}

TEST_F(Remux, IndexCutShortWithNothingBehindIt_IsNoSuccess) {
    const std::string whole = h264Clip();
    const std::size_t index = beginOf(whole, "moov");
    const std::size_t size = numberIn(whole.substr(index, 4));
    for (const std::size_t missing : {8U, 40U, 100U, 400U}) {
        const URL clip = file("A001.mp4", whole.substr(0, index + size - missing));

        const RepairOutcome outcome = repaired(clip);

        EXPECT_EQ(outcome, (RepairOutcome{clip, std::nullopt, false, "repair", outcome.detail}));
        EXPECT_TRUE(outcome.detail.starts_with(remuxFailed)) << outcome.detail;
    }
}

TEST_F(Remux, ClipWhoseSoundIsAllCutOff_SaysSoAndWhereTheRestIs) {
    const std::string whole = mxfMovie();
    const RepairOutcome outcome = repaired(file("C0001.mxf", whole.substr(0, 12'000)));

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.output, std::nullopt);
    EXPECT_EQ(outcome.detail, remuxFailed +
                                  "no sound that plays came out of the clip; "
                                  "what did come out is in C0001_repaired.mov");
    EXPECT_TRUE(FileSystem::exists(output() / "C0001_repaired.mov"));
}

// Of a clip that is told as repaired, the first picture is the camera's own.
TEST_F(Remux, MXFCutAtManyPlaces_IsASuccessOnlyWithAFirstFrameAndASound) {
    const std::string whole = mxfMovie();
    const std::string picture = firstFrameOf(file("whole.mxf", whole), "v:0");
    ASSERT_NE(picture, "");
    int succeeded = 0;
    int failed = 0;
    for (std::size_t cut = 2000; cut < 40'000; cut += 1'999) {
        const URL clip = file("C.mxf", whole.substr(0, cut));
        const RepairOutcome outcome = repairedInto(output() / std::to_string(cut), clip);
        ++(outcome.succeeded ? succeeded : failed);
        if (!outcome.succeeded) continue;
        EXPECT_EQ(firstFrameOf(*outcome.output, "v:0"), picture) << cut;
        EXPECT_NE(firstFrameOf(*outcome.output, "a:0"), "") << cut;
    }
    EXPECT_GT(succeeded, 3);
    EXPECT_GT(failed, 3);
}

TEST_F(Remux, ClipOfNoStreams_GivesFFmpegsOwnWords) {
    const RepairOutcome outcome = repaired(cutClip());

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_TRUE(outcome.detail.starts_with(remuxFailed)) << outcome.detail;
    EXPECT_TRUE(outcome.detail.ends_with("\nOutput file #0 does not contain any stream"))
        << outcome.detail;
}

TEST_F(Remux, NoFFmpegOnTheMachine_IsSaidAsItStands) {
    if (const auto missing = ownMountsMissing(); !missing.empty()) GTEST_SKIP() << missing;
    const URL clip = cutClip();
    const RepairOutcome expected{clip, std::nullopt, false, "repair",
                                 "ffmpeg not found (needed to extract audio tracks)."};

    const int status = statusInOwnMounts([&] {
        hideMediaTools();
        return repaired(clip) == expected ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(Remux, NoFFmpegOnTheMachine_LeavesTheOtherRepairs) {
    if (const auto missing = ownMountsMissing(); !missing.empty()) GTEST_SKIP() << missing;
    const std::string whole = indexedClip();
    const URL movie = file("A001.mov", whole.substr(0, whole.size() / 2));
    const URL recording = file("R001.wav", staleRecording(0.1));

    const int status = statusInOwnMounts([&] {
        hideMediaTools();
        return repaired(movie).succeeded && repaired(recording).succeeded ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(Remux, FFmpegThatCannotBeStarted_IsAFailure) {
    const URL tool = file("tool", "#!/nowhere/interpreter\n");
    std::filesystem::permissions(tool, std::filesystem::perms(0755));
    const EnvironmentVariable variable("FFMPEG_PATH", tool.native());

    const RepairOutcome outcome = repaired(cutClip());

    EXPECT_EQ(outcome.method, "repair");
    EXPECT_EQ(outcome.detail, "No such file or directory: " + tool.native());
}

}  // namespace

}  // namespace ReelCore
