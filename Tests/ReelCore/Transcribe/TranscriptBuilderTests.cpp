#include "ReelCore/Transcribe/TranscribeError.h"
#include "TranscriptBuilderFixture.h"

#include <algorithm>

#include <gmock/gmock.h>

namespace ReelCore {

namespace {

using Lines = std::vector<TranscriptSegment>;
using Reports = std::vector<std::string>;
using Turns = std::vector<DiarizedTurn>;
using testing::HasSubstr;
using testing::MatchesRegex;
using TestSupport::FakeTool;

class TranscriptBuilderTests : public TranscriptBuilderFixture {
protected:
    /// Two tracks from the two channels of one clip.
    TranscribeRequest twoTracks() const {
        return request(clip("A001.mov"), {{"Ann", 0, {}}, {"Bob", 1, {}}});
    }
};

std::string speakersOf(const Lines& lines) {
    std::string speakers;
    for (const TranscriptSegment& line : lines) speakers += "[" + line.speaker + "]";
    return speakers;
}

}  // namespace

TEST_F(TranscriptBuilderTests, Run_WithoutTracksAndVoices_FailsBeforeAnythingElse) {
    TranscribeRequest nothing = request(place("missing.mov"));
    nothing.diarize.reset();

    EXPECT_EQ(failure(nothing), "Add at least one speaker track.");
    EXPECT_EQ(reports_, Reports());
    EXPECT_FALSE(FileSystem::exists(output()));
}

TEST_F(TranscriptBuilderTests, Run_WithoutTheInput_SaysSo) {
    EXPECT_EQ(failure(request(place("missing.mov"))),
              "Input not found: " + place("missing.mov").native());
    EXPECT_EQ(reports_, Reports());
}

TEST_F(TranscriptBuilderTests, Run_WithoutWhisper_AsksForTheToolBeforeTheModel) {
    const TestSupport::EnvironmentVariable none("KELDO_WHISPER_CLI", "/no/such/tool");
    const TestSupport::EnvironmentVariable noModel("KELDO_WHISPER_MODEL", "/no/such/model");
    if (WhisperLocator().whisperCLI()) GTEST_SKIP() << "this machine has a whisper-cli";

    EXPECT_EQ(failure(request(clip("A001.mov"))),
              "whisper-cli not found. Install it (e.g. `brew install whisper-cpp`).");
    EXPECT_EQ(reports_, Reports());
    EXPECT_TRUE(isNothingLeft());
}

TEST_F(TranscriptBuilderTests, Run_WithAnOverrideButNoModelFound_FailsAllTheSame) {
    const TestSupport::EnvironmentVariable none("KELDO_WHISPER_MODEL", "/no/such/model");
    TranscribeRequest job = request(clip("A001.mov"));
    job.modelOverride = place("ggml-tiny.en.bin");

    EXPECT_EQ(failure(job),
              "No Whisper model found. Download one (e.g. ggml-base.en.bin) into "
              "~/Library/Application Support/keldobay/models or set KELDO_WHISPER_MODEL.");
    EXPECT_EQ(reports_, Reports());
}

TEST_F(TranscriptBuilderTests, Run_ByTracks_ReportsEachStepOfEachTrackInOrder) {
    TranscribeRequest job = twoTracks();
    job.readSlate = true;
    job.appearanceHints = true;

    const auto [transcript, document] = run(job);

    EXPECT_EQ(reports_,
              (Reports{"probing 0/2", "extracting Ann 0/2", "transcribing Ann 0/2",
                       "extracting Bob 1/2", "transcribing Bob 1/2", "merging 2/2", "slate 2/2",
                       "appearance Ann 2/2", "appearance Bob 2/2", "writing 2/2", "done 2/2"}));
    EXPECT_EQ(transcript.segments, (Lines{{"Ann", 0.0, 0.4, "hello"}, {"Bob", 0.0, 0.4, "hello"}}));
    EXPECT_EQ(transcript.sourceName, "A001.mov");
    EXPECT_EQ(transcript.frameRate, FrameRate::fps25);
    EXPECT_EQ(document, output() / "A001_transcript.docx");
    EXPECT_TRUE(FileSystem::exists(document));
    EXPECT_TRUE(isNothingLeft());
}

TEST_F(TranscriptBuilderTests, Run_ByTracks_HearsEachOnesOwnSoundInAFolderOfItsOwn) {
    run(twoTracks());

    const auto calls = whisper_->calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_THAT(calls[0][3], MatchesRegex(temporary().native() +
                                          "/keldo-transcribe-[0-9A-F-]{36}/spk_Ann\\.wav"));
    EXPECT_THAT(calls[1][3], MatchesRegex(temporary().native() +
                                          "/keldo-transcribe-[0-9A-F-]{36}/spk_Bob\\.wav"));
}

TEST_F(TranscriptBuilderTests, Run_ByFiles_HearsTheFilesAndNotTheClip) {
    const URL sound = clip("Ann's mic.wav", {.seconds = 0.3, .video = {"-vn"}, .channels = {1}});
    TranscribeRequest job = request(clip("A001.mov"), {{"Ann", {}, sound}});
    whisper_.emplace("KELDO_WHISPER_CLI", "stat --format=%s \"$4\" >'" + place("size").native() +
                                              "'\necho '{\"transcription\":[]}' >\"$9.json\"");

    run(job);

    const double seconds = (std::stod(TestSupport::readFile(place("size"))) - 44) / 32000;
    EXPECT_NEAR(seconds, 0.3, 0.01);
}

TEST_F(TranscriptBuilderTests, Run_ByVoice_CountsPeopleFirstAndKeepsTheToolsOrder) {
    say(R"({"transcription":[
        {"offsets":{"from":200,"to":400},"text":"second"},
        {"offsets":{"from":0,"to":200},"text":"first"},
        {"offsets":{"from":0,"to":200},"text":"[MUSIC PLAYING]"}]})");
    speakInTurns("0.0 0.2 7\n0.2 0.4 3\n");
    TranscribeRequest job = request(clip("A001.mov"));
    job.diarize->numSpeakers.reset();
    job.appearanceHints = true;
    job.readSlate = true;

    const auto [transcript, document] = run(job);

    EXPECT_EQ(reports_,
              (Reports{"probing 0/0", "countingPeople 0/0", "diarizing 0/0", "transcribing 0/0",
                       "merging 2/2", "slate 2/2", "appearance Speaker 1 2/2",
                       "appearance Speaker 2 2/2", "writing 2/2", "done 2/2"}));
    EXPECT_EQ(transcript.segments, (Lines{{"Speaker 2", 0.2, 0.4, "second"},
                                          {"Speaker 1", 0.0, 0.2, "first"},
                                          {"♪ Music", 0.0, 0.2, "[MUSIC PLAYING]"}}));
    EXPECT_TRUE(isNothingLeft());
}

TEST_F(TranscriptBuilderTests, Run_ByVoiceWithNobodyInThePicture_LetsTheThresholdDecide) {
    TranscribeRequest job = request(clip("A001.mov"));
    job.diarize = DiarizationOptions{{}, 0.7};

    run(job);

    ASSERT_EQ(python_->calls().size(), 1u);
    EXPECT_EQ(python_->calls()[0][4], "0.7");
    EXPECT_EQ(python_->calls()[0][5], "-1");
}

TEST_F(TranscriptBuilderTests, Run_ByVoiceWithANumberGiven_CountsNobody) {
    TranscribeRequest job = request(clip("A001.mov"));
    job.diarize->numSpeakers = 3;

    run(job);

    EXPECT_EQ(python_->calls()[0][5], "3");
    EXPECT_FALSE(hasReported("countingPeople 0/0"));
}

TEST_F(TranscriptBuilderTests, Run_ByVoiceWithTracks_OnlyCountsThem) {
    TranscribeRequest job = twoTracks();
    job.diarize = DiarizationOptions{.numSpeakers = 1};
    speakInTurns("0.0 0.4 0\n");

    const auto [transcript, document] = run(job);

    EXPECT_EQ(reports_.front(), "probing 0/2");
    EXPECT_EQ(speakersOf(transcript.segments), "[Speaker 1]");
}

TEST_F(TranscriptBuilderTests, Run_ByVoiceWithoutTurns_LeavesLinesWithoutSpeakerAndAsksForNoHints) {
    TranscribeRequest job = request(clip("A001.mov"));
    job.appearanceHints = true;

    const auto [transcript, document] = run(job);

    EXPECT_EQ(transcript.segments, (Lines{{"", 0.0, 0.4, "hello"}}));
    EXPECT_EQ(reports_, (Reports{"probing 0/0", "diarizing 0/0", "transcribing 0/0", "merging 0/0",
                                 "writing 0/0", "done 0/0"}));
}

TEST_F(TranscriptBuilderTests, Run_CueInATrack_LeavesItsSpeaker) {
    say(R"json({"transcription":[{"offsets":{"from":0,"to":100},"text":"(door slams)"}]})json");

    const auto [transcript, document] = run(twoTracks());

    EXPECT_EQ(speakersOf(transcript.segments), "[Sound][Sound]");
}

TEST_F(TranscriptBuilderTests, Run_TwoTracksOfOneName_AreBothHeardAndBothAskedFor) {
    TranscribeRequest job = twoTracks();
    job.speakers[1].name = "Ann";
    job.appearanceHints = true;

    const auto [transcript, document] = run(job);

    EXPECT_EQ(speakersOf(transcript.segments), "[Ann][Ann]");
    EXPECT_EQ(std::ranges::count(reports_, "appearance Ann 2/2"), 2);
}

TEST_F(TranscriptBuilderTests, Run_CancelledBeforeASecondTrack_EndsWithoutADocument) {
    isCancelled_ = [this] { return hasReported("transcribing Ann 0/2"); };

    EXPECT_EQ(failure(twoTracks()), "Transcription cancelled.");
    EXPECT_EQ(reports_.back(), "transcribing Ann 0/2");
    EXPECT_FALSE(FileSystem::exists(output()));
    EXPECT_TRUE(isNothingLeft());
}

TEST_F(TranscriptBuilderTests, Run_CancelledWhileVoicesAreToldApart_EndsBehindThem) {
    speakInTurns("0.0 0.4 0\n");
    isCancelled_ = [this] { return hasReported("diarizing 0/0"); };

    EXPECT_EQ(failure(request(clip("A001.mov"))), "Transcription cancelled.");
    EXPECT_EQ(python_->calls().size(), 1u);
    EXPECT_EQ(whisper_->calls().size(), 0u);
    EXPECT_TRUE(isNothingLeft());
}

TEST_F(TranscriptBuilderTests, Run_CancelledAtAnyReportBehindTheLastLine_StillWrites) {
    for (const std::string report : {"merging 2/2", "slate 2/2", "appearance Ann 2/2"}) {
        TranscribeRequest job = twoTracks();
        job.readSlate = true;
        job.appearanceHints = true;
        reports_.clear();
        isCancelled_ = [&] { return hasReported(report); };

        const auto [transcript, document] = run(job);

        EXPECT_EQ(transcript.appearances.size(), 0u) << report;
        EXPECT_FALSE(hasReported("appearance Bob 2/2")) << report;
        EXPECT_EQ(reports_.back(), "done 2/2") << report;
        EXPECT_TRUE(FileSystem::exists(document)) << report;
        EXPECT_TRUE(isNothingLeft());
    }
}

TEST_F(TranscriptBuilderTests, Run_WhateverStepFails_LeavesNothingBehind) {
    {
        TranscribeRequest job = twoTracks();
        job.speakers[1].fileURL = place("missing.wav");
        EXPECT_THAT(failure(job), HasSubstr("Audio extraction failed: "));
        EXPECT_TRUE(isNothingLeft());
    }
    {
        const FakeTool broken("KELDO_WHISPER_CLI", "echo 'out of memory' >&2\nexit 3");
        EXPECT_EQ(failure(twoTracks()), "whisper-cli failed (3):\nout of memory");
        EXPECT_TRUE(isNothingLeft());
    }
    {
        const FakeTool silent("KELDO_WHISPER_CLI");
        EXPECT_THAT(failure(twoTracks()), HasSubstr("spk_Ann.json"));
        EXPECT_TRUE(isNothingLeft());
    }
    {
        const FakeTool broken("KELDO_PYTHON", "echo 'no voices' >&2\nexit 4");
        EXPECT_EQ(failure(request(clip("A001.mov"))), "Diarization failed (4):\nno voices\n");
        EXPECT_TRUE(isNothingLeft());
    }
    EXPECT_FALSE(FileSystem::exists(output()));
}

TEST_F(TranscriptBuilderTests, Run_OutputThatIsNoFolder_IsTold) {
    TestSupport::writeFile(output(), "a file");

    EXPECT_THAT(failure(twoTracks()), HasSubstr(output().native()));
    EXPECT_EQ(reports_.back(), "writing 2/2");
    EXPECT_EQ(TestSupport::readFile(output()), "a file");
    EXPECT_TRUE(isNothingLeft());
}

TEST_F(TranscriptBuilderTests, Run_ForTheDocumentsName_TakesOneExtensionOffAndReplaces) {
    TestSupport::writeFile(output() / "Take 1.b_transcript.docx", "earlier");
    const URL input = clip("Take 1.b.mov");

    const auto [transcript, document] = run(request(input));

    EXPECT_EQ(document, output() / "Take 1.b_transcript.docx");
    EXPECT_EQ(TestSupport::readFile(document).substr(0, 2), "PK");
}

TEST_F(TranscriptBuilderTests, Run_StartTimecode_IsTheGivenThenTheClipsThenZero) {
    const URL input = clip("A001.mov", {.seconds = 0.4, .timecode = "10:00:00:00"});
    EXPECT_EQ(run(request(input)).first.startTimecode, Timecode(10, 0, 0, 0, FrameRate::fps25));

    TranscribeRequest job = request(input);
    job.startTimecodeOverride = Timecode(1, 0, 0, 0, FrameRate::fps24);
    const Transcript given = run(job).first;
    EXPECT_EQ(given.startTimecode, Timecode(1, 0, 0, 0, FrameRate::fps24));
    EXPECT_EQ(given.frameRate, FrameRate::fps25);

    EXPECT_EQ(run(request(clip("B001.mov"))).first.startTimecode, Timecode(0, FrameRate::fps25));
}

TEST_F(TranscriptBuilderTests, Run_ClipWhoseRateCountsNoFrames_IsCountedAt24) {
    const FakeTool probe("FFPROBE_PATH", "case \"$*\" in *r_frame_rate*) echo 1/10;; esac");

    const Transcript transcript = run(request(clip("A001.mov"))).first;

    EXPECT_EQ(transcript.startTimecode, Timecode(0, FrameRate::fps24));
}

TEST_F(TranscriptBuilderTests, Run_SlateThatCanNotBeRead_IsLeftOut) {
    TranscribeRequest job = request(clip("A001.wav", {.seconds = 0.4, .video = {"-vn"}}));
    job.readSlate = true;

    EXPECT_FALSE(run(job).first.slate);
}

TEST(TranscriptMerge, OrdersByBeginningThenSpeakerThenTrack) {
    const Lines bob{{"Bob", 1.0, 2.0, "b1"}, {"Bob", 3.0, 4.0, "b2"}};
    const Lines ann{{"Ann", 1.0, 9.0, "a1"}, {"Ann", 0.5, 0.6, "a0"}};
    const Lines alsoBob{{"Bob", 1.0, 1.5, "b1 again"}};

    EXPECT_EQ(TranscriptBuilder::merge({bob, ann, alsoBob}),
              (Lines{ann[1], ann[0], bob[0], alsoBob[0], bob[1]}));
    EXPECT_EQ(TranscriptBuilder::merge({}), Lines());
}

TEST(TranscriptAssign, LongestOverlapWins_AndOfEqualsTheEarlier) {
    const Turns turns{{0.0, 2.0, "A"}, {2.0, 5.0, "B"}, {5.0, 6.0, "C"}};

    EXPECT_EQ(speakersOf(TranscriptBuilder::assign({{"", 1.0, 4.0, "x"}}, turns)), "[B]");
    EXPECT_EQ(speakersOf(TranscriptBuilder::assign({{"", 1.0, 3.0, "x"}}, turns)), "[A]");
    EXPECT_EQ(speakersOf(TranscriptBuilder::assign({{"", 4.9, 6.0, "x"}}, turns)), "[C]");
}

TEST(TranscriptAssign, OverlapOfAnyLengthOutranksTheNearest) {
    const Turns turns{{0.0, 1.0, "A"}, {9.0, 9.6, "near the middle"}, {1.9, 2.05, "B"}};

    EXPECT_EQ(speakersOf(TranscriptBuilder::assign({{"", 2.0, 8.9, "x"}}, turns)), "[B]");
}

TEST(TranscriptAssign, LineBetweenTurns_TakesTheNearerToItsMiddle) {
    const Turns turns{{0.0, 1.0, "A"}, {4.0, 5.0, "B"}};

    EXPECT_EQ(speakersOf(TranscriptBuilder::assign({{"", 1.0, 2.8, "x"}}, turns)), "[A]");
    EXPECT_EQ(speakersOf(TranscriptBuilder::assign({{"", 2.8, 3.8, "x"}}, turns)), "[B]");
    EXPECT_EQ(speakersOf(TranscriptBuilder::assign({{"", 2.0, 3.0, "x"}}, turns)), "[A]")
        << "at one distance the earlier";
    EXPECT_EQ(speakersOf(TranscriptBuilder::assign({{"", 4.5, 4.5, "x"}}, turns)), "[B]")
        << "a line without length lies within";
}

TEST(TranscriptAssign, WithoutTurnsOrLines_ChangesNothing) {
    const Lines lines{{"x", 0.0, 1.0, "y"}};

    EXPECT_EQ(TranscriptBuilder::assign(lines, {}), lines);
    EXPECT_EQ(TranscriptBuilder::assign({}, {{0.0, 1.0, "A"}}), Lines());
}

TEST(TranscriptSpeakers, StandInOrderOfFirstAppearance) {
    EXPECT_EQ(TranscriptBuilder::orderedSpeakers(
                  {{0.0, 1.0, "Speaker 1"}, {1.0, 2.0, "Speaker 2"}, {2.0, 3.0, "Speaker 1"}}),
              (std::vector<std::string>{"Speaker 1", "Speaker 2"}));
}

TEST(TranscriptTimecode, IsTheNearestFrame_HalvesAwayFromZero) {
    const Transcript transcript{.startTimecode = Timecode(100, FrameRate::fps25)};

    EXPECT_EQ(transcript.timecode({"", 0.02, 1.0, ""}), Timecode(101, FrameRate::fps25));
    EXPECT_EQ(transcript.timecode({"", 0.0199, 1.0, ""}), Timecode(100, FrameRate::fps25));
    EXPECT_EQ(transcript.timecode({"", 60.0, 61.0, ""}), Timecode(1600, FrameRate::fps25));
}

TEST(TranscriptPhases, AreNamedAsTheyAreWritten) {
    using enum TranscribeProgress::Phase;
    EXPECT_EQ(rawValue(probing), "probing");
    EXPECT_EQ(rawValue(countingPeople), "countingPeople");
    EXPECT_EQ(rawValue(diarizing), "diarizing");
    EXPECT_EQ(rawValue(extracting), "extracting");
    EXPECT_EQ(rawValue(transcribing), "transcribing");
    EXPECT_EQ(rawValue(slate), "slate");
    EXPECT_EQ(rawValue(appearance), "appearance");
    EXPECT_EQ(rawValue(merging), "merging");
    EXPECT_EQ(rawValue(writing), "writing");
    EXPECT_EQ(rawValue(done), "done");
}

}  // namespace ReelCore
