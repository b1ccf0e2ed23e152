#include "ReelCore/Diarize/Diarizer.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/FakeTool.h"
#include "Support/Forked.h"
#include "Support/OwnMounts.h"
#include "Support/ToolFixture.h"

#include <csignal>
#include <stdexcept>

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace ReelCore {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using TestSupport::EnvironmentVariable;
using TestSupport::FakeTool;
using TestSupport::readFile;
using TestSupport::writeFile;

constexpr const char* uuid = "[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}";

class DiarizerTest : public TestSupport::ToolFixture {
protected:
    DiarizerTest() {
        writeFile(wav(), "sound");
        writeFile(models.segmentation(), "model");
        writeFile(models.embedding(), "model");
    }

    URL wav() const { return folder() / "mix.wav"; }

    std::vector<DiarizedTurn> run(const DiarizationOptions& options = {}) const {
        return Diarizer().run(wav(), options);
    }

    /// The case of the failure of a run that must fail.
    template <class Case>
    Case failure(const URL& sound) const {
        try {
            Diarizer().run(sound, {});
        } catch (const DiarizeError& error) {
            if (const Case* found = error.get<Case>()) return *found;
            throw;
        }
        throw std::runtime_error("no failure");
    }

    template <class Case>
    Case failure() const {
        return failure<Case>(wav());
    }

private:
    EnvironmentVariable data_{"XDG_DATA_HOME", folder().native()};

protected:
    const DiarizationModels models{};
};

TEST_F(DiarizerTest, Arguments_AreSix) {
    const FakeTool python("KELDO_PYTHON");

    EXPECT_THAT(run(), IsEmpty());
    EXPECT_THAT(run({3, 0.25}), IsEmpty());
    EXPECT_THAT(run({0, 1.0}), IsEmpty());

    const auto calls = python.calls();
    EXPECT_THAT(calls.at(0),
                ElementsAre(MatchesRegex((temporary() / "keldobay-diar-").native() + uuid + ".py"),
                            models.segmentation(), models.embedding(), wav(), "0.5", "-1"));
    EXPECT_THAT(calls.at(1), ElementsAre(testing::_, models.segmentation(), models.embedding(),
                                         wav(), "0.25", "3"));
    EXPECT_EQ(calls.at(2).at(4), "1.0");
    EXPECT_EQ(calls.at(2).at(5), "0");
    EXPECT_NE(calls.at(0).at(0), calls.at(1).at(0));
}

TEST_F(DiarizerTest, Script_IsAsPrescribedByteForByte) {
    const FakeTool python("KELDO_PYTHON", "cp \"$1\" \"$(dirname \"$4\")/script\"");

    run();

    EXPECT_EQ(
        readFile(folder() / "script"),
        "import sys, wave, numpy as np, sherpa_onnx\n"
        "seg, emb, wav = sys.argv[1], sys.argv[2], sys.argv[3]\n"
        "thr, ncl = float(sys.argv[4]), int(sys.argv[5])\n"
        "cfg = sherpa_onnx.OfflineSpeakerDiarizationConfig(\n"
        "    segmentation=sherpa_onnx.OfflineSpeakerSegmentationModelConfig(\n"
        "        pyannote=sherpa_onnx.OfflineSpeakerSegmentationPyannoteModelConfig(model=seg)),\n"
        "    embedding=sherpa_onnx.SpeakerEmbeddingExtractorConfig(model=emb),\n"
        "    clustering=sherpa_onnx.FastClusteringConfig(num_clusters=ncl, threshold=thr),\n"
        "    min_duration_on=0.3, min_duration_off=0.5)\n"
        "sd = sherpa_onnx.OfflineSpeakerDiarization(cfg)\n"
        "w = wave.open(wav)\n"
        "a = np.frombuffer(w.readframes(w.getnframes()), dtype=np.int16).astype(np.float32) / "
        "32768.0\n"
        "for s in sd.process(a).sort_by_start_time():\n"
        "    print('%.3f %.3f %d' % (s.start, s.end, s.speaker))");
}

TEST_F(DiarizerTest, LogIsEmptyInTheTemporaryFolderWhilePythonRuns) {
    const FakeTool python("KELDO_PYTHON",
                          "find \"$TMPDIR\" -name 'keldobay-diar-*.log' -printf '%f %s\\n' "
                          ">\"$(dirname \"$4\")/found\"");

    run();

    EXPECT_THAT(readFile(folder() / "found"),
                MatchesRegex("keldobay-diar-" + std::string(uuid) + "\\.log 0\n"));
}

TEST_F(DiarizerTest, Output_GivesTheTurnsAndComplaintsDoNotMatter) {
    const FakeTool python("KELDO_PYTHON",
                          "echo 'No module named x' >&2; echo 'warning: foo'\n"
                          "echo '0.000 1.500 3'; echo '1.500 2.000 0'");

    EXPECT_THAT(run(), ElementsAre(DiarizedTurn{0.0, 1.5, "Speaker 1"},
                                   DiarizedTurn{1.5, 2.0, "Speaker 2"}));
}

TEST_F(DiarizerTest, OutputThatIsNoUTF8_CountsAsEmpty) {
    const FakeTool python("KELDO_PYTHON", "printf '0.0 1.0 0\\n\\377\\n'");

    EXPECT_THAT(run(), IsEmpty());
}

TEST_F(DiarizerTest, ScriptThatSaysALotOnBothStreams_IsNotHeldUp) {
    const FakeTool python("KELDO_PYTHON", "seq 300000; seq 300000 >&2; echo 0.0 1.0 0");

    EXPECT_EQ(run().size(), 1U);
}

TEST_F(DiarizerTest, Python_YieldsToOtherWorkAndLooksForNoPackagesBesideTheScript) {
    const FakeTool python("KELDO_PYTHON",
                          "for i in $(seq 1000); do [ \"$(nice)\" -ge 10 ] && break; done\n"
                          "echo $(nice) $PYTHONSAFEPATH >\"$(dirname \"$4\")/found\"");

    run();

    const std::string found = readFile(folder() / "found");
    EXPECT_GE(std::stoi(found), 10);
    EXPECT_TRUE(found.ends_with(" 1\n")) << found;
}

// Where anybody may write, anybody could put a module of theirs.
TEST_F(DiarizerTest, ModuleInTheTemporaryFolder_IsNotTakenForThePackage) {
    if (!FileSystem::isExecutable("/usr/bin/python3")) GTEST_SKIP() << "no /usr/bin/python3";
    const EnvironmentVariable python("KELDO_PYTHON", "/usr/bin/python3");
    writeFile(temporary() / "wave.py", "import sys\nsys.exit('taken')\n");

    try {
        run();
    } catch (const DiarizeError& error) {
        EXPECT_EQ(error.description().find("taken"), std::string::npos) << error.description();
    }

    std::filesystem::remove_all(temporary() / "wave.py");
}

TEST_F(DiarizerTest, RelativeSound_ReachesPythonAbsolute) {
    const FakeTool python("KELDO_PYTHON");
    writeFile(folder() / "-c", "sound");

    const int status = TestSupport::statusOfForked([&] {
        std::filesystem::current_path(folder());
        return static_cast<int>(Diarizer().run("-c", {}).size());
    });

    EXPECT_EQ(status, 0);
    EXPECT_EQ(python.calls().at(0).at(3), folder() / "-c");
}

TEST_F(DiarizerTest, NoPython_IsSaidFirst) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const int status = TestSupport::statusInOwnMounts([&] {
        for (const char* place : {"/opt", "/usr/local/bin", "/usr/bin"}) {
            TestSupport::mountEmptyFolder(place);
        }
        std::filesystem::remove(models.embedding());
        failure<DiarizeError::PythonNotFound>(folder() / "missing.wav");
        return 0;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(DiarizerTest, NoModels_IsSaidBeforeTheSoundIsLookedFor) {
    const FakeTool python("KELDO_PYTHON");
    std::filesystem::remove(models.embedding());

    failure<DiarizeError::ModelsMissing>(folder() / "missing.wav");

    EXPECT_THAT(python.calls(), IsEmpty());
}

TEST_F(DiarizerTest, NoSound_IsSaidWithItsPath) {
    const FakeTool python("KELDO_PYTHON");

    EXPECT_EQ(failure<DiarizeError::InputNotFound>(folder() / "missing.wav").input,
              folder() / "missing.wav");

    EXPECT_THAT(python.calls(), IsEmpty());
}

TEST_F(DiarizerTest, PipeAsSound_IsRefusedAndNotWaitedFor) {
    const FakeTool python("KELDO_PYTHON", "cat \"$4\"");
    ASSERT_EQ(::mkfifo((folder() / "pipe.wav").c_str(), 0600), 0);

    EXPECT_THROW(Diarizer().run(folder() / "pipe.wav", {}), SystemError);
}

TEST_F(DiarizerTest, PackageMissing_IsToldByTheLastLine) {
    const FakeTool traceback("KELDO_PYTHON",
                             "printf 'Traceback (most recent call last):\\n  File x\\n"
                             "ModuleNotFoundError: a\\n\\n' >&2; exit 1");
    EXPECT_EQ(failure<DiarizeError::SherpaNotInstalled>().reason, "ModuleNotFoundError: a");

    const FakeTool other("KELDO_PYTHON", "printf 'No module named b\\nbye' >&2; exit 7");
    EXPECT_EQ(failure<DiarizeError::SherpaNotInstalled>().reason, "bye");
}

TEST_F(DiarizerTest, RealPythonWithoutThePackage_IsToldByItsOwnWords) {
    const EnvironmentVariable python("KELDO_PYTHON", "/usr/bin/python3");
    const EnvironmentVariable home("PYTHONNOUSERSITE", "1");
    if (!FileSystem::isExecutable("/usr/bin/python3")) GTEST_SKIP() << "no /usr/bin/python3";

    EXPECT_THAT(failure<DiarizeError::SherpaNotInstalled>().reason,
                MatchesRegex("ModuleNotFoundError: No module named '(numpy|sherpa_onnx)'"));
}

TEST_F(DiarizerTest, OtherFailure_IsToldByTheLast400Characters) {
    const FakeTool python(
        "KELDO_PYTHON",
        "for i in $(seq 500); do printf 'é' >&2; done; printf '\\377' >&2; exit 255");

    const auto failed = failure<DiarizeError::Failed>();

    std::string expected;
    for (int i = 0; i < 399; ++i) expected += "é";
    EXPECT_EQ(failed.status, 255);
    EXPECT_EQ(failed.tail, expected + "\uFFFD");
}

TEST_F(DiarizerTest, FailureWithoutAWord) {
    const FakeTool python("KELDO_PYTHON", "echo 0.0 1.0 0; exit 4");
    EXPECT_EQ(failure<DiarizeError::Failed>().status, 4);
    EXPECT_EQ(failure<DiarizeError::Failed>().tail, "");

    const FakeTool killed("KELDO_PYTHON", "kill -SEGV $$");
    EXPECT_EQ(failure<DiarizeError::Failed>().status, 128 + SIGSEGV);
}

TEST_F(DiarizerTest, LogThatIsGone_CountsAsEmpty) {
    const FakeTool python("KELDO_PYTHON",
                          "echo ModuleNotFoundError >&2; rm \"$TMPDIR\"/*.log; exit 1");

    EXPECT_EQ(failure<DiarizeError::Failed>().tail, "");
}

TEST_F(DiarizerTest, PythonThatCannotBeStarted_IsTheSystemsOwnFailure) {
    writeFile(folder() / "python", "#!/no/such/shell\n");
    std::filesystem::permissions(folder() / "python", std::filesystem::perms(0755));
    const EnvironmentVariable python("KELDO_PYTHON", folder() / "python");

    EXPECT_THROW(run(), SystemError);
}

TEST_F(DiarizerTest, NoTemporaryFolder_IsTheSystemsOwnFailure) {
    const FakeTool python("KELDO_PYTHON");
    const EnvironmentVariable missing("TMPDIR", folder() / "missing");

    EXPECT_THROW(run(), SystemError);
    EXPECT_THAT(python.calls(), IsEmpty());
}

}  // namespace

}  // namespace ReelCore
