#include "../Offload/OffloadDriver.h"
#include "ScreenFixture.h"
#include "Support/Clip.h"
#include "Support/EnvironmentVariable.h"
#include "Support/RIFF.h"
#include "Support/ShootingDay.h"
#include "keldo-app/Shell/Window.h"

#include <chrono>
#include <deque>
#include <fstream>
#include <functional>
#include <map>
#include <optional>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using ReelCore::URL;
using WindowSupport::WindowDriver;

/// A process that is to be closed in the middle of a job.
struct Doomed {
    explicit Doomed(const URL& shared)
        : folder(shared), temporary("TMPDIR", (shared / "tmp").native()) {
        fs::create_directories(folder / "tmp");
        fs::create_directories(folder / "out");
        driver.emplace(WindowSupport::application(desktop));
    }

    void choose(const char* button, const URL& answer) {
        desktop.answers = {answer};
        driver->press(button);
    }
    void waitFor(const QString& name) {
        driver->waitFor(
            name.toStdString(), [&] { return driver->isShown(name); }, 120'000);
    }
    void waitForTool() {
        driver->waitFor("the tool to run", [&] { return fs::exists(folder / "running"); });
    }
    /// From now on the tool that the variable names is this script.
    void useTool(const char* variable, const std::string& script) {
        const URL tool = folder / variable;
        TestSupport::writeFile(tool, "#!/bin/sh\n" + script);
        fs::permissions(tool, fs::perms(0755));
        tools.emplace_back(variable, tool.native());
    }
    /// From now on the tool runs until it is ended, and writes nothing.
    void useEndless(const char* variable) {
        useTool(variable,
                "echo >'" + folder.native() + "/running'\nwhile :; do sleep 0.01; done\n");
    }
    void useEndlessFFmpeg() { useEndless("FFMPEG_PATH"); }

    URL folder;
    TestSupport::EnvironmentVariable temporary;
    std::deque<TestSupport::EnvironmentVariable> tools;
    WindowSupport::FakeDesktop desktop;
    std::optional<WindowDriver> driver;
};

using Start = std::function<void(Doomed&)>;

[[noreturn]] void closeIn(const URL& folder, const Start& start) {
    Doomed doomed(folder);
    start(doomed);
    TestSupport::writeFile(folder / "closing", "");
    QMetaObject::invokeMethod(
        &doomed.driver->window(), [&] { doomed.driver->window().close(); }, Qt::QueuedConnection);
    keldo_app::runUntilClosed();
}

/// The command lines of all processes that name the folder.
std::vector<std::string> processesNaming(const URL& folder) {
    std::vector<std::string> found;
    for (const auto& process : fs::directory_iterator("/proc")) {
        if (process.path().filename().native().find_first_not_of("0123456789") != std::string::npos)
            continue;
        std::ifstream file(process.path() / "cmdline");
        const std::string line(std::istreambuf_iterator<char>(file), {});
        if (line.find(folder.native()) != std::string::npos) found.push_back(line);
    }
    return found;
}

/// With the tools that are in use; nobody is counted.
void startTranscript(Doomed& doomed) {
    const URL models = doomed.folder / "data/keldobay/models";
    for (const char* name :
         {"ggml-tiny.en.bin", "diarization/segmentation.onnx", "diarization/embedding.onnx"}) {
        TestSupport::writeFile(models / name, "model");
    }
    doomed.tools.emplace_back("XDG_DATA_HOME", (doomed.folder / "data").native());
    TestSupport::makeClip(doomed.folder / "clip.mov", {.seconds = 0.2});
    doomed.driver->press("mode.Transcript");
    doomed.choose("transcript.input.choose", doomed.folder / "clip.mov");
    doomed.choose("transcript.output.choose", doomed.folder / "out");
    doomed.driver->focus("transcript.people");
    doomed.driver->key(Qt::Key_Down);
    doomed.driver->press("transcript.start");
    doomed.waitForTool();
}

class ClosingStagesTests : public testing::Test {
protected:
    void TearDown() override { ::unsetenv("KELDO_TEST_CLOSING"); }

    void expectCleanEnd(const Start& start) {
        // The process that dies begins anew, with a folder of its own: this one names the folder
        // first.
        ::setenv("KELDO_TEST_CLOSING", folder_.path().c_str(), 0);
        const URL folder = std::getenv("KELDO_TEST_CLOSING");

        EXPECT_EXIT(closeIn(folder, start), testing::ExitedWithCode(0), "");

        ASSERT_TRUE(fs::exists(folder / "closing")) << "it came to the close";
        const auto took =
            fs::file_time_type::clock::now() - fs::last_write_time(folder / "closing");
        EXPECT_LT(took, std::chrono::seconds(2));
        EXPECT_EQ(processesNaming(folder), std::vector<std::string>());
        EXPECT_TRUE(fs::is_empty(folder / "tmp"));
        out_ = TestSupport::readTree(folder / "out");
    }

    void expectNoEmptyOutput() const {
        for (const auto& [path, bytes] : out_) EXPECT_FALSE(bytes.empty()) << path;
    }

    TestSupport::TemporaryFolder folder_;
    std::map<std::string, std::string> out_;  ///< What was left in the output folder.
};

}  // namespace

TEST_F(ClosingStagesTests, Offload) {
    expectCleanEnd([](Doomed& doomed) {
        TestSupport::writeFile(doomed.folder / "card/long.mxf", TestSupport::noise(256 << 20));
        doomed.choose("offload.source.choose", doomed.folder / "card");
        WindowSupport::waitForStage(*doomed.driver, keldo_app::OffloadViewModel::Stage::setup);
        doomed.choose("offload.add", doomed.folder / "out");
        doomed.driver->press("offload.start");
        doomed.waitFor("offload.running.current");
    });
    for (const auto& [path, bytes] : out_) {
        EXPECT_FALSE(path.ends_with(".mhl")) << "no list vouches for what was cut short";
    }
}

TEST_F(ClosingStagesTests, Repair) {
    expectCleanEnd([](Doomed& doomed) {
        const URL card = doomed.folder / "card";
        fs::create_directories(card);
        TestSupport::makeClip(card / "CUT.MP4", {.seconds = 2,
                                                 .video = {"-c:v", "mpeg4"},
                                                 .audio = {"-c:a", "aac"},
                                                 .more = {"-movflags", "+faststart"}});
        fs::resize_file(card / "CUT.MP4", fs::file_size(card / "CUT.MP4") * 3 / 4);
        doomed.driver->press("mode.Recover");
        doomed.choose("recover.card.choose", card);
        doomed.driver->press("recover.scan");
        doomed.waitFor("recover.repairCard");
        doomed.choose("recover.places.output.choose", doomed.folder / "out");
        doomed.useEndlessFFmpeg();
        doomed.driver->press("recover.repair");
        doomed.waitForTool();
    });
    expectNoEmptyOutput();
}

TEST_F(ClosingStagesTests, Carve) {
    expectCleanEnd([](Doomed& doomed) {
        TestSupport::Recording recording;
        recording.seconds = 1;
        const std::string wave = TestSupport::broadcastWAV(recording);
        std::string image;
        for (int i = 0; i < 1'000; ++i) image += wave;
        TestSupport::writeFile(doomed.folder / "card.img", image);
        doomed.driver->press("mode.Recover");
        doomed.choose("recover.image.choose", doomed.folder / "card.img");
        doomed.driver->press("recover.scanImage");
        doomed.waitFor("recover.finding.0");
        doomed.choose("recover.carvePlaces.output.choose", doomed.folder / "out");
        doomed.driver->press("recover.carve");
        doomed.waitFor("recover.carved.0");
        ASSERT_TRUE(doomed.driver->isShown("recover.carving"));
    });
    expectNoEmptyOutput();
}

TEST_F(ClosingStagesTests, Mux) {
    expectCleanEnd([](Doomed& doomed) {
        TestSupport::makeShortDay(doomed.folder / "Day1");
        doomed.driver->press("mode.Sync");
        doomed.choose("sync.media.choose", doomed.folder / "Day1");
        doomed.driver->press("sync.scan");
        doomed.waitFor("sync.mux");
        doomed.choose("sync.output.choose", doomed.folder / "out");
        doomed.useEndlessFFmpeg();
        doomed.driver->press("sync.mux");
        doomed.waitForTool();
    });
    expectNoEmptyOutput();
}

TEST_F(ClosingStagesTests, Transcode) {
    expectCleanEnd([](Doomed& doomed) {
        std::vector<URL> clips;
        for (const char* name : {"a.mov", "b.mov", "c.mov"}) {
            TestSupport::makeClip(doomed.folder / name, {.seconds = 0.2});
            clips.push_back(doomed.folder / name);
        }
        doomed.driver->press("mode.Transcode");
        doomed.desktop.filesAnswers = {clips};
        doomed.driver->press("transcode.add");
        doomed.choose("transcode.output.choose", doomed.folder / "out");
        doomed.useEndlessFFmpeg();
        doomed.driver->press("transcode.start");
        doomed.waitForTool();
    });
    expectNoEmptyOutput();
}

TEST_F(ClosingStagesTests, TranscriptWhileVoicesAreToldApart) {
    expectCleanEnd([](Doomed& doomed) {
        doomed.useEndless("KELDO_PYTHON");
        doomed.useTool("KELDO_WHISPER_CLI", "exit 1\n");
        startTranscript(doomed);
    });
    expectNoEmptyOutput();
}

TEST_F(ClosingStagesTests, TranscriptWhileSpeechIsHeard) {
    expectCleanEnd([](Doomed& doomed) {
        doomed.useTool("KELDO_PYTHON", "echo 0.0 1.0 0\n");
        doomed.useEndless("KELDO_WHISPER_CLI");
        startTranscript(doomed);
    });
    expectNoEmptyOutput();
}
