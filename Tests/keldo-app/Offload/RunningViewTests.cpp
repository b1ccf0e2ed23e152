#include "OffloadFixture.h"

using WindowSupport::OffloadFixture;

namespace {
class RunningViewTests : public OffloadFixture {
protected:
    /// A run onto a drive so slow that it can be looked at, once a file is done.
    void startSlowRun() {
        openWindow();
        chooseCard(card());
        addDrive(drive("SHUTTLE_01"));
        addDrive(faultyDrive({.delay = 150}));
        offload()->setReelName("A001");
        driver_->press("offload.start");
        driver_->waitFor("a file to be done", [&] {
            const auto& progress = offload()->progress();
            return progress && progress->filesCompleted >= 1 && progress->currentFile;
        });
    }
};
}  // namespace

TEST_F(RunningViewTests, ShowsPhaseFileCountsBytesAndDrives) {
    startSlowRun();
    const auto& progress = *offload()->progress();
    const int percent = static_cast<int>(progress.fractionComplete() * 100);
    EXPECT_EQ(driver_->text("offload.running.percent"), QString::number(percent) + "%");
    EXPECT_EQ(driver_->text("offload.running.current").toStdString(), *progress.currentFile);
    EXPECT_EQ(driver_->text("offload.files"),
              QString::number(progress.filesCompleted) + "/4 files");
    EXPECT_TRUE(driver_->text("offload.bytes").endsWith(" / 537.1 KB"));
    EXPECT_EQ(driver_->text("offload.drives"), "2 drives");
    const QString phase = driver_->text("offload.running.phase");
    EXPECT_TRUE(phase == "Copying to all drives…" || phase == "Verifying checksums…");
    EXPECT_FALSE(driver_->isShown("offload.source.choose"));
    EXPECT_FALSE(driver_->isShown("offload.new"));
    keepPictures("running");
    driver_->press("offload.running.cancel");
    waitForStage(Stage::finished);
}

TEST_F(RunningViewTests, Cancel_KeepsTheViewUntilTheEngineHasAnswered) {
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.delay = 3'000}));
    driver_->press("offload.start");
    driver_->waitFor("the first file", [&] { return driver_->isShown("offload.running.current"); });
    driver_->press("offload.running.cancel");
    EXPECT_EQ(offload()->stage(), Stage::running);
    EXPECT_TRUE(driver_->isEnabled("offload.running.cancel"));
    EXPECT_EQ(driver_->text("offload.running.phase"), "Copying to all drives…");
    waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.failed.message"), "Offload cancelled.");
    EXPECT_FALSE(driver_->isShown("offload.format"));
    EXPECT_FALSE(driver_->isShown("offload.verdict"));
    keepPictures("cancelled");
}

TEST_F(RunningViewTests, EveryPhaseHasItsWords) {
    startSlowRun();
    const auto wordsFor = [&](const QVariant& phase) {
        QVariant words;
        QMetaObject::invokeMethod(driver_->find("offload.running"), "phaseText",
                                  Q_RETURN_ARG(QVariant, words), Q_ARG(QVariant, phase));
        return words.toString();
    };
    EXPECT_EQ(wordsFor("scanning"), "Scanning source…");
    EXPECT_EQ(wordsFor("copying"), "Copying to all drives…");
    EXPECT_EQ(wordsFor("verifying"), "Verifying checksums…");
    EXPECT_EQ(wordsFor("writingReport"), "Writing hash report…");
    EXPECT_EQ(wordsFor("done"), "Finishing…");
    EXPECT_EQ(wordsFor(QVariant()), "Finishing…") << "before the first progress has come";
    driver_->press("offload.running.cancel");
    waitForStage(Stage::finished);
}

TEST_F(RunningViewTests, TheWordsFollowThePhase) {
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.delay = 20}));
    using Phase = ReelCore::OffloadProgress::Phase;
    std::map<Phase, QString> words;
    // Once the view has heard of the change as well.
    QObject::connect(
        offload(), &keldo_app::OffloadViewModel::changed, offload(),
        [&] {
            const auto& progress = offload()->progress();
            if (progress && driver_->isShown("offload.running.phase"))
                words[progress->phase] = driver_->text("offload.running.phase");
        },
        Qt::QueuedConnection);
    runToEnd();
    EXPECT_EQ(words[Phase::copying], "Copying to all drives…");
    EXPECT_EQ(words[Phase::verifying], "Verifying checksums…");
}
