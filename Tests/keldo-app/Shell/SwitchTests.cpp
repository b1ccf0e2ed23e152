#include "../Offload/OffloadDriver.h"
#include "../Transcript/TranscriptTools.h"
#include "ScreenFixture.h"
#include "Support/Clip.h"
#include "Support/RIFF.h"
#include "Support/ShootingDay.h"
#include "Window/LoopWatch.h"
#include "keldo-app/Support/InUse.h"

#include <QElapsedTimer>
#include <QTest>
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

using keldo_app::InUse;
using ReelCore::URL;

/// How often the mode is switched: KELDO_TEST_SWITCHES, or 20.
int switches() {
    const char* wanted = std::getenv("KELDO_TEST_SWITCHES");
    return wanted ? std::atoi(wanted) : 20;
}

/// In milliseconds, for half of them: a screen shows at once.
#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
constexpr qint64 longestSwitch = 200;
#else
constexpr qint64 longestSwitch = 2'000;
#endif

unsigned seed() {
    const char* wanted = std::getenv("KELDO_TEST_SEED");
    return wanted ? static_cast<unsigned>(std::atoi(wanted)) : std::random_device()();
}

/// A screen with its job, gone through step by step; a switch comes between any two.
class SwitchTests : public WindowSupport::ScreenFixture {
protected:
    SwitchTests() {
        TestSupport::writeFile(place("card/A001C001.MXF"), TestSupport::noise(8 << 20));
        TestSupport::makeShortDay(madeFolder("day"));
        TestSupport::makeClip(place("clip.mov"), {.seconds = 0.2});
        const std::string whole = TestSupport::readFile(place("clip.mov"));
        TestSupport::writeFile(place("broken/GOOD.MOV"), whole);
        for (int i = 0; i < 8; ++i) {
            TestSupport::writeFile(place("broken/LOST" + std::to_string(i) + ".MOV"),
                                   whole.substr(0, whole.rfind("moov") - 4));
        }
        std::string image;
        for (int i = 0; i < 20; ++i) image += whole + TestSupport::noise(4'096);
        TestSupport::writeFile(place("card.img"), image);
        for (const char* name :
             {"drive", "repaired", "carved", "synced", "transcoded", "transcribed"}) {
            madeFolder(name);
        }
    }

    /// Lets the loop go round until a moment that nobody knows in advance; false once it has come.
    bool goesOn(const std::function<bool()>& isReached) {
        return QTest::qWaitFor(isReached, moment_) && isReached();
    }
    bool shows(const QString& name) {
        return goesOn([&] { return driver_->isEnabled(name); });
    }

    void offload() {
        choose("offload.source.choose", place("card"));
        if (!goesOn([&] { return driver_->isShown("offload.fileCount"); })) return;
        choose("offload.add", place("drive"));
        if (shows("offload.start")) driver_->press("offload.start");
    }
    void repair() {
        choose("recover.card.choose", place("broken"));
        driver_->press("recover.scan");
        if (!shows("recover.places.output.choose")) return;
        choose("recover.places.output.choose", place("repaired"));
        if (shows("recover.repair")) driver_->press("recover.repair");
    }
    void carve() {
        choose("recover.image.choose", place("card.img"));
        driver_->press("recover.scanImage");
        if (!shows("recover.carvePlaces.output.choose")) return;
        choose("recover.carvePlaces.output.choose", place("carved"));
        if (shows("recover.carve")) driver_->press("recover.carve");
    }
    void sync() {
        choose("sync.media.choose", place("day"));
        driver_->press("sync.scan");
        if (!shows("sync.output.choose")) return;
        choose("sync.output.choose", place("synced"));
        if (shows("sync.mux")) driver_->press("sync.mux");
    }
    void transcode() {
        addClips({place("clip.mov")});
        choose("transcode.output.choose", place("transcoded"));
        if (shows("transcode.start")) driver_->press("transcode.start");
    }
    void transcribe() {
        for (const char* part : {"readSlate", "hints", "mode.ISO channels"}) {
            driver_->press(QStringLiteral("transcript.") + part);
        }
        choose("transcript.input.choose", place("clip.mov"));
        choose("transcript.output.choose", place("transcribed"));
        if (shows("transcript.start")) driver_->press("transcript.start");
    }
    void plan() {
        for (const char* way : {"more", "less"}) {
            driver_->press(QStringLiteral("plan.days.stepper.") + way);
        }
    }

    void switchTo(const QString& mode) {
        const qint64 waited = WindowSupport::keptWaiting();
        QElapsedTimer clock;
        clock.start();
        openMode(mode);
        took_.push_back(clock.elapsed() - (WindowSupport::keptWaiting() - waited));
    }

    int moment_ = 0;            ///< In milliseconds.
    std::vector<qint64> took_;  ///< Each switch, in milliseconds of this thread's own.
    WindowSupport::TranscriptTools tools_;
};

}  // namespace

TEST_F(SwitchTests, AtAnyMomentOfAnyJob_BreakNothingAndTheUnseenJobsEnd) {
    const unsigned first = seed();
    std::printf("seed %u\n", first);
    SCOPED_TRACE(first);
    std::mt19937 random(first);
    const std::vector<std::pair<QString, std::function<void()>>> jobs{
        {"Offload", [this] { offload(); }},
        {"Recover", [this] { repair(); }},
        {"Recover", [this] { carve(); }},
        {"Sync", [this] { sync(); }},
        {"Transcode", [this] { transcode(); }},
        {"Transcript", [this] { transcribe(); }},
        {"Plan", [this] { plan(); }}};
    openWindow();
    for (int i = 0; i < switches(); ++i) {
        const auto& [mode, job] = jobs[random() % jobs.size()];
        // Also a press on the mode that shows: it changes nothing.
        driver_->press("mode." + mode);
        switchTo(mode == "Plan" ? "Transcript" : "Plan");
        switchTo(mode);
        moment_ = static_cast<int>(random() % 400);
        job();
        QTest::qWait(static_cast<int>(random() % 120));
    }
    ASSERT_FALSE(took_.empty());
    std::ranges::sort(took_);
    std::printf("%zu switches: %lld ms each, %lld at most\n", took_.size(), took_[took_.size() / 2],
                took_.back());
    EXPECT_LT(took_[took_.size() / 2], longestSwitch);
    openMode("Plan");
    for (const char* name : {"card", "broken", "day", "clip.mov"}) {
        const InUse::Use erase{place(name), InUse::Purpose::erasing};
        driver_->waitFor(
            std::string("the end of what reads ") + name,
            [&] { return InUse::shared().objection(erase).isEmpty(); }, 300'000);
    }
    const InUse::Use carve{place("carved/carved_001"), InUse::Purpose::writing};
    driver_->waitFor(
        "the end of the carves", [&] { return InUse::shared().objection(carve).isEmpty(); },
        300'000);
    for (const char* name :
         {"drive", "repaired", "carved", "synced", "transcoded", "transcribed"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(place(name))) {
            EXPECT_FALSE(entry.is_regular_file() && entry.file_size() == 0) << entry.path();
        }
    }
    EXPECT_TRUE(driver_->isShown("plan.page"));
}
