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
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.delay = 3'000}));
    driver_->press("offload.start");
    driver_->waitFor("the first file", [&] { return driver_->isShown("offload.current"); });
    driver_->press("offload.cancel");
    EXPECT_EQ(driver_->offload()->stage(), Stage::running);
    EXPECT_TRUE(driver_->isEnabled("offload.cancel"));
    EXPECT_EQ(driver_->text("offload.phase"), "Copying to all drives…");
    driver_->waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.error"), "Offload cancelled.");
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
    driver_->press("offload.cancel");
    driver_->waitForStage(Stage::finished);
}

TEST_F(RunningViewTests, TheWordsFollowThePhase) {
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.delay = 20}));
    using Phase = ReelCore::OffloadProgress::Phase;
    std::map<Phase, QString> words;
    // Once the view has heard of the change as well.
    QObject::connect(
        driver_->offload(), &keldo_app::OffloadViewModel::changed, driver_->offload(),
        [&] {
            const auto& progress = driver_->offload()->progress();
            if (progress && driver_->isShown("offload.phase"))
                words[progress->phase] = driver_->text("offload.phase");
        },
        Qt::QueuedConnection);
    runToEnd();
    EXPECT_EQ(words[Phase::copying], "Copying to all drives…");
    EXPECT_EQ(words[Phase::verifying], "Verifying checksums…");
}
