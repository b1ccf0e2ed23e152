#include "ReelCore/Transcribe/WhisperTranscriber.h"

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "Support/FakeTool.h"
#include "Support/Forked.h"
#include "Support/ToolFixture.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace ReelCore {

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;
using TestSupport::EnvironmentVariable;
using TestSupport::FakeTool;
using TestSupport::readFile;
using TestSupport::writeFile;

constexpr const char* tool = "KELDO_WHISPER_CLI";

/// Of the nine arguments the last is where the result goes, but for its extension.
constexpr const char* oneLine =
    R"(printf '{"transcription":[{"offsets":{"from":500,"to":1500},"text":" Action! "}]}' >"$9.json")";

bool never() {
    return false;
}

class WhisperTranscriberTest : public TestSupport::ToolFixture {
protected:
    WhisperTranscriberTest() {
        writeFile(wav(), "sound");
        writeFile(model(), "model");
    }

    URL wav() const { return folder() / "in/spk_JANE.wav"; }
    URL result() const { return folder() / "in/spk_JANE.json"; }
    URL model() const { return folder() / "ggml-base.en.bin"; }

    std::vector<TranscriptSegment> transcribe(const std::function<bool()>& isCancelled = never) {
        return WhisperTranscriber(model()).transcribe(wav(), "JANE", isCancelled);
    }

    /// The case of the failure of a run that must fail.
    template <class Case>
    Case failure(const std::function<bool()>& isCancelled = never) {
        try {
            transcribe(isCancelled);
        } catch (const TranscribeError& error) {
            if (const Case* found = error.get<Case>()) return *found;
            throw;
        }
        throw std::runtime_error("no failure");
    }

    void TearDown() override {
        ToolFixture::TearDown();
        EXPECT_FALSE(FileSystem::exists(result()));
        EXPECT_EQ(readFile(wav()), "sound");
        EXPECT_EQ(readFile(model()), "model");
    }
};

TEST_F(WhisperTranscriberTest, Lines_AreInTheToolsOrderUnderTheOneSpeaker) {
    const FakeTool whisper(
        tool, R"(printf '{"transcription":[{"offsets":{"from":2000,"to":3000},"text":"b"},)"
              R"({"text":" "},{"offsets":{"from":0,"to":1000},"text":"a"}]}' >"$9.json")");

    EXPECT_EQ(transcribe(),
              (std::vector<TranscriptSegment>{{"JANE", 2.0, 3.0, "b"}, {"JANE", 0.0, 1.0, "a"}}));
    EXPECT_THAT(whisper.calls(),
                ElementsAre(ElementsAre("-m", model().native(), "-f", wav().native(), "-l", "en",
                                        "-oj", "-of", folder() / "in/spk_JANE")));
}

TEST_F(WhisperTranscriberTest, SpeakerMayBeEmpty) {
    const FakeTool whisper(tool, oneLine);

    EXPECT_THAT(WhisperTranscriber(model()).transcribe(wav(), "", never),
                ElementsAre(TranscriptSegment{"", 0.5, 1.5, "Action!"}));
}

TEST_F(WhisperTranscriberTest, NoModelChosen_TheLocatedOneIsTaken) {
    const FakeTool whisper(tool, oneLine);
    writeFile(folder() / "multilingual", "model");
    const EnvironmentVariable located("KELDO_WHISPER_MODEL", folder() / "multilingual");

    EXPECT_EQ(WhisperTranscriber().transcribe(wav(), "JANE", never).size(), 1U);
    EXPECT_EQ(transcribe().size(), 1U);

    EXPECT_EQ(whisper.calls().at(0).at(1), folder() / "multilingual");
    EXPECT_EQ(whisper.calls().at(0).at(5), "auto");
    EXPECT_EQ(whisper.calls().at(1).at(1), model());
    EXPECT_EQ(whisper.calls().at(1).at(5), "en");
}

TEST_F(WhisperTranscriberTest, IsAvailable_AsksTheLocatorAndNotTheChosenModel) {
    const FakeTool whisper(tool);
    const EnvironmentVariable data("XDG_DATA_HOME", folder() / "data");
    const EnvironmentVariable none("KELDO_WHISPER_MODEL", std::nullopt);
    EXPECT_FALSE(WhisperTranscriber(model()).isAvailable());

    const EnvironmentVariable located("KELDO_WHISPER_MODEL", model().native());
    EXPECT_TRUE(WhisperTranscriber().isAvailable());
}

TEST_F(WhisperTranscriberTest, NoModel_FailsBeforeAnythingIsStarted) {
    const FakeTool whisper(tool, oneLine);
    const EnvironmentVariable data("XDG_DATA_HOME", folder() / "data");
    const EnvironmentVariable located("KELDO_WHISPER_MODEL", std::nullopt);

    try {
        WhisperTranscriber().transcribe(wav(), "JANE", never);
        ADD_FAILURE();
    } catch (const TranscribeError& error) {
        EXPECT_TRUE(error.is<TranscribeError::ModelNotFound>());
    }
    EXPECT_TRUE(whisper.calls().empty());
}

TEST_F(WhisperTranscriberTest, NoTool_IsSaidBeforeTheModelIsLookedFor) {
    const EnvironmentVariable missing(tool, folder() / "missing");
    const EnvironmentVariable data("XDG_DATA_HOME", folder() / "data");
    const EnvironmentVariable located("KELDO_WHISPER_MODEL", std::nullopt);
    if (WhisperLocator().whisperCLI()) {
        GTEST_SKIP() << "this machine has a whisper-cli of its own";
    }

    try {
        WhisperTranscriber().transcribe(wav(), "JANE", never);
        ADD_FAILURE();
    } catch (const TranscribeError& error) {
        EXPECT_TRUE(error.is<TranscribeError::WhisperNotFound>());
    }
}

TEST_F(WhisperTranscriberTest, LogIsEmptyInTheTemporaryFolderWhileTheToolRuns) {
    const FakeTool whisper(tool,
                           "find \"$TMPDIR\" -name 'keldo-whisper-*' -printf '%f %s\\n' "
                           ">\"$(dirname \"$9\")/found\"\n" +
                               std::string(oneLine));

    transcribe();

    EXPECT_THAT(readFile(folder() / "in/found"),
                MatchesRegex("keldo-whisper-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.log 0\n"));
}

TEST_F(WhisperTranscriberTest, ToolThatSaysALot_IsNotHeldUp) {
    const FakeTool whisper(
        tool, "head -c 3000000 /dev/zero; head -c 3000000 /dev/zero >&2\n" + std::string(oneLine));

    EXPECT_EQ(transcribe().size(), 1U);
}

TEST_F(WhisperTranscriberTest, ToolReadsNothingFromUs) {
    const FakeTool whisper(tool, "cat\n" + std::string(oneLine));

    EXPECT_EQ(transcribe().size(), 1U);
}

// The priority is set just after the start.
TEST_F(WhisperTranscriberTest, Tool_YieldsToOtherWork) {
    const FakeTool whisper(tool,
                           "for i in $(seq 1000); do [ \"$(nice)\" -ge 10 ] && break; done\n"
                           "echo $(nice) $OMP_WAIT_POLICY >\"$(dirname \"$9\")/nice\"\n" +
                               std::string(oneLine));

    transcribe();

    const std::string found = readFile(folder() / "in/nice");
    EXPECT_GE(std::stoi(found), 10);
    EXPECT_TRUE(found.ends_with(" passive\n")) << found;
}

TEST_F(WhisperTranscriberTest, PathsThatLookLikeSomethingElse_ReachTheToolAbsolute) {
    const FakeTool whisper(tool, oneLine);
    for (const URL name : {"-m.wav", "-", "two words\nand a line.wav", "caf\xE9 \"x\".wav",
                           "no extension", "A.B.wav", ".wav"}) {
        writeFile(folder() / name, "sound");
        const int count = TestSupport::statusOfForked([&] {
            std::filesystem::current_path(folder());
            return static_cast<int>(
                WhisperTranscriber("ggml-base.en.bin").transcribe(name, "JANE", never).size());
        });

        EXPECT_EQ(count, 1) << name;
        EXPECT_EQ(whisper.calls().back().at(1), model()) << name;
        EXPECT_EQ(whisper.calls().back().at(3), folder() / name);
        EXPECT_EQ(whisper.calls().back().at(8), folder() / URL(name).replace_extension());
    }
}

TEST_F(WhisperTranscriberTest, PipeAsSoundOrModel_IsRefusedAndNotWaitedFor) {
    const FakeTool whisper(tool, "cat \"$2\" \"$4\" >/dev/null");
    const URL pipe = folder() / "pipe.wav";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

    EXPECT_THROW(WhisperTranscriber(model()).transcribe(pipe, "JANE", never), SystemError);
    EXPECT_THROW(WhisperTranscriber(pipe).transcribe(wav(), "JANE", never), SystemError);
    EXPECT_TRUE(whisper.calls().empty());
}

TEST_F(WhisperTranscriberTest, ToolThatFails_IsToldByItsLastEightLines) {
    const FakeTool whisper(tool,
                           "for i in $(seq 20); do echo \"line $i\" >&2; echo >&2; done\n"
                           "echo said; exit 3");

    const auto failed = failure<TranscribeError::WhisperFailed>();

    EXPECT_EQ(failed.status, 3);
    EXPECT_EQ(failed.tail,
              "line 13\nline 14\nline 15\nline 16\nline 17\nline 18\nline 19\nline 20");
}

TEST_F(WhisperTranscriberTest, ToolThatFailsWithFewWords_IsToldByAllOfThem) {
    const FakeTool whisper(tool, "printf 'caf\\351\\n\\nno end' >&2; exit 1");
    EXPECT_EQ(failure<TranscribeError::WhisperFailed>().tail, "caf\uFFFD\nno end");

    const FakeTool silent(tool, "exit 2");
    EXPECT_EQ(failure<TranscribeError::WhisperFailed>().description(), "whisper-cli failed (2):\n");
}

TEST_F(WhisperTranscriberTest, LogThatIsGone_CountsAsEmpty) {
    const FakeTool whisper(tool, "echo words >&2; rm \"$TMPDIR\"/keldo-whisper-*; exit 9");

    const auto failed = failure<TranscribeError::WhisperFailed>();

    EXPECT_EQ(failed.status, 9);
    EXPECT_EQ(failed.tail, "");
}

TEST_F(WhisperTranscriberTest, ToolEndedByASignal_IsToldBy128AndItsNumber) {
    const FakeTool whisper(tool, std::string(oneLine) + "\nkill -KILL $$");

    EXPECT_EQ(failure<TranscribeError::WhisperFailed>().status, 128 + SIGKILL);
}

TEST_F(WhisperTranscriberTest, ResultOfAToolThatFailed_IsNotTaken) {
    const FakeTool whisper(tool, std::string(oneLine) + "\nexit 1");

    EXPECT_EQ(failure<TranscribeError::WhisperFailed>().status, 1);
}

TEST_F(WhisperTranscriberTest, SuccessWithoutAResult_IsTheSystemsOwnFailure) {
    const FakeTool whisper(tool);

    try {
        transcribe();
        ADD_FAILURE();
    } catch (const SystemError& error) {
        EXPECT_EQ(error.description(), "No such file or directory: " + result().native());
    }
}

TEST_F(WhisperTranscriberTest, EarlierResult_IsNotTakenForThisOne) {
    const FakeTool whisper(tool);
    writeFile(result(), R"({"transcription":[{"text":"of yesterday"}]})");

    EXPECT_THROW(transcribe(), SystemError);
}

TEST_F(WhisperTranscriberTest, FolderInPlaceOfTheResult_StaysAndFailsTheRun) {
    const FakeTool whisper(tool, "true");
    std::filesystem::create_directory(result());

    EXPECT_THROW(transcribe(), SystemError);

    EXPECT_TRUE(FileSystem::isFolder(result()));
    std::filesystem::remove(result());
}

TEST_F(WhisperTranscriberTest, ResultThatIsNoResult_IsRemovedAllTheSame) {
    const FakeTool cut(tool, R"(printf '{"transcription":[{"te' >"$9.json")");
    EXPECT_THROW(transcribe(), Error);
    EXPECT_FALSE(FileSystem::exists(result()));

    const FakeTool other(tool, R"(printf '{"result":[]}' >"$9.json")");
    EXPECT_EQ(failure<TranscribeError::ParseFailed>().reason, "missing 'transcription' array");
}

TEST_F(WhisperTranscriberTest, ToolThatCannotBeStarted_IsTheSystemsOwnFailure) {
    const URL program = folder() / "program";
    writeFile(program, "#!/no/such/shell\n");
    std::filesystem::permissions(program, std::filesystem::perms(0755));
    const EnvironmentVariable named(tool, program.native());

    EXPECT_THROW(transcribe(), SystemError);
}

TEST_F(WhisperTranscriberTest, NoTemporaryFolder_IsTheSystemsOwnFailure) {
    const FakeTool whisper(tool, oneLine);
    const EnvironmentVariable missing("TMPDIR", folder() / "missing");

    EXPECT_THROW(transcribe(), SystemError);
    EXPECT_TRUE(whisper.calls().empty());
}

TEST_F(WhisperTranscriberTest, CancelledAtTheStart_EndsTheTool) {
    const FakeTool whisper(tool, "exec sleep 600");

    failure<TranscribeError::Cancelled>([] { return true; });
}

TEST_F(WhisperTranscriberTest, CancelledOnItsWay_IsHeardAtTheNextLook) {
    const FakeTool whisper(tool, std::string(oneLine) + "\nexec sleep 600");
    int looks = 0;

    failure<TranscribeError::Cancelled>([&] { return ++looks == 4; });

    EXPECT_EQ(looks, 4);
}

TEST_F(WhisperTranscriberTest, CancelOfAToolThatDoesNotListen_KillsIt) {
    const FakeTool whisper(tool, "trap '' TERM; echo $$ >\"$9.number\"; sleep 600; sleep 600");
    const URL number = folder() / "in/spk_JANE.number";

    failure<TranscribeError::Cancelled>(
        [&] { return FileSystem::exists(number) && !readFile(number).empty(); });

    EXPECT_NE(::kill(std::stoi(readFile(number)), 0), 0);
}

TEST_F(WhisperTranscriberTest, WhileTheToolRuns_CancelIsAskedTenTimesASecond) {
    using Clock = std::chrono::steady_clock;
    const FakeTool whisper(tool, "sleep 1\n" + std::string(oneLine));
    std::vector<Clock::time_point> looks;

    transcribe([&] {
        looks.push_back(Clock::now());
        return false;
    });

    // A busy machine asks later, never sooner.
    ASSERT_GE(looks.size(), 2U);
    EXPECT_LE(looks.size(), 12U + static_cast<std::size_t>((looks.back() - looks.front()) /
                                                           std::chrono::milliseconds(100)));
    for (std::size_t i = 1; i < looks.size(); ++i) {
        EXPECT_GE(looks[i] - looks[i - 1], std::chrono::milliseconds(99));
    }
}

TEST_F(WhisperTranscriberTest, QuestionThatThrows_EndsTheToolAndComesThrough) {
    const FakeTool whisper(tool, "exec sleep 600");

    EXPECT_THROW(transcribe([]() -> bool { throw std::runtime_error("out"); }), std::runtime_error);
}

TEST_F(WhisperTranscriberTest, SoundOrModelCalledLikeTheResult_IsRefusedAndStays) {
    const FakeTool whisper(tool, oneLine);
    const URL sound = folder() / "talk.json";
    writeFile(sound, "sound");
    const URL named = folder() / "in/spk_JANE.json";
    writeFile(named, "model");

    EXPECT_THROW(WhisperTranscriber(model()).transcribe(sound, "JANE", never), SystemError);
    EXPECT_THROW(WhisperTranscriber(named).transcribe(wav(), "JANE", never), SystemError);

    EXPECT_EQ(readFile(sound), "sound");
    EXPECT_EQ(readFile(named), "model");
    EXPECT_TRUE(whisper.calls().empty());
    std::filesystem::remove(named);
}

}  // namespace

}  // namespace ReelCore
