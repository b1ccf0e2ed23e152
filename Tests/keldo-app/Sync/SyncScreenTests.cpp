#include "Support/ShootingDay.h"
#include "Window/WindowFixture.h"
#include "keldo-app/Sync/SyncViewModel.h"

using ReelCore::URL;
using WindowSupport::WindowFixture;

namespace {

class SyncScreenTests : public WindowFixture {
protected:
    void openSync() {
        openWindow();
        driver_->press("mode.Sync");
    }

    void choose(const char* button, const URL& answer) {
        desktop_.answers = {answer};
        driver_->press(button);
    }

    URL madeFolder(const char* name) const {
        std::filesystem::create_directories(folder_.path() / name);
        return folder_.path() / name;
    }

    void scan(const URL& day) {
        openSync();
        choose("sync.media.choose", day);
        driver_->press("sync.scan");
        driver_->waitFor(
            "the groups", [&] { return driver_->isShown("sync.groupedCard"); }, 120'000);
    }

    void waitForText(const char* name, const QString& text) {
        driver_->waitFor(
            name, [&] { return driver_->isShown(name) && driver_->text(name) == text; }, 120'000);
    }
};

}  // namespace

TEST_F(SyncScreenTests, Setup_HasItsTexts) {
    openSync();
    EXPECT_EQ(driver_->text("sync.intro"),
              "Point at a folder of camera clips and sound-recorder WAVs. keldobay matches them by "
              "time-of-day timecode (and reads scene/take/track names from the BWF/iXML).");
    EXPECT_EQ(driver_->text("sync.mediaCard"), "Day's Media");
    EXPECT_EQ(driver_->text("sync.media.text"), "No folder selected");
    EXPECT_EQ(driver_->text("sync.scan"), "Scan & Group");
    EXPECT_FALSE(driver_->isEnabled("sync.scan"));
    keepPictures("sync");
}

TEST_F(SyncScreenTests, Day_IsGroupedReportedExportedAndMuxed) {
    const URL day = madeFolder("Day1");
    TestSupport::makeShootingDay(day);
    scan(day);
    EXPECT_TRUE(driver_->text("sync.counts").startsWith("22 clips · "));
    EXPECT_EQ(driver_->text("sync.groupsCard"), "Sync Groups");
    EXPECT_EQ(driver_->text("sync.unmatchedCard"), "Unmatched Audio");
    EXPECT_EQ(driver_->shown("sync.unmatched.0").symbol, "waveform");
    EXPECT_EQ(driver_->text("sync.editorialNote"),
              "Export the sync as project XML the editor imports directly — FCPXML for Resolve / "
              "Premiere / Final Cut, ALE (scene/take/sound roll) for Avid. No re-encoding; relinks "
              "to your media.");
    EXPECT_EQ(driver_->text("sync.muxNote"),
              "Writes one .mov per clip with the matched sound aligned to picture (video copied, "
              "no re-encode).");
    keepPictures("sync-groups");
    choose("sync.save", madeFolder("Reports"));
    waitForText("sync.reportStatus", "Saved 2 file(s) to Reports.");
    choose("sync.export", madeFolder("Editorial"));
    waitForText("sync.exportStatus", "Exported FCPXML + ALE to Editorial.");
    EXPECT_FALSE(driver_->isEnabled("sync.mux"));
    choose("sync.output.choose", madeFolder("Out"));
    const QString button = driver_->text("sync.mux");
    EXPECT_TRUE(button.startsWith("Create "));
    EXPECT_TRUE(button.endsWith(" Synced Clips"));
    driver_->press("sync.mux");
    driver_->waitFor("the mux", [&] { return driver_->isShown("sync.muxing"); });
    driver_->waitFor(
        "its end", [&] { return driver_->isShown("sync.muxStatus"); }, 120'000);
    const QString count = button.split(' ').at(1);
    EXPECT_EQ(driver_->text("sync.muxStatus"),
              "Created " + count + " of " + count + " synced clips in Out.");
    EXPECT_TRUE(driver_->at("sync.muxShortened.0")
                    .property("text")
                    .toString()
                    .endsWith("before the picture does."));
    keepPictures("sync-muxed");
    driver_->press("sync.new");
    EXPECT_TRUE(driver_->isShown("sync.intro"));
}
