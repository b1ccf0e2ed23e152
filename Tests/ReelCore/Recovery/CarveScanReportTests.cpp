#include "CarveScanFixture.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/RIFF.h"
#include "Support/Snapshot.h"

#include <set>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

std::vector<CarveProgress> progressOf(const CarveImage& image) {
    std::vector<CarveProgress> all;
    CardCarver::scan(
        image.path(), [] { return false; },
        [&](const CarveProgress& progress) { all.push_back(progress); });
    return all;
}

std::string failureOf(const URL& image) {
    try {
        CardCarver::scan(image);
    } catch (const RecoveryError& error) {
        return error.description();
    }
    return "no failure";
}

TEST(CarveScan, Progress_IsToldOnceForEachStepAndEndsAtTheTotal) {
    CarveImage image;
    image.put(100, movie());
    image.put(carveChunk + 100, movie());
    image.put(carveChunk + 5000, movie());
    image.resize(2 * carveChunk);
    const std::int64_t total = 2 * carveChunk;

    EXPECT_EQ(progressOf(image),
              (std::vector<CarveProgress>{
                  {33'488'896, total, 1}, {66'977'792, total, 3}, {total, total, 3}}));
}

TEST(CarveScan, Progress_OfASmallImageIsToldOnce) {
    EXPECT_EQ(progressOf(CarveImage(movie())),
              (std::vector<CarveProgress>{{std::ssize(movie()), std::ssize(movie()), 1}}));
}

TEST(CarveScan, Progress_StepsOverAFoundClip) {
    CarveImage image(fileTypeBox() + box("moov") + boxHeader("mdat", 50 * mebibyte));
    const std::int64_t length = std::ssize(fileTypeBox() + box("moov")) + 50 * mebibyte;
    image.resize(60 * mebibyte);

    EXPECT_EQ(progressOf(image), (std::vector<CarveProgress>{{length, 60 * mebibyte, 1},
                                                             {60 * mebibyte, 60 * mebibyte, 1}}));
}

TEST(CarveScan, Progress_OfAnImageThatEndsWithAStepHasNoMore) {
    CarveImage image;
    image.resize(carveStep);

    EXPECT_EQ(progressOf(image), (std::vector<CarveProgress>{{carveStep, carveStep, 0}}));
}

TEST(CarveScan, Progress_OfAnImageOfOneChunkGoesOnWithTheOverlap) {
    CarveImage image;
    image.resize(carveChunk);

    EXPECT_EQ(progressOf(image), (std::vector<CarveProgress>{{carveStep, carveChunk, 0},
                                                             {carveChunk, carveChunk, 0}}));
}

TEST(CarveScan, Cancelled_KeepsWhatWasFound) {
    CarveImage image(movie());
    image.put(carveChunk, movie());
    image.resize(3 * carveChunk);
    std::vector<CarveProgress> progress;

    const Findings findings = CardCarver::scan(
        image.path(), [&] { return !progress.empty(); },
        [&](const CarveProgress& one) { progress.push_back(one); });

    EXPECT_EQ(findings, (Findings{found(FindingKind::movie, 0, movie().size())}));
    EXPECT_EQ(progress, (std::vector<CarveProgress>{{carveStep, 3 * carveChunk, 1}}));
}

TEST(CarveScan, CancelledAtOnce_ReadsAndTellsNothing) {
    const CarveImage image(movie());

    EXPECT_EQ(CardCarver::scan(
                  image.path(), [] { return true; },
                  [](const CarveProgress&) { ADD_FAILURE() << "no progress was made"; }),
              Findings());
}

TEST(CarveScan, Cancel_IsPolledForEachChunk) {
    CarveImage image;
    image.resize(carveChunk + carveStep);
    std::int64_t chunks = 0;
    std::set<std::int64_t> polledAfter;

    CardCarver::scan(
        image.path(),
        [&] {
            polledAfter.insert(chunks);
            return false;
        },
        [&](const CarveProgress&) { ++chunks; });

    EXPECT_EQ(polledAfter, (std::set<std::int64_t>{0, 1, 2}));
}

TEST(CarveScan, EmptyImage_Fails) {
    EXPECT_EQ(failureOf(CarveImage().path()), "I/O failed: image is empty");
}

TEST(CarveScan, EmptyImage_FailsEvenIfItIsCancelled) {
    EXPECT_THROW(CardCarver::scan(CarveImage().path(), [] { return true; }), RecoveryError);
}

TEST(CarveScan, MissingImage_IsNotFound) {
    const TemporaryFolder folder;
    const URL missing = folder.path() / "card.img";

    EXPECT_EQ(failureOf(missing), "Not found: " + missing.native());
}

TEST(CarveScan, FolderAsImage_IsNotFound) {
    const TemporaryFolder folder;

    EXPECT_EQ(failureOf(folder.path()), "Not found: " + folder.path().native());
}

TEST(CarveScan, PipeAsImage_IsNotFoundAndKeepsNobodyWaiting) {
    const TemporaryFolder folder;
    const URL pipe = folder.path() / "card.img";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

    EXPECT_EQ(failureOf(pipe), "Not found: " + pipe.native());
}

TEST(CarveScan, LinkToAnImage_IsFollowed) {
    const CarveImage image(movie());
    const URL link = image.folder() / "link.img";
    std::filesystem::create_symlink("card.img", link);

    EXPECT_EQ(CardCarver::scan(link), (Findings{found(FindingKind::movie, 0, movie().size())}));
}

TEST(CarveScan, Image_IsLeftWithoutATrace) {
    const CarveImage image(movie() + broadcastWAV({.seconds = 0.1}));
    ageAccessDates(image.folder());
    const Snapshot before = snapshotOf(image.folder());

    EXPECT_EQ(image.scan().size(), 2U);

    EXPECT_EQ(snapshotOf(image.folder()), before);
}

TEST(CarveScan, PartThatCannotBeRead_FailsWithTheSystemsError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    CarveImage image(movie());
    image.resize(carveChunk + 4 * mebibyte);
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(image.folder(), mountPoint.path(),
                                 {.failReadAt = carveChunk + 2 * mebibyte});
    std::vector<CarveProgress> progress;

    try {
        CardCarver::scan(
            drive.path() / "card.img", [] { return false; },
            [&](const CarveProgress& one) { progress.push_back(one); });
        FAIL() << "the scan did not fail";
    } catch (const SystemError& error) {
        EXPECT_NE(error.description().find("Input/output error"), std::string::npos)
            << error.description();
    }
    EXPECT_EQ(progress.size(), 1U);
}

TEST(CarveScan, PartThatCannotBeReadWithinAFoundClip_IsSteppedOver) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    CarveImage image(fileTypeBox() + box("moov") + boxHeader("mdat", 0));
    image.resize(3 * carveChunk);
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(image.folder(), mountPoint.path(),
                                 {.failReadAt = carveChunk + mebibyte});

    EXPECT_EQ(CardCarver::scan(drive.path() / "card.img"),
              (Findings{{FindingKind::movie, 0, 3 * carveChunk, true}}));
}

}  // namespace
