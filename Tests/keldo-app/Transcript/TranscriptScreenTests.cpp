#include "../Shell/ScreenFixture.h"
#include "TranscriptTools.h"
#include "keldo-app/Transcript/TranscriptViewModel.h"

#include <QTest>
#include <optional>

using keldo_app::TranscriptViewModel;
using ReelCore::URL;

namespace {

class TranscriptScreenTests : protected WindowSupport::TranscriptTools,
                              public WindowSupport::ScreenFixture {
protected:
    void open() { openMode("Transcript"); }

    TranscriptViewModel& model() const {
        return *driver_->window().findChild<TranscriptViewModel*>("transcript");
    }

    URL clip(const char* name, TestSupport::ClipRecipe recipe = {}) {
        recipe.seconds = 2;
        recipe.timecode = "01:00:00:00";
        TestSupport::makeClip(place(name), recipe);
        return place(name);
    }

    /// All that a run needs. Nobody is counted, which takes long.
    void setUp(const URL& input) {
        open();
        choose("transcript.input.choose", input);
        choose("transcript.output.choose", madeFolder("out"));
        model().setNumSpeakers(2);
    }
    void leaveOutThePicture() {
        model().setReadSlate(false);
        model().setAppearanceHints(false);
    }

    void runToEnd() {
        driver_->press("transcript.start");
        waitUntilShown("transcript.ready");
        driver_->waitFor("the focus", [&] { return driver_->focused() == "transcript.ready"; });
    }

    std::string document() { return documentXML(place("out/clip_transcript.docx")); }

    void expectText(const char* name, const char* text) {
        EXPECT_EQ(driver_->text(name).toStdString(), text) << name;
    }
};

}  // namespace

TEST_F(TranscriptScreenTests, Setup_HasItsTexts) {
    open();
    expectText("transcript.clipCard", "Clip");
    expectText("transcript.input.text", "No clip selected");
    expectText("transcript.input.choose", "Choose");
    expectText("transcript.local", "Audio stays on this Mac — Whisper runs locally.");
    expectText("transcript.speakersCard", "Speakers");
    expectText(
        "transcript.modeNote",
        "Counts the people on camera, separates their voices, and labels them Speaker 1…N in "
        "order of appearance — automatically. Best when there's one mixed track instead of a "
        "mic per person.");
    expectText("transcript.people", "Auto (count faces)");
    expectText("transcript.peopleNote",
               "Auto counts distinct faces in the footage to decide how many speakers there are. "
               "Override only if it gets the count wrong.");
    EXPECT_FALSE(driver_->isShown("transcript.diarization"));
    expectText("transcript.analysisCard", "Analysis (on-device)");
    expectText("transcript.analysisNote",
               "All analysis runs locally with Apple Vision — nothing leaves this Mac.");
    expectText("transcript.readSlate", "Read the slate");
    expectText("transcript.slateNote",
               "OCR the clapperboard from the clip head — Scene / Take / Roll / Director.");
    expectText("transcript.hints", "Appearance hints per speaker");
    expectText("transcript.hintsNote",
               "Sample a frame while each speaker talks and note the person on camera (e.g. “in "
               "blue”) for you to confirm.");
    expectText("transcript.modelCard", "Speech Model");
    expectText("transcript.model", "tiny.en");
    expectText("transcript.download", "Download more…");
    expectText(
        "transcript.modelNote",
        "Bigger models are more accurate on noisy production audio but slower. base.en is the "
        "fast default.");
    expectText("transcript.outputCard", "Output");
    expectText("transcript.output.choose", "Choose");
    expectText("transcript.outputNote",
               "Produces a two-column Word document: time-of-day timecode + speaker on the left, "
               "dialogue on the right.");
    expectText("transcript.start", "Create Transcript");
    expectText("transcript.startRow.needs", "No clip yet.");
    EXPECT_FALSE(driver_->isShown("transcript.needs"));
    keepPictures("transcript");
    driver_->wheel("transcript.input.text", 100);
    keepPictures("transcript-below");
}

TEST_F(TranscriptScreenTests, SetupNeeded_SaysWhatIsMissingAndHowItComesHere) {
    std::filesystem::remove_all(models());
    open();
    expectText("transcript.needs", "Setup Needed");
    expectText("transcript.needsWhisper",
               "Whisper not ready — `brew install whisper-cpp` and place a model (e.g. "
               "ggml-base.en.bin) in ~/Library/Application Support/Keldo/models.");
    EXPECT_FALSE(driver_->isShown("transcript.needsFFmpeg"));
    EXPECT_TRUE(driver_->text("transcript.whisperHere").contains(model().modelsFolder));
    expectText("transcript.install", "Scripts/install-transcript");
    expectText("transcript.noModels", "No models installed.");
    expectText("transcript.diarization.0",
               "Diarization not set up — install with `python3 -m pip install --user sherpa-onnx "
               "numpy` and add the diarization models. (Slate/appearance still work.)");
    EXPECT_TRUE(driver_->text("transcript.diarizationHere").contains("Scripts/install-transcript"));
    expectText("transcript.startRow.needs", "See “Setup Needed” above.");
    keepPictures("transcript-setup-needed");
    TestSupport::writeFile(models() / "ggml-tiny.en.bin", "model");
    openMode("Plan");
    openMode("Transcript");
    EXPECT_FALSE(driver_->isShown("transcript.needs"));
}

TEST_F(TranscriptScreenTests, Clip_ShowsItsChannelsAndTimecode) {
    open();
    choose("transcript.input.choose", clip("clip.mov", {.channels = {3}}));
    waitUntilShown("transcript.channels");
    expectText("transcript.channels", "3 ISO channels");
    expectText("transcript.startTC", "Start TC 01:00:00:00");
    choose("transcript.input.choose", place("gone.mov"));
    waitUntilShown("transcript.channels");
    expectText("transcript.channels", "0 ISO channels");
    expectText("transcript.startTC", "Start TC none");
    const TestSupport::FakeTool slow("FFPROBE_PATH", "sleep 1; exec ffprobe \"$@\"");
    choose("transcript.input.choose", clip("mono.mov", {.channels = {1}}));
    waitUntilShown("transcript.probing");
    EXPECT_TRUE(driver_->isShown("transcript.outputCard"));
    EXPECT_FALSE(driver_->isShown("transcript.channels"));
    keepPictures("transcript-probing");
    waitUntilShown("transcript.channels");
    expectText("transcript.channels", "1 ISO channel");
}

TEST_F(TranscriptScreenTests, NumberOfPeople_OverridesTheCount) {
    open();
    driver_->focus("transcript.people");
    driver_->key(Qt::Key_Down);
    expectText("transcript.peopleNote", "Override: group everyone into exactly 1 speaker.");
    driver_->key(Qt::Key_Down);
    expectText("transcript.peopleNote", "Override: group everyone into exactly 2 speakers.");
    EXPECT_EQ(driver_->at("transcript.people").property("labels").toStringList().size(), 13);
}

TEST_F(TranscriptScreenTests, Channels_AreNamedAndSwitched) {
    setUp(clip("clip.mov", {.channels = {4}}));
    waitUntilShown("transcript.channels");
    driver_->press("transcript.mode.ISO channels");
    expectText("transcript.modeNote",
               "Pick a clip with multiple audio channels (one mic per person), then name each "
               "below.");
    EXPECT_FALSE(driver_->isShown("transcript.people"));
    expectText("transcript.channel.3", "Ch 4");
    driver_->focus("transcript.channelName.1");
    driver_->key(Qt::Key_A, Qt::ControlModifier);
    driver_->type("Ann");
    EXPECT_EQ(driver_->focused(), "transcript.channelName.1");
    EXPECT_EQ(model().speakers()[1].name, "Ann");
    driver_->press("transcript.channel.0");
    EXPECT_FALSE(model().speakers()[0].isEnabled);
    keepPictures("transcript-channels");
    for (const char* channel : {"1", "2", "3"}) {
        driver_->press(QString("transcript.channel.") + channel);
    }
    expectText("transcript.startRow.needs", "No channel is on.");
    EXPECT_FALSE(driver_->isEnabled("transcript.start"));
}

TEST_F(TranscriptScreenTests, Files_AreAddedNamedAndRemoved) {
    setUp(clip("clip.mov"));
    driver_->press("transcript.mode.Separate files");
    expectText(
        "transcript.modeNote",
        "Add one audio file per person (e.g. ISO WAVs from the sound mixer). Each file = one "
        "speaker.");
    driver_->waitFor("the clip", [&] {
        return driver_->text("transcript.startRow.needs") == "No audio files yet.";
    });
    desktop_.filesAnswers = {{place("Ann ISO.wav"), place(std::string(120, 'b') + ".wav")}};
    expectText("transcript.addFiles", "Add Audio Files…");
    driver_->press("transcript.addFiles");
    expectText("transcript.file.0.title", "Ann ISO.wav");
    expectText("transcript.fileName.0", "Ann ISO");
    keepPictures("transcript-files");
    driver_->press("transcript.removeFile.0");
    EXPECT_EQ(model().fileTracks().count(), 1);
    expectText("transcript.startRow.needs", "");
}

TEST_F(TranscriptScreenTests, Running_SaysWhatItDoesAndIsCancelled) {
    hearForEver();
    setUp(clip("clip.mov"));
    leaveOutThePicture();
    driver_->press("transcript.mode.ISO channels");
    driver_->press("transcript.start");
    const auto phase = [&] { return driver_->at("transcript.phase").property("text").toString(); };
    driver_->waitFor("whisper", [&] { return phase() == "Transcribing Speaker 1…"; });
    expectText("transcript.running", "Transcribing");
    expectText("transcript.runningNote", "Audio stays on this Mac — Whisper runs locally.");
    EXPECT_FALSE(driver_->isShown("transcript.start"));
    EXPECT_FALSE(driver_->isShown("transcript.new"));
    keepPictures("transcript-running");
    expectText("transcript.cancel", "Cancel");
    driver_->press("transcript.cancel");
    expectText("transcript.cancel", "Cancelling…");
    waitUntilShown("transcript.failed");
    expectText("transcript.failed", "Transcription Failed");
    expectText("transcript.failed.message", "Transcription cancelled.");
    EXPECT_FALSE(driver_->isShown("transcript.previewCard"));
    keepPictures("transcript-cancelled");
    driver_->press("transcript.new");
    waitUntilShown("transcript.start");
    EXPECT_TRUE(driver_->isEnabled("transcript.start")) << "all that was chosen stays";
}

TEST_F(TranscriptScreenTests, Failure_IsSelectable) {
    hear("",
         "for i in 1 2 3 4 5 6; do echo \"whisper_init: line $i of what went wrong\" >&2; done; "
         "exit 3");
    setUp(clip("clip.mov"));
    leaveOutThePicture();
    driver_->press("transcript.start");
    waitUntilShown("transcript.failed");
    EXPECT_TRUE(driver_->text("transcript.failed.message").contains("line 6"));
    EXPECT_TRUE(driver_->at("transcript.failed.message").property("selectByMouse").toBool());
    keepPictures("transcript-failed");
}

TEST_F(TranscriptScreenTests, PhaseLabels) {
    open();
    const auto label = [&](const char* phase, const char* speaker) {
        QVariant result;
        QMetaObject::invokeMethod(&driver_->at("transcript.page"), "phaseLabel",
                                  Q_RETURN_ARG(QVariant, result), Q_ARG(QVariant, phase),
                                  Q_ARG(QVariant, speaker));
        return result.toString().toStdString();
    };
    EXPECT_EQ(label("probing", ""), "Reading timecode & tracks…");
    EXPECT_EQ(label("countingPeople", ""), "Counting people on camera…");
    EXPECT_EQ(label("diarizing", ""), "Separating speakers by voice…");
    EXPECT_EQ(label("extracting", "Ann"), "Extracting Ann…");
    EXPECT_EQ(label("extracting", ""), "Extracting …");
    EXPECT_EQ(label("transcribing", "Ann"), "Transcribing Ann…");
    EXPECT_EQ(label("transcribing", ""), "Transcribing …");
    EXPECT_EQ(label("merging", ""), "Merging speakers by time…");
    EXPECT_EQ(label("writing", ""), "Writing Word document…");
    for (const char* other : {"slate", "appearance", "done", ""}) {
        EXPECT_EQ(label(other, "Ann"), "Working…") << other;
    }
}

TEST_F(TranscriptScreenTests, Result_IsCorrectedAndSaved) {
    setUp(clip("clip.mov", {.size = "640x360",
                            .more = {"-vf",
                                     "drawbox=color=white:t=fill,drawtext=text='SCENE 12A  TAKE "
                                     "3':fontsize=48:x=40:y=140:fontcolor=black"}}));
    runToEnd();
    expectText("transcript.ready", "Transcript Ready");
    expectText("transcript.lineCount", "3 lines · start 01:00:00:00");
    expectText("transcript.open", "Open .docx");
    expectText("transcript.reveal", "Reveal in Finder");
    expectText("transcript.slateCard", "Slate");
    EXPECT_TRUE(driver_->text("transcript.slate").contains("Scene 12A"))
        << driver_->text("transcript.slate").toStdString();
    expectText("transcript.hintsCard", "Who's talking? (confirm these)");
    expectText("transcript.hintName.1", "Speaker 2");
    expectText("transcript.hintNote.1", "— no person on camera at this moment");
    expectText("transcript.hintTC.1", "@ 01:00:01:05");
    expectText("transcript.hintsVerify",
               "A hint from the frame while each speaker talks — verify against the picture.");
    expectText("transcript.namesCard", "Speaker Names");
    expectText("transcript.namesNote",
               "Rename the auto-detected speakers, and/or reassign individual lines in the Preview "
               "below (click a line's speaker). Then save — every line and the .docx update.");
    expectText("transcript.original.0", "Speaker 1");
    expectText("transcript.note.0", "no person on camera at this moment");
    expectText("transcript.previewCard", "Preview — click a speaker to reassign the line");
    expectText("transcript.lineTC.2", "01:00:01:00");
    expectText("transcript.lineSpeaker.1", "Sound");
    expectText("transcript.lineText.2", "Who is it?");
    expectText("transcript.save", "Update & Re-save .docx");
    keepPictures("transcript-ready");

    driver_->focus("transcript.name.1");
    driver_->key(Qt::Key_A, Qt::ControlModifier);
    driver_->type("Bob");
    EXPECT_EQ(driver_->focused(), "transcript.name.1");
    expectText("transcript.lineSpeaker.2", "Bob");
    expectText("transcript.hintName.1", "Bob");
    driver_->press("transcript.lineSpeaker.0");
    waitUntilShown("choice.3");
    EXPECT_EQ(driver_->text("choice.1"), "Bob");
    EXPECT_EQ(driver_->text("choice.3"), "♪ Music");
    keepPictures("transcript-menu");
    driver_->press("choice.1");
    expectText("transcript.lineSpeaker.0", "Bob");
    EXPECT_NE(document().find("Speaker 1"), std::string::npos) << "until it is saved";
    driver_->press("transcript.save");
    driver_->waitFor("the save", [&] {
        return driver_->text("transcript.renameStatus") == "Applied edits and re-saved the .docx.";
    });
    EXPECT_EQ(document().find("Speaker 1"), std::string::npos);
    EXPECT_NE(document().find("Bob"), std::string::npos);
    keepPictures("transcript-saved");
    std::filesystem::remove_all(place("out"));
    driver_->press("transcript.save");
    driver_->waitFor("the failure", [&] {
        return driver_->text("transcript.renameStatus") == "Edits applied; .docx rewrite failed.";
    });
    expectText("transcript.lineSpeaker.0", "Bob");
    driver_->press("transcript.new");
    expectText("transcript.output.text", place("out").c_str());
}

TEST_F(TranscriptScreenTests, NothingHeard_LeavesOnlyTheDocument) {
    hear("");
    setUp(clip("clip.mov"));
    leaveOutThePicture();
    runToEnd();
    expectText("transcript.lineCount", "0 lines · start 01:00:00:00");
    for (const char* card : {"slateCard", "hintsCard", "namesCard", "lines"}) {
        EXPECT_FALSE(driver_->isShown(QString("transcript.") + card)) << card;
    }
    expectText("transcript.nothing", "Nothing was heard in this clip.");
    keepPictures("transcript-nothing");
}

TEST_F(TranscriptScreenTests, LinesByKeyboard_AreReachedAndReassigned) {
    setUp(clip("clip.mov"));
    leaveOutThePicture();
    runToEnd();
    EXPECT_EQ(driver_->tabRound().join(" ").toStdString(),
              "transcript.open transcript.reveal transcript.name.0 transcript.name.1 "
              "transcript.save transcript.lineSpeaker.0 mode transcript.new");
    driver_->focus("transcript.save");
    driver_->key(Qt::Key_Tab);
    ASSERT_EQ(driver_->focused(), "transcript.lineSpeaker.0");
    driver_->key(Qt::Key_Down);
    EXPECT_EQ(driver_->focused(), "transcript.lineSpeaker.1");
    driver_->key(Qt::Key_Down);
    driver_->key(Qt::Key_Down);
    EXPECT_EQ(driver_->focused(), "transcript.lineSpeaker.2");
    driver_->key(Qt::Key_Return);
    waitUntilShown("choice.0");
    driver_->key(Qt::Key_Home);
    driver_->key(Qt::Key_Return);
    expectText("transcript.lineSpeaker.2", "Speaker 1");
    EXPECT_EQ(driver_->focused(), "transcript.lineSpeaker.2");
    driver_->key(Qt::Key_Space);
    waitUntilShown("choice.0");
    driver_->key(Qt::Key_Escape);
    expectText("transcript.lineSpeaker.2", "Speaker 1");
    driver_->key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(driver_->focused(), "transcript.save");
    EXPECT_EQ(driver_->accessible("transcript.lineSpeaker.0").role, "ButtonMenu");
    EXPECT_EQ(driver_->accessible("transcript.lineSpeaker.0").description,
              "01:00:00:00 Hello there.");
}

TEST_F(TranscriptScreenTests, Return_StartsAndSaves) {
    setUp(clip("clip.mov"));
    leaveOutThePicture();
    driver_->waitFor("the clip", [&] { return driver_->isEnabled("transcript.start"); });
    driver_->key(Qt::Key_Return);
    driver_->waitFor("the focus", [&] { return driver_->focused() == "transcript.ready"; });
    driver_->focus("transcript.name.0");
    driver_->type(" Ann");
    driver_->key(Qt::Key_Return);
    driver_->waitFor("the save", [&] {
        return driver_->text("transcript.renameStatus") == "Applied edits and re-saved the .docx.";
    });
    EXPECT_EQ(driver_->focused(), "transcript.name.0");
}

TEST_F(TranscriptScreenTests, UnseenRun_IsWhatTheNextScreenWaitsFor) {
    hearForEver();
    setUp(clip("clip.mov"));
    leaveOutThePicture();
    driver_->press("transcript.start");
    driver_->waitFor("whisper", [&] { return whisper->calls().size() == 1; });
    openMode("Plan");
    setUp(place("clip.mov"));
    waitUntilShown("transcript.objection.0");
    expectText("transcript.objection.0",
               "“clip_transcript.docx” is being written to. Wait until that has ended.");
    EXPECT_FALSE(driver_->isEnabled("transcript.start"));
    keepPictures("transcript-in-use");
}

TEST_F(TranscriptScreenTests, Download_SaysWhichAndOffersThree) {
    open();
    model().modelSource = "https://localhost:1/ggml-";
    driver_->press("transcript.download");
    waitUntilShown("choice.2");
    expectText("choice.0", "base.en  (~142 MB, fast)");
    expectText("choice.1", "small.en  (~466 MB, more accurate)");
    expectText("choice.2", "medium.en  (~1.5 GB, best)");
    keepPictures("transcript-download-menu");
    driver_->press("choice.1");
    EXPECT_EQ(driver_->at("transcript.downloading").property("text"), "Downloading small.en…");
    driver_->press("transcript.modelsFolder");
    EXPECT_EQ(desktop_.revealed, std::vector<URL>{models()});
}
