#include "OffloadFixture.h"
#include "ReelCore/Platform/File.h"
#include "Window/LoopWatch.h"

using WindowSupport::longestBlockOf;
using WindowSupport::OffloadFixture;

namespace {

#if defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
constexpr qint64 longestBlock = 50;
constexpr int filesInAFolder = 1'000;
#else
// A debug or sanitized build is that much slower, and only shows that nothing goes wrong.
constexpr qint64 longestBlock = 1'000;
constexpr int filesInAFolder = 100;
#endif

/// In memory, so that the files come faster than any drive could give them.
class LargeCardTests : public OffloadFixture {
protected:
    LargeCardTests() : memory_("/dev/shm/keldo-large-" + std::to_string(::getpid())) {
        for (int folder = 0; folder < 100; ++folder) {
            const ReelCore::URL path = memory_ / "card" / std::to_string(folder);
            std::filesystem::create_directories(path);
            for (int i = 0; i < filesInAFolder; ++i)
                ReelCore::File::create(path / std::to_string(i));
        }
        TestSupport::writeFile(memory_ / "card" / "last", "bytes, so that there is progress");
        TestSupport::writeFile(memory_ / "card" / "0" / "first", "bytes");
        std::filesystem::create_directories(memory_ / "drive");
    }
    ~LargeCardTests() override {
        driver_.reset();
        std::filesystem::remove_all(memory_);
    }

    ReelCore::URL memory_;
};

/// Many files that a drive gives back wrong; fewer, as each goes through a file system's server.
class ManyFailuresTests : public OffloadFixture {
protected:
    ManyFailuresTests() {
        for (int i = 0; i < 10 * filesInAFolder; ++i) {
            TestSupport::writeFile(many() / std::to_string(i), "picture");
        }
    }

    ReelCore::URL many() const { return folder_.path() / "many"; }
};

}  // namespace

TEST_F(LargeCardTests, AHundredThousandFiles_NeverBlockTheWindowAndTheProgressMoves) {
    openWindow();
    QSet<QString> counts;
    QObject::connect(offload(), &keldo_app::OffloadViewModel::changed, offload(), [&] {
        if (driver_->isShown("offload.files")) counts += driver_->text("offload.files");
    });
    addDrive(memory_ / "drive");
    const qint64 longest = longestBlockOf(
        [&] {
            chooseCard(memory_ / "card");
            EXPECT_EQ(driver_->text("offload.fileCount"),
                      QString::number(100 * filesInAFolder + 2) + " files");
            driver_->press("offload.start");
            waitForStage(Stage::finished, 280'000);
            EXPECT_EQ(driver_->text("offload.verdict"), "All Files Verified");
            driver_->press("offload.new");
            driver_->waitFor("the setup",
                             [&] { return driver_->isShown("offload.source.choose"); });
        },
        longestBlock);
    EXPECT_GT(counts.size(), 20);
    EXPECT_LE(longest, longestBlock);
}

TEST_F(ManyFailuresTests, ThousandsOfFailedFiles_NeverBlockTheWindowAndAreAllListed) {
    openWindow();
    chooseCard(many());
    addDrive(faultyDrive({.flipBitAt = 0}));
    const qint64 longest = longestBlockOf(
        [&] {
            driver_->press("offload.start");
            waitForStage(Stage::finished, 280'000);
            driver_->waitFor("the list", [&] { return driver_->isShown("offload.failures.0"); });
            const int failed = driver_->find("offload.failures")->property("count").toInt();
            EXPECT_EQ(failed, 10 * filesInAFolder);
            EXPECT_EQ(driver_->text("offload.reason"),
                      QString::number(failed) + " file(s) failed verification — DO NOT format.");
            driver_->press("offload.new");
            driver_->waitFor("the setup",
                             [&] { return driver_->isShown("offload.source.choose"); });
        },
        longestBlock);
    EXPECT_LE(longest, longestBlock);
}
