#include "ScreenFixture.h"
#include "Support/Clip.h"
#include "Support/FakeTool.h"
#include "Support/ShootingDay.h"
#include "keldo-app/Support/InUse.h"

#include <vector>

namespace {

void tell(const QQuickItem& item, QStringList& lines) {
    if (!item.isVisible()) return;
    lines += item.objectName() + "|" + item.property("text").toString() + "|" +
             (item.isEnabled() ? "" : "off");
    for (const QQuickItem* child : item.childItems()) tell(*child, lines);
}

/// Panels that are dismissed, and what is left behind in the middle of a job.
class PanelTests : public WindowSupport::ScreenFixture {
protected:
    /// Every visible thing of the page with its text, and whether it can be used.
    std::string told(const QString& page) {
        driver_->resize(940, 680);
        QStringList lines;
        tell(driver_->at(page), lines);
        return lines.join("\n").toStdString();
    }

    void expectDismissedChangesNothing(const QString& button, const QString& prompt) {
        const QString page = button.section('.', 0, 0) + ".page";
        const std::string before = told(page);
        const auto stored = desktop_.stored.values;
        desktop_.answers.clear();
        desktop_.filesAnswers.clear();
        desktop_.messages.clear();
        driver_->press(button);
        EXPECT_EQ(desktop_.messages, QStringList{prompt});
        EXPECT_EQ(told(page), before) << prompt.toStdString();
        EXPECT_EQ(desktop_.stored.values, stored);
        EXPECT_TRUE(desktop_.revealed.empty());
    }

    void makeDamagedCard() {
        TestSupport::makeClip(madeFolder("card") / "GOOD.MOV", {.seconds = 0.2});
        const std::string whole = TestSupport::readFile(place("card/GOOD.MOV"));
        TestSupport::writeFile(place("card/LOST.MOV"), whole.substr(0, whole.rfind("moov") - 4));
    }
};

}  // namespace

TEST_F(PanelTests, Plan) {
    openMode("Plan");
    expectDismissedChangesNothing("plan.save", "Save Storage Plan to…");
}

TEST_F(PanelTests, Transcript) {
    openMode("Transcript");
    expectDismissedChangesNothing("transcript.input.choose", "Choose a clip to transcribe");
    expectDismissedChangesNothing("transcript.output.choose", "Choose output folder");
    driver_->press("transcript.mode.Separate files");
    expectDismissedChangesNothing("transcript.addFiles",
                                  "Add one audio file per speaker (e.g. ISO WAVs)");
}

TEST_F(PanelTests, Recover) {
    makeDamagedCard();
    TestSupport::writeFile(place("card.img"), TestSupport::noise(1 << 20) +
                                                  TestSupport::readFile(place("card/GOOD.MOV")));
    const QString card = "Choose the card or folder to scan";
    const QString image = "Choose the raw card image (.img / .dmg made with ddrescue)";
    const QString reference = "Pick a HEALTHY clip from the same camera/settings";
    const QString output = "Choose where to write recovered clips";
    openMode("Recover");
    expectDismissedChangesNothing("recover.card.choose", card);
    expectDismissedChangesNothing("recover.image.choose", image);
    choose("recover.card.choose", place("card"));
    choose("recover.image.choose", place("card.img"));
    driver_->press("recover.scanImage");
    waitUntilShown("recover.finding.0");
    for (int round = 0; round < 2; ++round) {
        expectDismissedChangesNothing("recover.card.choose", card);
        expectDismissedChangesNothing("recover.image.choose", image);
        expectDismissedChangesNothing("recover.carvePlaces.reference.choose", reference);
        expectDismissedChangesNothing("recover.carvePlaces.output.choose", output);
        choose("recover.carvePlaces.output.choose", madeFolder("out"));
    }
    driver_->press("recover.scan");
    waitUntilShown("recover.repairCard");
    expectDismissedChangesNothing("recover.places.reference.choose", reference);
    expectDismissedChangesNothing("recover.places.output.choose", output);
}

TEST_F(PanelTests, Sync) {
    TestSupport::makeShortDay(madeFolder("Day1"));
    const QString media = "Choose the day's media folder (camera clips + sound WAVs)";
    const QString output = "Choose where to write synced clips";
    openMode("Sync");
    expectDismissedChangesNothing("sync.media.choose", media);
    choose("sync.media.choose", place("Day1"));
    expectDismissedChangesNothing("sync.media.choose", media);
    driver_->press("sync.scan");
    waitUntilShown("sync.mux");
    expectDismissedChangesNothing("sync.output.choose", output);
    choose("sync.output.choose", madeFolder("Out"));
    expectDismissedChangesNothing("sync.output.choose", output);
    choose("sync.save", madeFolder("Reports"));
    waitUntilShown("sync.reportStatus");
    choose("sync.export", madeFolder("Editorial"));
    waitUntilShown("sync.exportStatus");
    desktop_.revealed.clear();
    expectDismissedChangesNothing("sync.save", "Save Sync Report to…");
    expectDismissedChangesNothing("sync.export", "Export FCPXML + ALE to…");
}

TEST_F(PanelTests, Transcode) {
    const TestSupport::FakeTool ffprobe("FFPROBE_PATH", "echo 1");
    const TestSupport::FakeTool ffmpeg("FFMPEG_PATH");
    TestSupport::writeFile(place("a.mov"), "picture");
    const QString clips = "Add clips to transcode";
    const QString output = "Choose output folder";
    openMode("Transcode");
    driver_->press("transcode.applyLUT");
    for (int round = 0; round < 2; ++round) {
        expectDismissedChangesNothing("transcode.add", clips);
        expectDismissedChangesNothing("transcode.output.choose", output);
        expectDismissedChangesNothing("transcode.lut.choose", "Choose a .cube LUT");
        addClips({place("a.mov")});
        choose("transcode.output.choose", madeFolder("out"));
        choose("transcode.lut.choose", place("look.cube"));
    }
    driver_->press("transcode.applyLUT");
    driver_->press("transcode.start");
    waitUntilShown("transcode.doneCard");
    expectDismissedChangesNothing("transcode.save", "Save Transcode Report to…");
}

TEST_F(PanelTests, NewScanDuringARepair_LeavesItGoingUnseen) {
    makeDamagedCard();
    TestSupport::makeClip(place("card/CUT.MP4"), {.seconds = 2,
                                                  .video = {"-c:v", "mpeg4"},
                                                  .audio = {"-c:a", "aac"},
                                                  .more = {"-movflags", "+faststart"}});
    std::filesystem::resize_file(place("card/CUT.MP4"),
                                 std::filesystem::file_size(place("card/CUT.MP4")) * 3 / 4);
    openMode("Recover");
    choose("recover.card.choose", place("card"));
    driver_->press("recover.scan");
    waitUntilShown("recover.repairCard");
    choose("recover.places.output.choose", madeFolder("out"));
    const TestSupport::FakeTool ffmpeg("FFMPEG_PATH", "while ! [ -e '" + place("go").native() +
                                                          "' ]; do sleep 0.01; done; exit 1");
    driver_->press("recover.repair");
    driver_->waitFor("ffmpeg", [&] { return !ffmpeg.calls().empty(); });
    EXPECT_TRUE(driver_->text("recover.repairing").startsWith("Repairing "));
    driver_->press("recover.new");
    EXPECT_TRUE(driver_->isShown("recover.setupCard"));
    EXPECT_EQ(driver_->text("recover.card.text"), "card");
    EXPECT_FALSE(driver_->isShown("recover.repairing"));
    driver_->press("recover.scan");
    waitUntilShown("recover.repairCard");
    EXPECT_FALSE(driver_->isShown("recover.outcomes"));
    EXPECT_EQ(driver_->text("recover.places.output.text"), "out");
    TestSupport::writeFile(place("go"), "");
    const keldo_app::InUse::Use erase{place("card"), keldo_app::InUse::Purpose::erasing};
    driver_->waitFor("the unseen repair",
                     [&] { return keldo_app::InUse::shared().objection(erase).isEmpty(); });
    QCoreApplication::processEvents();
    EXPECT_TRUE(std::filesystem::exists(place("out/LOST_recovered.mov")));
    EXPECT_FALSE(driver_->isShown("recover.outcomes")) << "those of the first go nowhere";
}
