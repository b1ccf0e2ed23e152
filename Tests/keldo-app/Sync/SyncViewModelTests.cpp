#include "keldo-app/Sync/SyncViewModel.h"

#include "../ViewModelFixture.h"
#include "Support/Clip.h"
#include "Support/FakeTool.h"
#include "Support/ShootingDay.h"
#include "Support/Tool.h"

using keldo_app::GroupRow;
using keldo_app::SyncViewModel;
using ReelCore::AudioClip;
using ReelCore::SyncGroup;
using ReelCore::URL;
using TestSupport::outputOf;

namespace {

class SyncViewModelTests : public ViewModelFixture<SyncViewModel> {
protected:
    static void SetUpTestSuite() {
        day_ = new TestSupport::TemporaryFolder;
        TestSupport::makeShortDay(day());
    }
    static void TearDownTestSuite() { delete day_; }

    static URL day() { return day_->path() / "Day1"; }

    void scanShortDay() { scan(day()); }

    void scan(const URL& folder) {
        choose(&SyncViewModel::chooseMediaDir, folder);
        model_.scan();
        EXPECT_EQ(model_.stage(), Stage::scanning);
        ASSERT_TRUE(waitForStage(Stage::results));
    }

    void mux() {
        choose(&SyncViewModel::chooseOutput, madeFolder("Out"));
        ASSERT_TRUE(model_.canMux());
        model_.mux();
        EXPECT_EQ(model_.stage(), Stage::muxing);
        ASSERT_TRUE(waitForStage(Stage::results));
    }

    static inline TestSupport::TemporaryFolder* day_ = nullptr;

    /// The sums of a clip's coded pictures.
    static std::string pictures(const URL& clip) {
        return outputOf("ffmpeg", {"-v", "error", "-i", clip.native(), "-map", "0:v", "-c", "copy",
                                   "-f", "framemd5", "-"});
    }
};

SyncGroup group(std::vector<SyncGroup::Match> audio) {
    ReelCore::VideoClip video;
    video.url = "/day/A001.mov";
    return {video, std::move(audio)};
}

SyncGroup::Match sound(const AudioClip& clip, double offset, double coverage) {
    return {clip, offset, coverage};
}

}  // namespace

TEST_F(SyncViewModelTests, Start_HasNothingChosenAndCanDoNothing) {
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_FALSE(model_.mediaDir() || model_.outputDir());
    EXPECT_FALSE(model_.result());
    EXPECT_FALSE(model_.canScan() || model_.canMux());
    model_.scan();
    model_.saveReport();
    model_.exportEditorial();
    model_.mux();
    model_.reveal();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_TRUE(desktop_.messages.isEmpty());
}

TEST_F(SyncViewModelTests, Panels_HaveTheirPromptsAndDismissedKeepWhatWasChosen) {
    choose(&SyncViewModel::chooseMediaDir, place("Day1"));
    choose(&SyncViewModel::chooseOutput, place("Out"));
    EXPECT_EQ(desktop_.messages,
              (QStringList{"Choose the day's media folder (camera clips + sound WAVs)",
                           "Choose where to write synced clips"}));
    model_.chooseMediaDir();
    model_.chooseOutput();
    EXPECT_EQ(model_.mediaDir(), place("Day1"));
    EXPECT_EQ(model_.outputDir(), place("Out"));
}

TEST_F(SyncViewModelTests, Scan_GroupsTheDay) {
    scanShortDay();
    EXPECT_EQ(model_.result()->groups.size(), 2U);
    EXPECT_EQ(model_.property("syncedCount"), 1);
    EXPECT_EQ(model_.property("groups").value<keldo_app::RowModel*>()->count(), 2);
    EXPECT_EQ(model_.property("unmatchedAudio").value<keldo_app::RowModel*>()->count(), 1);
}

TEST_F(SyncViewModelTests, Row_OfAClipWithItsBestSound) {
    AudioClip best;
    best.url = "/day/T003.WAV";
    best.scene = "14A";
    best.take = "3";
    best.trackNames = {"Boom", "Lav 1"};
    AudioClip other;
    other.url = "/day/T004.WAV";
    const auto row =
        GroupRow::of(group({sound(best, 12.4, 0.999), sound(other, 3, 0.5), sound(other, 2, 0.4)}));
    EXPECT_EQ(row.video, "A001.mov");
    EXPECT_EQ(row.timecode, "no TC");
    EXPECT_EQ(row.sound, "T003.WAV");
    EXPECT_EQ(row.meta, "+12.40s · sc 14A · tk 3 · Boom, Lav 1");
    EXPECT_EQ(row.coverage, "99%");
    EXPECT_EQ(row.others, "+2 more takes overlap");
}

TEST_F(SyncViewModelTests, Row_OfARecorderThatRolledLater_HasThePlusAndTheMinus) {
    const auto row = GroupRow::of(group({sound({}, -5, 1), sound({}, 0, 1)}));
    EXPECT_EQ(row.meta, "+-5.00s");
    EXPECT_EQ(row.others, "+1 more take overlap");
}

TEST_F(SyncViewModelTests, Row_WithoutSound_HasNone) {
    const auto row = GroupRow::of(group({}));
    EXPECT_EQ(row.sound, "");
    EXPECT_EQ(row.others, "");
}

TEST_F(SyncViewModelTests, Export_WritesBothAndShowsThem) {
    scanShortDay();
    choose(&SyncViewModel::exportEditorial, madeFolder("Editorial"));
    ASSERT_TRUE(waitFor([&] { return !model_.exportStatus().isEmpty(); }));
    EXPECT_EQ(desktop_.messages.constLast(), "Export FCPXML + ALE to…");
    EXPECT_EQ(model_.exportStatus(), "Exported FCPXML + ALE to Editorial.");
    const std::vector<URL> files{place("Editorial/Day1.fcpxml"), place("Editorial/Day1.ale")};
    EXPECT_EQ(desktop_.revealed, files);
    outputOf("xmllint", {"--noout", "--nonet", files.front().native()});
}

TEST_F(SyncViewModelTests, Export_OfOneFileThatCanNotBeWritten_NamesTheOther) {
    scanShortDay();
    madeFolder("Editorial/Day1.ale");
    choose(&SyncViewModel::exportEditorial, place("Editorial"));
    ASSERT_TRUE(waitFor([&] { return !model_.exportStatus().isEmpty(); }));
    EXPECT_EQ(model_.exportStatus(), "Exported FCPXML to Editorial.");
}

TEST_F(SyncViewModelTests, Export_WhereNothingCanBeWritten_Fails) {
    scanShortDay();
    TestSupport::writeFile(place("file"), "");
    choose(&SyncViewModel::exportEditorial, place("file"));
    ASSERT_TRUE(waitFor([&] { return !model_.exportStatus().isEmpty(); }));
    EXPECT_EQ(model_.exportStatus(), "Export failed.");
    EXPECT_TRUE(desktop_.revealed.empty());
}

TEST_F(SyncViewModelTests, Report_IsSavedUnderItsPrompt) {
    scanShortDay();
    choose(&SyncViewModel::saveReport, madeFolder("Reports"));
    ASSERT_TRUE(waitFor([&] { return !model_.reportStatus().isEmpty(); }));
    EXPECT_EQ(desktop_.messages.constLast(), "Save Sync Report to…");
    EXPECT_EQ(model_.reportStatus(), "Saved 2 file(s) to Reports.");
}

TEST_F(SyncViewModelTests, Mux_WritesTheSyncedClipWithItsPictureUntouched) {
    scanShortDay();
    mux();
    EXPECT_EQ(model_.muxStatus(), "Created 1 of 1 synced clip in Out.");
    EXPECT_EQ(model_.muxDone(), 1);
    const auto& synced = *std::ranges::find_if(model_.result()->groups, &SyncGroup::isSynced);
    const URL made = place("Out") / (synced.video.url.stem().native() + "_synced.mov");
    EXPECT_EQ(pictures(made), pictures(synced.video.url));
    model_.reveal();
    EXPECT_EQ(desktop_.revealed, std::vector<URL>{place("Out")});
}

TEST_F(SyncViewModelTests, MuxAgain_WritesBesideTheFirst) {
    scanShortDay();
    mux();
    mux();
    EXPECT_EQ(TestSupport::readTree(place("Out")).size(), 2U);
    const auto& synced = *std::ranges::find_if(model_.result()->groups, &SyncGroup::isSynced);
    EXPECT_TRUE(std::filesystem::exists(place("Out") /
                                        (synced.video.url.stem().native() + "_synced 2.mov")));
}

TEST_F(SyncViewModelTests, Mux_CallsFFmpegAsAgreedAndGoesOnAfterAFailure) {
    scanShortDay();
    const TestSupport::FakeTool ffmpeg("FFMPEG_PATH", "exit 1");
    mux();
    EXPECT_EQ(model_.muxStatus(), "Created 0 of 1 synced clip in Out.");
    const auto best =
        std::ranges::find_if(model_.result()->groups, &SyncGroup::isSynced)->best().value();
    const auto& video = std::ranges::find_if(model_.result()->groups, &SyncGroup::isSynced)->video;
    const auto calls = ffmpeg.calls();
    ASSERT_EQ(calls.size(), 1U);
    const std::string output =
        (place("Out") / (video.url.stem().native() + "_synced.mov")).native();
    EXPECT_EQ(calls.front(),
              (std::vector<std::string>{"-y", "-v", "error", "-i", video.url.native(), "-ss", "5.0",
                                        "-i", best.clip->url.native(), "-map", "0:v", "-map", "1:a",
                                        "-c:v", "copy", "-c:a", "pcm_s16le", "-shortest", output}));
    EXPECT_TRUE(TestSupport::readTree(place("Out")).empty()) << "no empty clip is left";
}

TEST_F(SyncViewModelTests, FullDriveThatFFmpegCallsASuccess_IsCountedOut) {
    scanShortDay();
    const TestSupport::FakeTool ffmpeg(
        "FFMPEG_PATH", "echo 'av_interleaved_write_frame(): No space left on device' >&2; exit 0");
    mux();
    EXPECT_EQ(model_.muxStatus(), "Created 0 of 1 synced clip in Out.");
}

TEST_F(SyncViewModelTests, ResetDuringAMux_LeavesItGoingUnseen) {
    scanShortDay();
    choose(&SyncViewModel::chooseOutput, madeFolder("Out"));
    model_.mux();
    model_.reset();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_FALSE(model_.result());
    const keldo_app::InUse::Use erase{day(), keldo_app::InUse::Purpose::erasing};
    ASSERT_TRUE(waitFor([&] { return keldo_app::InUse::shared().objection(erase).isEmpty(); }));
    EXPECT_EQ(model_.muxStatus(), "");
    EXPECT_EQ(TestSupport::readTree(place("Out")).size(), 1U);
}

TEST_F(SyncViewModelTests, Reset_ClearsTheReportsTextAndKeepsThatOfTheExport) {
    scanShortDay();
    choose(&SyncViewModel::exportEditorial, madeFolder("Editorial"));
    choose(&SyncViewModel::saveReport, madeFolder("Reports"));
    ASSERT_TRUE(waitFor(
        [&] { return !model_.exportStatus().isEmpty() && !model_.reportStatus().isEmpty(); }));
    model_.reset();
    EXPECT_EQ(model_.reportStatus(), "");
    EXPECT_EQ(model_.exportStatus(), "Exported FCPXML + ALE to Editorial.");
    EXPECT_EQ(model_.mediaDir(), day());
    EXPECT_TRUE(model_.canScan());
}
