#include "keldo-app/Transcode/TranscodeViewModel.h"

#include "../ViewModelFixture.h"
#include "Support/Clip.h"
#include "Support/FakeTool.h"

#include <sys/stat.h>

using keldo_app::TranscodeViewModel;
using ReelCore::TranscodePreset;
using ReelCore::URL;
using Failure = TranscodeViewModel::Failure;

namespace {

class TranscodeViewModelTests : public ViewModelFixture<TranscodeViewModel> {
protected:
    void add(const std::vector<URL>& clips) {
        desktop_.filesAnswers = {clips};
        model_.addInputs();
    }

    URL clip(const std::string& name, double seconds = 0.2) {
        TestSupport::makeClip(place(name), {.seconds = seconds});
        return place(name);
    }

    /// A batch of these clips into "out", as fast as there is.
    void setUp(const std::vector<URL>& clips) {
        add(clips);
        choose(&TranscodeViewModel::chooseOutput, madeFolder("out"));
        model_.setPresetIndex(0);
    }

    void runToEnd() {
        model_.start();
        EXPECT_EQ(model_.stage(), Stage::running);
        ASSERT_TRUE(waitForStage(Stage::finished));
    }
};

const QString cancelled = "Transcode cancelled.";

}  // namespace

TEST_F(TranscodeViewModelTests, Start_HasNothingChosenAndTheBestProRes) {
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_TRUE(model_.inputs().empty());
    EXPECT_EQ(model_.preset(), TranscodePreset::proRes422HQ);
    EXPECT_FALSE(model_.outputDir() || model_.lutURL());
    EXPECT_FALSE(model_.applyLUT());
    EXPECT_FALSE(model_.scaleLongEdge());
    EXPECT_FALSE(model_.canStart());
    EXPECT_EQ(model_.commandPreview(), "");
    model_.start();
    EXPECT_EQ(model_.stage(), Stage::setup);
}

TEST_F(TranscodeViewModelTests, Panels_HaveTheirPromptsAndDismissedChangeNothing) {
    add({place("a.mov")});
    choose(&TranscodeViewModel::chooseOutput, place("out"));
    choose(&TranscodeViewModel::chooseLUT, place("look.cube"));
    EXPECT_EQ(desktop_.messages, (QStringList{"Add clips to transcode", "Choose output folder",
                                              "Choose a .cube LUT"}));
    model_.setApplyLUT(false);
    model_.addInputs();
    model_.chooseOutput();
    model_.chooseLUT();
    EXPECT_EQ(model_.inputs(), std::vector<URL>{place("a.mov")});
    EXPECT_EQ(model_.outputDir(), place("out"));
    EXPECT_EQ(model_.lutURL(), place("look.cube"));
    EXPECT_FALSE(model_.applyLUT());
}

TEST_F(TranscodeViewModelTests, AddTheSameClipTwice_KeepsOne) {
    add({place("a.mov"), place("b.mov"), place("a.mov")});
    add({place("b.mov")});
    EXPECT_EQ(model_.inputs(), (std::vector<URL>{place("a.mov"), place("b.mov")}));
    model_.removeInput(0);
    EXPECT_EQ(model_.inputs(), std::vector<URL>{place("b.mov")});
    model_.removeInput(5);
    EXPECT_EQ(model_.inputs().size(), 1U);
}

TEST_F(TranscodeViewModelTests, LUT_ChosenIsAppliedAndStaysWhenItIsTurnedOff) {
    setUp({place("a.mov")});
    choose(&TranscodeViewModel::chooseLUT, place("look.cube"));
    EXPECT_TRUE(model_.applyLUT());
    EXPECT_TRUE(model_.commandPreview().contains("lut3d"));
    model_.setApplyLUT(false);
    EXPECT_FALSE(model_.commandPreview().contains("lut3d"));
    EXPECT_EQ(model_.lutURL(), place("look.cube"));
    model_.setApplyLUT(true);
    EXPECT_TRUE(model_.commandPreview().contains("lut3d"));
}

TEST_F(TranscodeViewModelTests, LUT_AppliedWithoutAFile_IsNone) {
    setUp({clip("a.mov")});
    model_.setApplyLUT(true);
    EXPECT_FALSE(model_.commandPreview().contains("lut3d"));
    runToEnd();
    EXPECT_EQ(model_.completed().size(), 1U);
}

TEST_F(TranscodeViewModelTests, Preview_IsWhatRunsButForTheOutput) {
    TestSupport::writeFile(place("a.mov"), "picture");
    TestSupport::writeFile(madeFolder("out") / "a.mov", "taken");
    add({place("a.mov")});
    choose(&TranscodeViewModel::chooseOutput, place("out"));
    ASSERT_TRUE(model_.setProperty("scaleLongEdge", 1920));
    const TestSupport::FakeTool ffprobe("FFPROBE_PATH", "echo 1");
    const TestSupport::FakeTool ffmpeg("FFMPEG_PATH");
    QStringList preview = model_.commandPreview().split(' ');
    EXPECT_EQ(preview.takeFirst(), "ffmpeg");
    runToEnd();
    QStringList ran;
    const auto calls = ffmpeg.calls();
    for (const auto& word : calls.at(0)) ran.append(QString::fromStdString(word));
    EXPECT_EQ(preview.takeLast(), QString::fromStdString(place("out/a.mov").native()));
    EXPECT_EQ(ran.takeLast(), QString::fromStdString(place("out/a 2.mov").native()));
    EXPECT_EQ(preview, ran.join(' ').split(' '));
}

TEST_F(TranscodeViewModelTests, Batch_WithABrokenAndAVanishedClip_GoesOn) {
    TestSupport::writeFile(place("broken.mov"), "no picture");
    setUp({clip("a.mov"), place("broken.mov"), place("gone.mov"), clip("b.mov")});
    runToEnd();
    EXPECT_EQ(model_.completed(), (std::vector<URL>{place("out/a.mov"), place("out/b.mov")}));
    ASSERT_EQ(model_.failures().size(), 2U);
    EXPECT_EQ(model_.failures()[0].name, "broken.mov");
    EXPECT_EQ(model_.failures()[1].name, "gone.mov");
    EXPECT_TRUE(model_.failures()[1].message.startsWith("Input not found: "));
    EXPECT_TRUE(model_.progress());
}

TEST_F(TranscodeViewModelTests, TakenName_ShowsTheNameThatWasAskedFor) {
    setUp({clip("a.mov")});
    TestSupport::writeFile(place("out/a.mov"), "taken");
    runToEnd();
    EXPECT_EQ(model_.completed(), std::vector<URL>{place("out/a.mov")});
    EXPECT_TRUE(std::filesystem::exists(place("out/a 2.mov")));
    EXPECT_EQ(TestSupport::readFile(place("out/a.mov")), "taken");
}

TEST_F(TranscodeViewModelTests, Rate_IsToldOnceItIsMeasuredAndTheEndThatNoPictureTellsOf) {
    TestSupport::writeFile(place("a.mov"), "picture");
    setUp({place("a.mov")});
    ASSERT_EQ(::mkfifo(place("go").c_str(), 0600), 0);
    const TestSupport::FakeTool ffprobe("FFPROBE_PATH", "echo 1");
    const TestSupport::FakeTool ffmpeg(
        "FFMPEG_PATH",
        "report() { printf 'fps=%s\\nout_time_us=%s\\nspeed=%s\\nprogress=continue\\n' \"$@\"; "
        "timeout 60 head -n 1 '" +
            place("go").native() + "'; }; report 0.00 500000 N/A; report 24.60 1000000 1.5x");
    model_.start();
    ASSERT_TRUE(waitFor([&] { return model_.progress().has_value(); }));
    EXPECT_EQ(model_.property("fps"), "");
    EXPECT_EQ(model_.property("speed"), "");
    EXPECT_EQ(model_.property("isClosing"), false);
    TestSupport::writeFile(place("go"), "\n");
    ASSERT_TRUE(waitFor([&] { return model_.property("fps") == "25 fps"; }));
    EXPECT_EQ(model_.property("isClosing"), true);
    TestSupport::writeFile(place("go"), "\n");
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(model_.property("isClosing"), false);
}

TEST_F(TranscodeViewModelTests, Cancel_FailsTheClipUnderWayAndRunsNoOther) {
    const TestSupport::FakeTool asSlowAsItPlays("FFMPEG_PATH", "exec ffmpeg -readrate 1 \"$@\"");
    setUp({clip("long.mov", 30), clip("b.mov")});
    model_.start();
    ASSERT_TRUE(waitFor([&] { return model_.progress().has_value(); }));
    EXPECT_FALSE(model_.isCancelling());
    model_.cancel();
    EXPECT_TRUE(model_.isCancelling());
    EXPECT_EQ(model_.stage(), Stage::running) << "until the clip is closed";
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(model_.failures(), (std::vector<Failure>{{"long.mov", cancelled}}));
    EXPECT_TRUE(model_.completed().empty());
    model_.reset();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_TRUE(model_.failures().empty());
    EXPECT_EQ(model_.inputs().size(), 2U);
    model_.removeInput(0);
    runToEnd();
    EXPECT_FALSE(model_.isCancelling());
    EXPECT_EQ(model_.completed().size(), 1U);
}

TEST_F(TranscodeViewModelTests, CancelTwice_EndsAClipThatDoesNotClose) {
    TestSupport::writeFile(place("a.mov"), "picture");
    setUp({place("a.mov")});
    const TestSupport::FakeTool ffprobe("FFPROBE_PATH", "echo 1");
    const TestSupport::FakeTool ffmpeg(
        "FFMPEG_PATH",
        "trap '' TERM; touch " + place("up").native() + "; while :; do sleep 0.05; done");
    model_.start();
    ASSERT_TRUE(waitFor([&] { return std::filesystem::exists(place("up")); }));
    model_.cancel();
    QTest::qWait(500);
    EXPECT_EQ(model_.stage(), Stage::running) << "ffmpeg may take its time";
    model_.cancel();
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(model_.failures(), (std::vector<Failure>{{"a.mov", cancelled}}));
}

TEST_F(TranscodeViewModelTests, ChangesDuringARun_DoNotTouchIt) {
    setUp({clip("a.mov"), clip("b.mov")});
    model_.start();
    choose(&TranscodeViewModel::chooseOutput, madeFolder("elsewhere"));
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(TestSupport::readTree(place("out")).size(), 2U);
    EXPECT_TRUE(TestSupport::readTree(place("elsewhere")).empty());
}

TEST_F(TranscodeViewModelTests, Report_IsSavedUnderItsPromptAndClearedByAReset) {
    setUp({clip("a.mov"), place("gone.mov")});
    runToEnd();
    choose(&TranscodeViewModel::saveReport, madeFolder("Reports"));
    ASSERT_TRUE(waitFor([&] { return !model_.reportStatus().isEmpty(); }));
    EXPECT_EQ(desktop_.messages.constLast(), "Save Transcode Report to…");
    EXPECT_EQ(model_.reportStatus(), "Saved 2 file(s) to Reports.");
    const auto reports = TestSupport::readTree(place("Reports"));
    const auto csv = std::ranges::find_if(
        reports, [](const auto& file) { return file.first.ends_with(".csv"); });
    ASSERT_NE(csv, reports.end());
    EXPECT_NE(csv->second.find("Input not found: "), std::string::npos);
    model_.reset();
    EXPECT_EQ(model_.reportStatus(), "");
}
