#include "keldo-app/Transcript/TranscriptViewModel.h"

#include "../ViewModelFixture.h"
#include "ReelCore/Platform/FileSystem.h"
#include "TranscriptTools.h"

#include <memory>
#include <vector>

using keldo_app::InUse;
using keldo_app::TranscriptViewModel;
using ReelCore::URL;
using WindowSupport::TranscriptTools;
using Mode = TranscriptViewModel::SpeakerMode;

namespace {

class TranscriptViewModelTests : protected TranscriptTools,
                                 public ViewModelFixture<TranscriptViewModel> {
protected:
    URL clip(const std::string& name, int channels = 2, const std::string& timecode = {}) {
        TestSupport::ClipRecipe recipe{.seconds = 2, .timecode = timecode};
        recipe.channels = channels == 0 ? std::vector<int>{} : std::vector<int>{channels};
        TestSupport::makeClip(place(name), recipe);
        return place(name);
    }

    void chooseClip(const URL& url) {
        choose(&TranscriptViewModel::chooseInput, url);
        EXPECT_EQ(model_.stage(), Stage::probing);
        ASSERT_TRUE(waitForStage(Stage::setup));
    }

    void addFiles(const std::vector<URL>& files) {
        desktop_.filesAnswers = {files};
        model_.addFiles();
    }

    /// All that a run needs; looks into the picture, which take long, are left out.
    void setUp(const URL& input) {
        chooseClip(input);
        choose(&TranscriptViewModel::chooseOutput, madeFolder("out"));
        model_.setNumSpeakers(2);
        model_.setReadSlate(false);
        model_.setAppearanceHints(false);
    }

    void runToEnd() {
        model_.start();
        EXPECT_EQ(model_.stage(), Stage::running);
        ASSERT_TRUE(waitForStage(Stage::finished));
    }

    void waitUntilHearing() {
        ASSERT_TRUE(waitFor([&] { return model_.progressPhase() == "transcribing"; }));
    }

    void save() {
        model_.applyEdits();
        EXPECT_EQ(model_.renameStatus(), "");
        ASSERT_TRUE(waitFor([&] { return !model_.isSaving(); }));
    }

    template <class Row>
    static void set(const keldo_app::Rows<Row>& rows, int row, const char* field,
                    const QVariant& value) {
        auto& model = const_cast<keldo_app::Rows<Row>&>(rows);
        EXPECT_TRUE(model.setData(model.index(row), value, model.roleNames().key(field)));
    }

    void rename(int speaker, const QString& name) {
        set(model_.editableSpeakers(), speaker, "name", name);
    }

    template <class Row>
    static QStringList column(const keldo_app::Rows<Row>& rows, QString Row::*field) {
        QStringList values;
        for (const auto& row : rows.all()) values.append(row.*field);
        return values;
    }
    QStringList buckets() const {
        return column(model_.editedSegments(), &keldo_app::LineEdit::bucket);
    }
    std::vector<std::string> speakersOfLines() const {
        std::vector<std::string> speakers;
        for (const auto& line : model_.transcript()->segments) speakers.push_back(line.speaker);
        return speakers;
    }

    URL document() const { return place("out/clip_transcript.docx"); }
};

const QString cancelled = "Transcription cancelled.";

}  // namespace

TEST_F(TranscriptViewModelTests, Start_HasWhatIsInstalledAndNothingChosen) {
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_FALSE(model_.input() || model_.outputDir() || model_.docxURL());
    EXPECT_EQ(model_.channelCount(), 0);
    EXPECT_EQ(model_.detectedTC(), "");
    EXPECT_EQ(model_.speakers().count() + model_.fileTracks().count(), 0);
    EXPECT_EQ(model_.speakerMode(), Mode::diarize);
    EXPECT_EQ(model_.numSpeakers(), 0);
    EXPECT_TRUE(model_.readSlate() && model_.appearanceHints());
    EXPECT_EQ(model_.models(), QStringList("tiny.en"));
    EXPECT_EQ(model_.selectedModel(), models() / "ggml-tiny.en.bin");
    EXPECT_EQ(model_.modelIndex(), 0);
    EXPECT_EQ(model_.downloadingModel() + model_.errorMessage() + model_.renameStatus(), "");
    EXPECT_EQ(model_.progressPhase() + model_.progressSpeaker(), "");
    EXPECT_FALSE(model_.transcript());
    EXPECT_TRUE(model_.whisperReady && model_.ffmpegReady && model_.available &&
                model_.diarizeReady);
    EXPECT_EQ(model_.modelsFolder, QString::fromStdString(models().native()));
    EXPECT_FALSE(model_.canStart());
    model_.start();
    EXPECT_EQ(model_.stage(), Stage::setup);
}

TEST_F(TranscriptViewModelTests, ModelSource_IsEncryptedAndPublic) {
    EXPECT_EQ(model_.modelSource,
              "https://huggingface.co/ggerganov/whisper.cpp/resolve/main/ggml-");
}

TEST_F(TranscriptViewModelTests, ToolsThatAreMissing_AreMissedForAsLongAsTheScreenLives) {
    std::filesystem::remove(models() / "ggml-tiny.en.bin");
    std::filesystem::remove(models() / "diarization/embedding.onnx");
    const TranscriptViewModel bare;
    EXPECT_FALSE(bare.whisperReady || bare.available || bare.diarizeReady);
    EXPECT_TRUE(bare.ffmpegReady);
    EXPECT_FALSE(bare.selectedModel());
    EXPECT_EQ(bare.modelIndex(), -1);
    TestSupport::writeFile(models() / "ggml-tiny.en.bin", "model");
    EXPECT_FALSE(bare.whisperReady);
    EXPECT_TRUE(TranscriptViewModel().whisperReady);
}

TEST_F(TranscriptViewModelTests, Panels_HaveTheirPromptsAndDismissedChangeNothing) {
    chooseClip(clip("clip.mov"));
    addFiles({place("a.wav")});
    choose(&TranscriptViewModel::chooseOutput, place("out"));
    EXPECT_EQ(desktop_.messages, (QStringList{"Choose a clip to transcribe",
                                              "Add one audio file per speaker (e.g. ISO WAVs)",
                                              "Choose output folder"}));
    model_.chooseInput();
    model_.addFiles();
    model_.chooseOutput();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_EQ(model_.input(), place("clip.mov"));
    EXPECT_EQ(model_.outputDir(), place("out"));
    EXPECT_EQ(model_.fileTracks().count(), 1);
}

TEST_F(TranscriptViewModelTests, AnotherClip_RebuildsTheChannelsAndLosesTheirNames) {
    chooseClip(clip("clip.mov", 2, "01:00:00:00"));
    EXPECT_EQ(model_.channelCount(), 2);
    EXPECT_EQ(model_.detectedTC(), "01:00:00:00");
    EXPECT_EQ(column(model_.speakers(), &keldo_app::SpeakerRow::name),
              (QStringList{"Speaker 1", "Speaker 2"}));
    EXPECT_EQ(model_.speakers()[1].channel, 1);
    EXPECT_TRUE(model_.speakers()[0].isEnabled && model_.speakers()[1].isEnabled);
    set(model_.speakers(), 0, "name", "Ann");
    chooseClip(clip("other.mov", 1));
    EXPECT_EQ(column(model_.speakers(), &keldo_app::SpeakerRow::name), QStringList("Speaker 1"));
    EXPECT_EQ(model_.detectedTC(), "");
}

TEST_F(TranscriptViewModelTests, ClipWithoutChannels_CanNotBeTakenByChannel) {
    setUp(clip("clip.mov", 0));
    EXPECT_EQ(model_.channelCount(), 0);
    EXPECT_TRUE(model_.canStart()) << "by voice";
    model_.setSpeakerMode(Mode::iso);
    EXPECT_FALSE(model_.canStart());
}

TEST_F(TranscriptViewModelTests, FailedProbe_IsAClipWithoutChannelsAndTimecode) {
    chooseClip(clip("clip.mov", 2, "01:00:00:00"));
    const TestSupport::FakeTool broken("FFPROBE_PATH", "exit 1");
    chooseClip(place("gone.mov"));
    EXPECT_EQ(model_.channelCount(), 0);
    EXPECT_EQ(model_.detectedTC(), "");
    EXPECT_EQ(model_.speakers().count(), 0);
}

TEST_F(TranscriptViewModelTests, SecondClipWhileTheFirstIsProbed_IsTheOneThatCounts) {
    choose(&TranscriptViewModel::chooseInput, clip("clip.mov", 2));
    chooseClip(clip("other.mov", 1));
    EXPECT_EQ(model_.channelCount(), 1);
}

TEST_F(TranscriptViewModelTests, AllChannelsOff_CanNotStart) {
    setUp(clip("clip.mov"));
    model_.setSpeakerMode(Mode::iso);
    EXPECT_TRUE(model_.canStart());
    set(model_.speakers(), 0, "isEnabled", false);
    EXPECT_TRUE(model_.canStart());
    int changes = 0;
    QObject::connect(&model_, &TranscriptViewModel::changed, &model_, [&] { ++changes; });
    set(model_.speakers(), 1, "isEnabled", false);
    EXPECT_FALSE(model_.canStart());
    EXPECT_EQ(changes, 1);
}

TEST_F(TranscriptViewModelTests, EachMode_NeedsItsOwn) {
    setUp(clip("clip.mov"));
    model_.setSpeakerMode(Mode::files);
    EXPECT_FALSE(model_.canStart());
    addFiles({place("a.wav")});
    EXPECT_TRUE(model_.canStart());
    model_.removeFile(0);
    EXPECT_FALSE(model_.canStart());
    std::filesystem::remove(models() / "diarization/embedding.onnx");
    TranscriptViewModel mute;
    EXPECT_FALSE(mute.hasVoices());
    mute.setSpeakerMode(Mode::files);
    EXPECT_FALSE(mute.hasVoices());
}

TEST_F(TranscriptViewModelTests, SameFileTwice_IsOneEntry) {
    addFiles({place("Ann ISO.wav"), place("b.wav"), place("Ann ISO.wav")});
    addFiles({place("b.wav")});
    EXPECT_EQ(column(model_.fileTracks(), &keldo_app::FileTrack::name),
              (QStringList{"Ann ISO", "b"}));
    EXPECT_EQ(model_.fileTracks()[0].url, place("Ann ISO.wav"));
    model_.removeFile(0);
    model_.removeFile(7);
    EXPECT_EQ(column(model_.fileTracks(), &keldo_app::FileTrack::name), QStringList("b"));
}

TEST_F(TranscriptViewModelTests, Run_ByVoice_GivesLinesSpeakersAndTheDocument) {
    setUp(clip("clip.mov", 2, "01:00:00:00"));
    runToEnd();
    ASSERT_EQ(model_.errorMessage(), "");
    EXPECT_EQ(model_.docxURL(), document());
    EXPECT_EQ(column(model_.editableSpeakers(), &keldo_app::SpeakerEdit::original),
              (QStringList{"Speaker 1", "Speaker 2"}));
    EXPECT_EQ(column(model_.editableSpeakers(), &keldo_app::SpeakerEdit::name),
              (QStringList{"Speaker 1", "Speaker 2"}));
    EXPECT_EQ(buckets(), (QStringList{"Speaker 1", "Sound", "Speaker 2"}));
    EXPECT_EQ(column(model_.editedSegments(), &keldo_app::LineEdit::timecode),
              (QStringList{"01:00:00:00", "01:00:00:10", "01:00:01:00"}));
    EXPECT_EQ(column(model_.editedSegments(), &keldo_app::LineEdit::text),
              (QStringList{"Hello there.", "(door slams)", "Who is it?"}));
    EXPECT_EQ(model_.assignableBuckets(),
              (QStringList{"Speaker 1", "Speaker 2", "Sound", "♪ Music"}));
    EXPECT_EQ(model_.property("startTimecode"), "01:00:00:00");
    EXPECT_EQ(model_.slateLine(), "");
    EXPECT_NE(documentXML(document()).find("Who is it?"), std::string::npos);
    model_.openDocx();
    model_.revealDocx();
    EXPECT_EQ(desktop_.opened, std::vector<URL>{document()});
    EXPECT_EQ(desktop_.revealed, std::vector<URL>{document()});
}

TEST_F(TranscriptViewModelTests, NumberOfPeople_IsPassedUnlessItIsAutomatic) {
    setUp(clip("clip.mov"));
    model_.setNumSpeakers(3);
    runToEnd();
    EXPECT_EQ(python->calls().at(0).back(), "3");
    model_.reset();
    model_.setNumSpeakers(0);
    runToEnd();
    EXPECT_EQ(python->calls().at(1).back(), "-1") << "nobody is in this picture";
}

TEST_F(TranscriptViewModelTests, Run_ByChannel_TakesTheChannelsThatAreOnUnderTheirNames) {
    setUp(clip("clip.mov", 3));
    model_.setSpeakerMode(Mode::iso);
    set(model_.speakers(), 0, "isEnabled", false);
    set(model_.speakers(), 2, "name", "Ann");
    runToEnd();
    ASSERT_EQ(model_.errorMessage(), "");
    EXPECT_EQ(column(model_.editableSpeakers(), &keldo_app::SpeakerEdit::original),
              (QStringList{"Ann", "Speaker 2"}));
    EXPECT_EQ(whisper->calls().size(), 2U);
    EXPECT_TRUE(python->calls().empty());
}

TEST_F(TranscriptViewModelTests, Run_ByFile_TakesEachFileUnderItsName) {
    setUp(clip("clip.mov"));
    model_.setSpeakerMode(Mode::files);
    addFiles({clip("one.mov"), clip("two.mov")});
    set(model_.fileTracks(), 1, "name", "Bob");
    runToEnd();
    ASSERT_EQ(model_.errorMessage(), "");
    EXPECT_EQ(column(model_.editableSpeakers(), &keldo_app::SpeakerEdit::original),
              (QStringList{"Bob", "one"}));
}

TEST_F(TranscriptViewModelTests, ChosenModel_IsTheOneThatHears) {
    TestSupport::writeFile(models() / "ggml-small.en.bin", "a larger model");
    TranscriptViewModel model;
    EXPECT_EQ(model.models(), (QStringList{"small.en", "tiny.en"}));
    model.setModelIndex(1);
    EXPECT_EQ(model.selectedModel(), models() / "ggml-tiny.en.bin");
    model.setModelIndex(0);
    model.setModelIndex(2);
    EXPECT_EQ(model.selectedModel(), models() / "ggml-small.en.bin");
    setUp(clip("clip.mov"));
    runToEnd();
    EXPECT_EQ(whisper->calls().at(0).at(1), (models() / "ggml-tiny.en.bin").native());
}

TEST_F(TranscriptViewModelTests, ModelOfTheEnvironment_IsSelectedButNotListed) {
    TestSupport::writeFile(place("ggml-own.bin"), "model");
    const TestSupport::EnvironmentVariable own("KELDO_WHISPER_MODEL",
                                               place("ggml-own.bin").native());
    const TranscriptViewModel model;
    EXPECT_EQ(model.selectedModel(), place("ggml-own.bin"));
    EXPECT_EQ(model.modelIndex(), -1);
}

TEST_F(TranscriptViewModelTests, Hints_BelongToSpeakersAndMoveWithTheirNames) {
    setUp(clip("clip.mov", 2, "01:00:00:00"));
    model_.setAppearanceHints(true);
    runToEnd();
    ASSERT_EQ(model_.editableSpeakers().count(), 2);
    EXPECT_EQ(model_.editableSpeakers()[0].note, "no person on camera at this moment");
    EXPECT_EQ(model_.editableSpeakers()[0].atTimecode, "01:00:00:05");
    EXPECT_EQ(model_.property("hasHints"), true);
    rename(1, "Bob");
    save();
    const auto& hints = model_.transcript()->appearances;
    ASSERT_EQ(hints.size(), 2U);
    EXPECT_EQ(hints.at("Bob").speaker, "Bob");
    EXPECT_EQ(hints.at("Bob").atTimecode, "01:00:01:05");
    EXPECT_EQ(hints.count("Speaker 2"), 0U);
}

TEST_F(TranscriptViewModelTests, BlankName_KeepsTheSpeakers) {
    setUp(clip("clip.mov"));
    runToEnd();
    rename(0, "   ");
    EXPECT_EQ(model_.displayName("Speaker 1"), "Speaker 1");
    rename(1, "  Bob ");
    EXPECT_EQ(model_.displayName("Speaker 2"), "Bob");
    EXPECT_EQ(model_.displayName("Sound"), "Sound");
    EXPECT_EQ(model_.property("displayNames").toMap(),
              (QVariantMap{{"Speaker 1", "Speaker 1"}, {"Speaker 2", "Bob"}}));
    save();
    EXPECT_EQ(speakersOfLines(), (std::vector<std::string>{"Speaker 1", "Sound", "Bob"}));
}

TEST_F(TranscriptViewModelTests, LineMovedToSound_IsLabelledSoInTheDocument) {
    setUp(clip("clip.mov"));
    runToEnd();
    model_.reassign(2, "Sound");
    model_.reassign(9, "Sound");
    EXPECT_EQ(buckets(), (QStringList{"Speaker 1", "Sound", "Sound"}));
    EXPECT_EQ(speakersOfLines().back(), "Speaker 2") << "until it is saved";
    save();
    EXPECT_EQ(model_.renameStatus(), "Applied edits and re-saved the .docx.");
    EXPECT_EQ(speakersOfLines(), (std::vector<std::string>{"Speaker 1", "Sound", "Sound"}));
    EXPECT_EQ(documentXML(document()).find("Speaker 2"), std::string::npos);
    EXPECT_EQ(model_.assignableBuckets().size(), 4) << "there is a way back";
}

TEST_F(TranscriptViewModelTests, TwoSpeakersOfOneName_MergeInTheDocumentAndStayApartOnScreen) {
    setUp(clip("clip.mov"));
    runToEnd();
    rename(0, "Ann");
    rename(1, "Ann");
    save();
    EXPECT_EQ(speakersOfLines(), (std::vector<std::string>{"Ann", "Sound", "Ann"}));
    EXPECT_EQ(buckets(), (QStringList{"Speaker 1", "Sound", "Speaker 2"}));
    rename(1, "Bob");
    save();
    EXPECT_EQ(speakersOfLines(), (std::vector<std::string>{"Ann", "Sound", "Bob"}));
    const std::string xml = documentXML(document());
    EXPECT_NE(xml.find("Ann"), std::string::npos);
    EXPECT_NE(xml.find("Bob"), std::string::npos);
}

TEST_F(TranscriptViewModelTests, EditsDuringASave_AreSavedAfterIt) {
    setUp(clip("clip.mov"));
    runToEnd();
    rename(0, "Ann");
    model_.applyEdits();
    rename(1, "Bob");
    model_.applyEdits();
    EXPECT_TRUE(model_.isSaving());
    ASSERT_TRUE(waitFor([&] { return speakersOfLines().back() == "Bob"; }));
    EXPECT_EQ(model_.renameStatus(), "Applied edits and re-saved the .docx.");
    EXPECT_FALSE(model_.isSaving());
    EXPECT_NE(documentXML(document()).find("Bob"), std::string::npos);
}

TEST_F(TranscriptViewModelTests, EarlierDocument_IsNamedBeforeItIsReplaced) {
    setUp(clip("clip.mov"));
    EXPECT_EQ(model_.earlierDocument(), "");
    runToEnd();
    model_.reset();
    EXPECT_EQ(model_.earlierDocument(), "clip_transcript.docx");
    EXPECT_TRUE(model_.canStart());
}

TEST_F(TranscriptViewModelTests, FailedResave_SaysSoAndKeepsTheEdits) {
    setUp(clip("clip.mov"));
    runToEnd();
    rename(0, "Ann");
    std::filesystem::remove_all(place("out"));
    save();
    EXPECT_EQ(model_.renameStatus(), "Edits applied; .docx rewrite failed.");
    EXPECT_EQ(speakersOfLines(), (std::vector<std::string>{"Ann", "Sound", "Speaker 2"}));
    madeFolder("out");
    save();
    EXPECT_EQ(model_.renameStatus(), "Applied edits and re-saved the .docx.");
    EXPECT_NE(documentXML(document()).find("Ann"), std::string::npos);
}

TEST_F(TranscriptViewModelTests, SaveWithoutATranscript_DoesNothing) {
    model_.applyEdits();
    model_.openDocx();
    model_.revealDocx();
    EXPECT_FALSE(model_.isSaving());
    EXPECT_TRUE(desktop_.opened.empty() && desktop_.revealed.empty());
}

TEST_F(TranscriptViewModelTests, Cancel_EndsAsAFailureAndTheNextRunIsNotCancelled) {
    hearForEver();
    setUp(clip("clip.mov"));
    model_.start();
    waitUntilHearing();
    EXPECT_EQ(model_.progressSpeaker(), "");
    model_.cancel();
    EXPECT_TRUE(model_.isCancelling());
    EXPECT_EQ(model_.stage(), Stage::running) << "until whisper has ended";
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(model_.errorMessage(), cancelled);
    EXPECT_FALSE(model_.docxURL());
    hear(line(0, 400, "Hello."));
    model_.reset();
    EXPECT_EQ(model_.errorMessage(), "");
    runToEnd();
    EXPECT_EQ(model_.errorMessage(), "");
    EXPECT_FALSE(model_.isCancelling());
}

TEST_F(TranscriptViewModelTests, Progress_NamesTheTrack) {
    hearForEver();
    setUp(clip("clip.mov"));
    model_.setSpeakerMode(Mode::iso);
    set(model_.speakers(), 0, "name", "Ann");
    model_.start();
    waitUntilHearing();
    EXPECT_EQ(model_.progressSpeaker(), "Ann");
    model_.reset();
    EXPECT_EQ(model_.stage(), Stage::running);
    model_.cancel();
    ASSERT_TRUE(waitForStage(Stage::finished));
}

TEST_F(TranscriptViewModelTests, FailedRun_SaysWhatTheToolSaid) {
    hear("", "echo no such model >&2; exit 3");
    setUp(clip("clip.mov"));
    runToEnd();
    EXPECT_TRUE(model_.errorMessage().contains("no such model"))
        << model_.errorMessage().toStdString();
    EXPECT_FALSE(model_.transcript());
    EXPECT_EQ(model_.editedSegments().count(), 0);
}

TEST_F(TranscriptViewModelTests, Reset_KeepsWhatWasChosenAndDropsTheResult) {
    setUp(clip("clip.mov"));
    model_.setAppearanceHints(true);
    runToEnd();
    save();
    model_.reset();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_FALSE(model_.transcript() || model_.docxURL());
    EXPECT_EQ(model_.renameStatus(), "");
    EXPECT_EQ(model_.editableSpeakers().count() + model_.editedSegments().count(), 0);
    EXPECT_EQ(model_.property("hasHints"), false);
    EXPECT_EQ(model_.input(), place("clip.mov"));
    EXPECT_EQ(model_.outputDir(), place("out"));
    EXPECT_EQ(model_.speakers().count(), 2);
    EXPECT_TRUE(model_.canStart());
}

TEST_F(TranscriptViewModelTests, UnseenRun_GoesOnAndNoOtherWritesItsDocumentMeanwhile) {
    const URL go = place("go");
    hear(line(0, 400, "Hello there."), "while [ ! -e '" + go.native() + "' ]; do sleep 0.02; done");
    setUp(clip("clip.mov"));
    {
        TranscriptViewModel unseen;
        unseen.desktop = &desktop_;
        desktop_.answers = {place("clip.mov"), place("out")};
        unseen.chooseInput();
        unseen.chooseOutput();
        unseen.setNumSpeakers(2);
        unseen.setReadSlate(false);
        unseen.setAppearanceHints(false);
        ASSERT_TRUE(waitFor([&] { return unseen.canStart(); }));
        unseen.start();
    }
    EXPECT_FALSE(model_.canStart());
    EXPECT_EQ(model_.objection(),
              "“clip_transcript.docx” is being written to. Wait until that has ended.");
    model_.start();
    EXPECT_EQ(model_.stage(), Stage::setup);
    choose(&TranscriptViewModel::chooseOutput, madeFolder("elsewhere"));
    EXPECT_TRUE(model_.canStart());
    choose(&TranscriptViewModel::chooseOutput, place("out"));
    TestSupport::writeFile(go, "");
    ASSERT_TRUE(waitFor([&] { return model_.canStart(); }));
    EXPECT_NE(documentXML(document()).find("Hello there."), std::string::npos);
    runToEnd();
    EXPECT_EQ(model_.errorMessage(), "");
}

TEST_F(TranscriptViewModelTests, ClipOnACardUnderErase_WaitsForItsEnd) {
    setUp(clip("clip.mov"));
    {
        const auto erase = InUse::shared().take({{folder_.path(), InUse::Purpose::erasing}});
        EXPECT_FALSE(model_.canStart());
        EXPECT_TRUE(model_.objection().contains("is being erased"));
    }
    EXPECT_TRUE(model_.canStart());
}

TEST(TranscriptSpeakers, AreDistinctInOrderOfFirstAppearanceWithoutWhatIsNoSpeech) {
    ReelCore::Transcript transcript;
    for (const char* speaker : {"Bob", "♪ Music", "Ann", "Bob", "Sound", ""}) {
        transcript.segments.push_back({speaker, 0, 1, "text"});
    }
    EXPECT_EQ(TranscriptViewModel::distinctSpeakers(transcript),
              (std::vector<std::string>{"Bob", "Ann", ""}));
    EXPECT_TRUE(TranscriptViewModel::distinctSpeakers({}).empty());
}
