#include "Support/Clip.h"
#include "Support/FakeTool.h"
#include "Window/WindowFixture.h"
#include "keldo-app/Transcode/TranscodeViewModel.h"

using ReelCore::URL;
using WindowSupport::WindowFixture;

namespace {

class TranscodeScreenTests : public WindowFixture {
protected:
    void openTranscode() {
        openWindow();
        driver_->press("mode.Transcode");
    }

    void choose(const char* button, const URL& answer) {
        desktop_.answers = {answer};
        driver_->press(button);
    }

    void add(const std::vector<URL>& clips) {
        desktop_.filesAnswers = {clips};
        driver_->press("transcode.add");
    }

    URL clip(const char* name, double seconds = 0.2) {
        TestSupport::makeClip(place(name), {.seconds = seconds});
        return place(name);
    }

    URL place(const char* name) const { return folder_.path() / name; }

    URL madeFolder(const char* name) const {
        std::filesystem::create_directories(place(name));
        return place(name);
    }

    double bottomOf(const char* name) const {
        const QQuickItem& item = driver_->at(name);
        return item.mapToScene({0, item.height()}).y();
    }

    void waitForEnd() {
        driver_->waitFor(
            "the end", [&] { return driver_->isShown("transcode.doneCard"); }, 120'000);
    }
};

}  // namespace

TEST_F(TranscodeScreenTests, Setup_HasItsTextsAndSaysWhatIsMissing) {
    openTranscode();
    EXPECT_EQ(driver_->text("transcode.noclips"), "Add one or more clips to transcode.");
    EXPECT_EQ(driver_->text("transcode.clipsCard"), "Clips");
    EXPECT_EQ(driver_->text("transcode.outputCard"), "Output Format");
    EXPECT_EQ(driver_->text("transcode.lookCard"), "Look (LUT)");
    EXPECT_EQ(driver_->text("transcode.output.text"), "No folder selected");
    EXPECT_EQ(driver_->text("transcode.start"), "Transcode 0 clips");
    EXPECT_EQ(driver_->text("transcode.startRow.needs"), "No clips yet.");
    EXPECT_FALSE(driver_->isShown("transcode.previewCard"));
    EXPECT_FALSE(driver_->isShown("transcode.ffmpegCard"));
    EXPECT_FALSE(driver_->isShown("transcode.lut"));
    const double top = driver_->at("transcode.start").mapToScene({0, 0}).y();
    EXPECT_EQ(top - bottomOf("transcode.lookCard"), 20) << "right below a page that is short";
    keepPictures("transcode");
}

TEST_F(TranscodeScreenTests, Batch_WithALookASizeAndTwoFailures) {
    TestSupport::writeFile(place("broken.mov"), "no picture");
    TestSupport::writeFile(place("look.cube"),
                           "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n"
                           "1 0 1\n0 1 1\n1 1 1\n");
    openTranscode();
    add({clip("a.mov"), place("broken.mov"), place("gone.mov")});
    choose("transcode.output.choose", madeFolder("out"));
    EXPECT_EQ(driver_->text("transcode.start"), "Transcode 3 clips");
    driver_->press("transcode.applyLUT");
    EXPECT_EQ(driver_->text("transcode.lut.text"), "No .cube selected");
    choose("transcode.lut.choose", place("look.cube"));
    driver_->focus("transcode.size");
    driver_->key(Qt::Key_Down);
    driver_->key(Qt::Key_Down);
    EXPECT_TRUE(driver_->text("transcode.preview").startsWith("ffmpeg "));
    EXPECT_TRUE(driver_->text("transcode.preview").contains("1920"));
    driver_->resize(940, 680);
    EXPECT_GT(driver_->at("transcode.page.scroll").property("contentHeight").toDouble(), 680);
    EXPECT_LE(bottomOf("transcode.start"), 680) << "in view while the page is longer";
    keepPictures("transcode-ready");
    driver_->press("transcode.start");
    waitForEnd();
    EXPECT_EQ(driver_->text("transcode.doneCard"), "Completed with Errors");
    EXPECT_EQ(driver_->text("transcode.summary"), "1 of 3 clips → ProRes 422 HQ");
    EXPECT_EQ(driver_->text("transcode.completed.0.title"), "a.mov");
    driver_->waitFor("the failures",
                     [&] { return driver_->isShown("transcode.failures.1.title"); });
    EXPECT_EQ(driver_->text("transcode.failures.0.title"), "broken.mov");
    EXPECT_TRUE(driver_->text("transcode.failures.1.detail").startsWith("Input not found: "));
    keepPictures("transcode-errors");
    choose("transcode.save", madeFolder("Reports"));
    driver_->waitFor("the report", [&] {
        return driver_->text("transcode.reportStatus") == "Saved 2 file(s) to Reports.";
    });
    driver_->press("transcode.new");
    EXPECT_TRUE(driver_->isShown("transcode.clip.2"));
}

TEST_F(TranscodeScreenTests, Running_MovesAndIsCancelled) {
    const TestSupport::FakeTool asSlowAsItPlays("FFMPEG_PATH", "exec ffmpeg -readrate 1 \"$@\"");
    openTranscode();
    add({clip("long.mov", 40)});
    choose("transcode.output.choose", madeFolder("out"));
    EXPECT_EQ(driver_->text("transcode.start"), "Transcode 1 clip");
    driver_->press("transcode.start");
    driver_->waitFor("progress", [&] { return driver_->isShown("transcode.speed"); });
    EXPECT_EQ(driver_->text("transcode.running.phase"), "Clip 1 of 1: long.mov");
    EXPECT_EQ(driver_->text("transcode.done"), "0 done");
    EXPECT_EQ(driver_->text("transcode.running.cancel"), "Cancel");
    keepPictures("transcode-running");
    driver_->press("transcode.running.cancel");
    waitForEnd();
    EXPECT_EQ(driver_->text("transcode.failures.0.detail"), "Transcode cancelled.");
    EXPECT_EQ(driver_->text("transcode.summary"), "0 of 1 clips → ProRes 422 HQ");
}

TEST_F(TranscodeScreenTests, Return_StartsAndRemoveTakesItsClip) {
    openTranscode();
    add({clip("a.mov"), clip("b.mov")});
    choose("transcode.output.choose", madeFolder("out"));
    driver_->press("transcode.remove.0");
    EXPECT_EQ(driver_->text("transcode.clip.0.title"), "b.mov");
    driver_->key(Qt::Key_Return);
    waitForEnd();
    EXPECT_EQ(driver_->text("transcode.doneCard"), "Transcode Complete");
}
