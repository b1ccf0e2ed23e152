#include "WindowFixture.h"

using WindowSupport::WindowFixture;

namespace {
class RunningViewTests : public WindowFixture {
protected:
    /// A run onto a drive so slow that it can be looked at, once a file is done.
    void startSlowRun() {
        openWindow();
        chooseCard(card());
        addDrive(drive("SHUTTLE_01"));
        addDrive(faultyDrive({.delay = 150}));
        driver_->offload()->setReelName("A001");
        driver_->press("offload.start");
        driver_->waitFor("a file to be done", [&] {
            const auto& progress = driver_->offload()->progress();
            return progress && progress->filesCompleted >= 1 && progress->currentFile;
        });
    }
};
}  // namespace

TEST_F(RunningViewTests, ShowsPhaseFileCountsBytesAndDrives) {
    startSlowRun();
    const auto& progress = *driver_->offload()->progress();
    const int percent = static_cast<int>(progress.fractionComplete() * 100);
    EXPECT_EQ(driver_->text("offload.percent"), QString::number(percent) + "%");
    EXPECT_EQ(driver_->text("offload.current").toStdString(), *progress.currentFile);
    EXPECT_EQ(driver_->text("offload.files"),
              QString::number(progress.filesCompleted) + "/4 files");
    EXPECT_TRUE(driver_->text("offload.bytes").endsWith(" / 537.1 KB"));
    EXPECT_EQ(driver_->text("offload.drives"), "2 drives");
    const QString phase = driver_->text("offload.phase");
    EXPECT_TRUE(phase == "Copying to all drives…" || phase == "Verifying checksums…");
    EXPECT_FALSE(driver_->isShown("offload.choose"));
    EXPECT_FALSE(driver_->isShown("offload.new"));
    keepPictures("running");
    driver_->press("offload.cancel");
    driver_->waitForStage(Stage::finished);
}

TEST_F(RunningViewTests, Cancel_KeepsTheViewUntilTheEngineHasAnswered) {
    startSlowRun();
    driver_->press("offload.cancel");
    EXPECT_EQ(driver_->isShown("offload.cancel"), driver_->offload()->stage() == Stage::running);
    driver_->waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.error"), "Offload cancelled.");
    EXPECT_FALSE(driver_->isShown("offload.format"));
    EXPECT_FALSE(driver_->isShown("offload.verdict"));
    keepPictures("cancelled");
}

TEST_F(RunningViewTests, EveryPhaseHasItsWords) {
    setUpOffload();
    QStringList phases;
    QObject::connect(driver_->offload(), &keldo_app::OffloadViewModel::stageChanged,
                     driver_->offload(), [&] {
                         if (driver_->isShown("offload.phase"))
                             phases += driver_->text("offload.phase");
                     });
    QObject::connect(driver_->offload(), &keldo_app::OffloadViewModel::progressChanged,
                     driver_->offload(), [&] {
                         if (driver_->isShown("offload.phase"))
                             phases += driver_->text("offload.phase");
                     });
    runToEnd();
    const QStringList known{"Scanning source…", "Copying to all drives…", "Verifying checksums…",
                            "Writing hash report…", "Finishing…"};
    EXPECT_FALSE(phases.isEmpty());
    for (const QString& phase : phases) EXPECT_TRUE(known.contains(phase)) << phase.toStdString();
    EXPECT_EQ(phases.constFirst(), "Finishing…") << "before the first progress has come";
}
