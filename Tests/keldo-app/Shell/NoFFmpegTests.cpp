#include "../../ReelCore/Recovery/MixedCard.h"
#include "../Transcript/TranscriptTools.h"
#include "ScreenFixture.h"
#include "Support/OwnMounts.h"
#include "Support/ShootingDay.h"
#include "keldo-app/Recover/RecoverViewModel.h"

#include <cstdio>
#include <functional>

namespace {

constexpr const char* install = "sudo apt install ffmpeg";

/// What each screen says and still does where no ffmpeg can be found.
class NoFFmpegTests : public WindowSupport::ScreenFixture {
protected:
    void SetUp() override {
        if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
            GTEST_SKIP() << missing;
        }
    }

    /// Uses the window in a process for which ffmpeg and ffprobe are hidden.
    void withoutFFmpeg(const std::function<void()>& use) {
        const int status = TestSupport::statusInOwnMounts([&] {
            TestSupport::hideMediaTools();
            try {
                use();
            } catch (const std::exception& error) {
                ADD_FAILURE() << error.what();
            }
            TearDown();
            std::fflush(nullptr);
            return HasFailure() ? 1 : 0;
        });
        EXPECT_EQ(status, 0) << "what went wrong stands above";
    }

    QString reason(const char* needs) const {
        return driver_->at(needs).property("reason").toString();
    }
};

}  // namespace

TEST_F(NoFFmpegTests, Recover_SaysWhatCanNotBeRepairedAndRepairsTheRest) {
    const ReelCore::MixedCard card(place("card"));
    madeFolder("out");
    withoutFFmpeg([&] {
        openMode("Recover");
        choose("recover.card.choose", card.path);
        driver_->press("recover.scan");
        waitUntilShown("recover.diagnosisCard");
        EXPECT_EQ(reason("recover.ffmpeg"), "Truncated clips need ffmpeg to be repaired:");
        EXPECT_EQ(driver_->text("recover.ffmpeg.command"), install);
        choose("recover.places.reference.choose", card.reference);
        choose("recover.places.output.choose", place("out"));
        keepPictures("recover-noffmpeg");
        driver_->press("recover.repair");
        driver_->waitFor(
            "the end", [&] { return driver_->isShown("recover.repair"); }, 120'000);
        const auto* recover = driver_->window().findChild<keldo_app::RecoverViewModel*>("recover");
        std::vector<bool> succeeded;
        for (const auto& outcome : recover->outcomes()) {
            succeeded.push_back(outcome.succeeded);
            if (outcome.method == "remux") {
                EXPECT_NE(outcome.detail.find("ffmpeg"), std::string::npos) << outcome.detail;
            }
        }
        std::vector<bool> expected;
        for (const auto& clip : card.clips) {
            if (!clip.diagnosis.isRepairable()) continue;
            expected.push_back(!clip.output.empty() && clip.method != "remux");
        }
        EXPECT_EQ(succeeded, expected);
        EXPECT_GT(std::ranges::count(succeeded, true), 0);
        EXPECT_GT(std::ranges::count(succeeded, false), 0);
    });
}

TEST_F(NoFFmpegTests, Recover_CarvesAnImage) {
    const ReelCore::MixedCard card(place("card"));
    const std::string whole = TestSupport::readFile(card.reference);
    TestSupport::writeFile(place("card.img"), TestSupport::noise(1 << 20) + whole);
    madeFolder("out");
    withoutFFmpeg([&] {
        openMode("Recover");
        choose("recover.image.choose", place("card.img"));
        driver_->press("recover.scanImage");
        waitUntilShown("recover.finding.0");
        choose("recover.carvePlaces.output.choose", place("out"));
        driver_->press("recover.carve");
        waitUntilShown("recover.carved.0");
    });
    EXPECT_EQ(TestSupport::readFile(place("out/carved_001.mov")), whole);
}

TEST_F(NoFFmpegTests, Sync_SaysWhatCanNotBeReadAndListsTheSound) {
    TestSupport::makeShortDay(madeFolder("Day1"));
    madeFolder("Reports");
    madeFolder("Editorial");
    withoutFFmpeg([&] {
        openMode("Sync");
        EXPECT_EQ(reason("sync.ffmpeg"), "Without ffmpeg no camera clip can be read:");
        EXPECT_EQ(driver_->text("sync.ffmpeg.command"), install);
        keepPictures("sync-noffmpeg");
        choose("sync.media.choose", place("Day1"));
        driver_->press("sync.scan");
        waitUntilShown("sync.groupedCard");
        EXPECT_EQ(driver_->text("sync.counts"), "0 clips · 0 synced · 3 audio unmatched");
        EXPECT_EQ(driver_->text("sync.muxNeeds"), "ffmpeg required to mux audio.");
        EXPECT_EQ(driver_->text("sync.muxFFmpeg.command"), install);
        for (const char* mux : {"sync.mux", "sync.muxNote", "sync.output.choose"}) {
            EXPECT_FALSE(driver_->isShown(mux)) << mux;
        }
        keepPictures("sync-noffmpeg-results");
        choose("sync.save", place("Reports"));
        waitUntilShown("sync.reportStatus");
        EXPECT_EQ(driver_->text("sync.reportStatus"), "Saved 2 file(s) to Reports.");
        choose("sync.export", place("Editorial"));
        waitUntilShown("sync.exportStatus");
        EXPECT_EQ(driver_->text("sync.exportStatus"), "Exported FCPXML + ALE to Editorial.");
    });
}

TEST_F(NoFFmpegTests, Transcode_SaysWhatItNeedsAndStillShowsTheCommand) {
    TestSupport::writeFile(place("a.mov"), "picture");
    madeFolder("out");
    withoutFFmpeg([&] {
        openMode("Transcode");
        EXPECT_EQ(driver_->text("transcode.ffmpegCard"), "FFmpeg Required");
        EXPECT_EQ(driver_->text("transcode.ffmpegText"),
                  "Transcoding needs ffmpeg. Install it with `brew install ffmpeg` (or set the "
                  "FFMPEG_PATH environment variable), then reopen Keldo. You can still configure "
                  "a job and preview the command below.");
        EXPECT_EQ(driver_->text("transcode.ffmpeg.command"), install);
        addClips({place("a.mov")});
        choose("transcode.output.choose", place("out"));
        EXPECT_TRUE(driver_->text("transcode.preview").startsWith("ffmpeg "));
        EXPECT_EQ(driver_->text("transcode.startRow.needs"), "ffmpeg is missing.");
        EXPECT_FALSE(driver_->isEnabled("transcode.start"));
        driver_->key(Qt::Key_Return);
        EXPECT_FALSE(driver_->isShown("transcode.running"));
        keepPictures("transcode-noffmpeg");
    });
}

TEST_F(NoFFmpegTests, Transcript_SaysWhatItNeedsAndCanNotStart) {
    TestSupport::writeFile(place("a.mov"), "picture");
    madeFolder("out");
    const WindowSupport::TranscriptTools tools;
    withoutFFmpeg([&] {
        openMode("Transcript");
        EXPECT_EQ(driver_->text("transcript.needs"), "Setup Needed");
        EXPECT_EQ(driver_->text("transcript.needsFFmpeg"),
                  "ffmpeg not found — `brew install ffmpeg`.");
        EXPECT_EQ(driver_->text("transcript.ffmpeg.command"), install);
        EXPECT_FALSE(driver_->isShown("transcript.needsWhisper"));
        keepPictures("transcript-noffmpeg");
        choose("transcript.input.choose", place("a.mov"));
        waitUntilShown("transcript.channels");
        EXPECT_EQ(driver_->text("transcript.channels"), "0 ISO channels");
        choose("transcript.output.choose", place("out"));
        EXPECT_FALSE(driver_->isEnabled("transcript.start"));
        driver_->key(Qt::Key_Return);
        EXPECT_FALSE(driver_->isShown("transcript.running"));
    });
}
