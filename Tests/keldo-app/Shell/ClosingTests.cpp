#include "../Offload/OffloadFixture.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FakeTool.h"
#include "keldo-app/Shell/Window.h"

#include <QProcess>
#include <csignal>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using ReelCore::URL;

/// The process that dies begins anew, with a folder of its own: this one names the folder first.
URL sharedFolder(const URL& own) {
    ::setenv("KELDO_TEST_CLOSING", own.c_str(), 0);
    return std::getenv("KELDO_TEST_CLOSING");
}

/// Closes the window while a job that nobody sees any more waits for ffmpeg.
[[noreturn]] void closeDuringATranscode(const URL& folder) {
    const TestSupport::EnvironmentVariable temporary("TMPDIR", folder.native());
    const TestSupport::EnvironmentVariable tool("FFMPEG_PATH", folder / "ffmpeg");
    TestSupport::writeFile(folder / "A001.mov", "picture");
    std::thread([folder] {
        const ReelCore::TranscodeRequest job{
            folder / "A001.mov", folder / "out", ReelCore::TranscodePreset::proRes422, {}, {}};
        for (;;) {
            try {
                ReelCore::Transcoder().run(job, [](const ReelCore::TranscodeProgress&) {});
            } catch (const std::exception&) {
                // The next clip, as a batch goes on.
            }
        }
    }).detach();
    WindowSupport::FakeDesktop desktop;
    WindowSupport::WindowDriver driver(WindowSupport::application(desktop));
    driver.waitFor("ffmpeg to run",
                   [&] { return ReelCore::FileSystem::exists(folder / "running"); });
    QMetaObject::invokeMethod(
        &driver.window(), [&] { driver.window().close(); }, Qt::QueuedConnection);
    keldo_app::runUntilClosed();
}

class Closing : public WindowSupport::OffloadFixture {};

TEST_F(Closing, DuringATranscode_LetsTheChildCloseItsClipAndLeavesNoLog) {
    const URL folder = sharedFolder(folder_.path());
    const std::string at = "'" + folder.native();
    TestSupport::writeFile(folder / "ffmpeg", "#!/bin/sh\ntrap \"sleep 0.8; echo >>" + at +
                                                  "/closed'; exit 255\" TERM\n"
                                                  "echo >" +
                                                  at + "/running'\nwhile :; do sleep 0.01; done\n");
    std::filesystem::permissions(folder / "ffmpeg", std::filesystem::perms(0755));

    EXPECT_EXIT(closeDuringATranscode(folder), testing::ExitedWithCode(0), "");

    EXPECT_EQ(TestSupport::readFile(folder / "closed"), "\n") << "one child, and none after it";
    for (const std::string& name : ReelCore::FileSystem::names(folder)) {
        EXPECT_FALSE(name.starts_with("keldo-ffmpeg-")) << name;
    }
    ::unsetenv("KELDO_TEST_CLOSING");
}

TEST_F(Closing, ApplicationItself_TakesTheSignalsThatAskAndDiesOfThem) {
    QProcess application;
    application.start(KELDO_APPLICATION, {});
    ASSERT_TRUE(application.waitForStarted());
    const auto process = static_cast<pid_t>(application.processId());
    const auto caught = [&] {
        const std::string status =
            TestSupport::readFile("/proc/" + std::to_string(process) + "/status");
        return std::stoull(status.substr(status.find("SigCgt:") + 7), nullptr, 16);
    };
    const auto bit = [](int number) { return 1ULL << (number - 1); };
    const auto all = bit(SIGTERM) | bit(SIGINT) | bit(SIGHUP);
    for (int looks = 0; looks < 6000 && (caught() & all) != all; ++looks) ::usleep(10'000);
    EXPECT_EQ(caught() & all, all);

    ::kill(process, SIGTERM);

    ASSERT_TRUE(application.waitForFinished());
    EXPECT_EQ(application.exitStatus(), QProcess::CrashExit) << "it died of the signal";
    EXPECT_EQ(application.exitCode(), SIGTERM);
}

}  // namespace
