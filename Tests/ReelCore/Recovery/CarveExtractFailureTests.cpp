#include "CarveExtractFixture.h"
#include "Support/FaultyFileSystem.h"
#include "Support/LoopMount.h"
#include "Support/Snapshot.h"

#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using CarveExtractFailure = CarveExtractFixture;

TEST_F(CarveExtractFailure, FindingBeyondTheImage_IsAnEmptyFile) {
    const CarveImage image(healthyMovie);
    const Finding beyond{FindingKind::movie, image.size() + 100, 20'000'000, true};

    const RepairOutcome outcome = extract(image, beyond);

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(readFile(output("carved_001.mov")), "");
}

TEST_F(CarveExtractFailure, FindingThatReachesBeyondTheImage_IsCutOutUpToItsEnd) {
    const CarveImage image(healthyMovie);

    extract(image, {FindingKind::movie, 100, 2 * carveBlock, false});

    EXPECT_EQ(readFile(output("carved_001.mov")), healthyMovie.substr(100));
}

TEST_F(CarveExtractFailure, MissingImage_IsSaid) {
    const TemporaryFolder empty;
    const URL missing = empty.path() / "card.img";

    EXPECT_EQ(
        CardCarver::extract({FindingKind::movie, 0, 10, true}, missing, output(), {}, 1),
        (RepairOutcome{missing, std::nullopt, false, "carve", "Not found: " + missing.native()}));
    EXPECT_EQ(readTree(output()), FolderTree());
}

TEST_F(CarveExtractFailure, OutputFolderThatCannotBeMade_IsSaid) {
    const CarveImage image(healthyMovie);
    writeFile(output(), "a file");

    const RepairOutcome outcome = extract(image, image.scan().at(0));

    EXPECT_EQ(outcome, carveFailure(image, outcome.detail));
    EXPECT_NE(outcome.detail.find(output().native()), std::string::npos) << outcome.detail;
    EXPECT_EQ(readFile(output()), "a file");
}

TEST_F(CarveExtractFailure, NameThatDoesNotReachTheDrive_IsSaid) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "backing");
    const FaultyFileSystem drive(folder.path() / "backing", folder.path() / "mounted",
                                 {.folderFlushError = EIO});
    const CarveImage image(healthyMovie);

    const RepairOutcome outcome =
        CardCarver::extract(image.scan().at(0), image.path(), drive.path(), {}, 1);

    EXPECT_EQ(outcome, carveFailure(image, outcome.detail));
    EXPECT_NE(outcome.detail.find("Input/output error"), std::string::npos) << outcome.detail;
}

TEST_F(CarveExtractFailure, FullDrive_IsSaidInTheSystemsWords) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 8);
    const CarveImage image(fileTypeBox() + box("moov") + box("mdat", noise(20'000'000)));

    const RepairOutcome outcome =
        CardCarver::extract(image.scan().at(0), image.path(), drive.path() / "carved", {}, 1);

    EXPECT_EQ(outcome, carveFailure(image, outcome.detail));
    EXPECT_NE(outcome.detail.find("No space left on device"), std::string::npos) << outcome.detail;
}

TEST_F(CarveExtractFailure, ReadOnlyDrive_IsSaidInTheSystemsWords) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount drive("ext4", 8);
    drive.makeReadOnly();
    const CarveImage image(healthyMovie);

    const RepairOutcome outcome =
        CardCarver::extract(image.scan().at(0), image.path(), drive.path(), {}, 1);

    EXPECT_EQ(outcome, carveFailure(image, outcome.detail));
    EXPECT_NE(outcome.detail.find("Read-only file system"), std::string::npos) << outcome.detail;
}

TEST_F(CarveExtractFailure, FolderWhoseNamesCannotBeMadeDurable_IsNoSuccess) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const CarveImage image(healthyMovie);
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(backing.path(), mountPoint.path(), {.folderFlushError = EIO});

    const RepairOutcome outcome =
        CardCarver::extract(image.scan().at(0), image.path(), drive.path(), {}, 1);

    EXPECT_EQ(outcome, carveFailure(image, outcome.detail));
    EXPECT_NE(outcome.detail.find("Input/output error"), std::string::npos) << outcome.detail;
}

TEST_F(CarveExtractFailure, DriveThatRefusesLate_IsNoSuccess) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const CarveImage image(healthyMovie);
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(backing.path(), mountPoint.path(),
                                 {.failWriteAt = 0, .writeLate = true});

    const RepairOutcome outcome =
        CardCarver::extract(image.scan().at(0), image.path(), drive.path(), {}, 1);

    EXPECT_EQ(outcome, carveFailure(image, outcome.detail));
    EXPECT_NE(outcome.detail.find("Input/output error"), std::string::npos) << outcome.detail;
}

TEST_F(CarveExtractFailure, BlockThatCannotBeRead_IsLeftOutAndWhatWasReadIsRight) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const std::string movie = fileTypeBox() + box("mdat", noise(3 * carveBlock)) + box("moov");
    const CarveImage image(movie);
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(image.folder(), mountPoint.path(),
                                 {.failReadAt = 2 * carveBlock + 4096});

    const RepairOutcome outcome =
        CardCarver::extract({FindingKind::movie, 0, std::ssize(movie), true},
                            drive.path() / "card.img", output(), {}, 1);

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.method, "carve + moov rebuild");
    EXPECT_EQ(outcome.output, output("carved_001.mov"));
    EXPECT_TRUE(readFile(output("carved_001.mov")) == movie.substr(0, 2 * carveBlock));
}

TEST_F(CarveExtractFailure, ImageUnderTheOutputsName_IsRefusedAndStays) {
    const CarveImage image(healthyMovie);
    const Finding finding = image.scan().at(0);
    std::filesystem::create_directories(output());
    std::filesystem::create_hard_link(image.path(), output("carved_001.mov"));

    EXPECT_EQ(
        extract(image, finding),
        carveFailure(image, "I/O failed: card.img would be replaced by what is made from it"));
    EXPECT_EQ(readFile(image.path()), healthyMovie);
    EXPECT_EQ(readTree(output()), (FolderTree{{"carved_001.mov", healthyMovie}}));
}

TEST_F(CarveExtractFailure, ReferenceUnderTheOutputsName_IsRefusedAndStays) {
    const CarveImage image(fileTypeBox() + box("mdat", noise(500)));
    writeTree(output(), {{"carved_001.mov", "a healthy clip"}});

    EXPECT_EQ(extract(image, image.scan().at(0), 1, output("carved_001.mov")),
              carveFailure(image,
                           "I/O failed: carved_001.mov would be replaced by what is made from it"));
    EXPECT_EQ(readTree(output()), (FolderTree{{"carved_001.mov", "a healthy clip"}}));
}

TEST_F(CarveExtractFailure, Image_IsLeftWithoutATraceByAllOfIt) {
    const CarveImage image(healthyMovie + unclosedWave(5000) + std::string(4096, '\0') +
                           fileTypeBox() + box("mdat", noise(500)));
    writeFile(image.folder() / "reference.mov", healthyMovie);
    ageAccessDates(image.folder());
    const Snapshot before = snapshotOf(image.folder());

    const auto findings = image.scan();
    ASSERT_EQ(findings.size(), 3U);
    for (std::size_t i = 0; i < findings.size(); ++i) {
        extract(image, findings[i], static_cast<std::int64_t>(i), image.folder() / "reference.mov");
    }

    EXPECT_EQ(snapshotOf(image.folder()), before);
}

}  // namespace
