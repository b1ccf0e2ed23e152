#include "CarveExtractFixture.h"
#include "Support/KLV.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using CarveExtract = CarveExtractFixture;

TEST_F(CarveExtract, HealthyMovie_ComesBackByteForByte) {
    const CarveImage image(garbage(1000) + healthyMovie + garbage(1000));
    const Finding finding{FindingKind::movie, 1000, std::ssize(healthyMovie), true};

    EXPECT_EQ(extract(image, finding),
              (RepairOutcome{image.path(), output("carved_001.mov"), true, "carve",
                             "QuickTime/MP4 @ 0.0 MB into image (0.0 MB) — intact"}));
    EXPECT_EQ(readTree(output()), (FolderTree{{"carved_001.mov", healthyMovie}}));
}

TEST_F(CarveExtract, HealthyClipsOfEveryKind_HaveTheirExtensions) {
    const std::string mxf = mxfClip(noise(3000));
    const std::string wave = broadcastWAV({.seconds = 0.1});
    const CarveImage image(healthyMovie + mxf + wave);

    for (const Finding& finding : image.scan()) {
        const RepairOutcome outcome = extract(image, finding, finding.kind == FindingKind::mxf);
        EXPECT_TRUE(outcome.succeeded) << outcome.detail;
        EXPECT_EQ(outcome.detail, finding.label() + " — intact");
    }

    EXPECT_EQ(readTree(output()), (FolderTree{{"carved_000.mov", healthyMovie},
                                              {"carved_001.mxf", mxf},
                                              {"carved_000.wav", wave}}));
}

TEST_F(CarveExtract, Name_HasAtLeastThreeDigits) {
    const CarveImage image(healthyMovie);
    const Finding finding = image.scan().at(0);

    for (const std::int64_t index : {0, 7, 42, 999, 1000, 123'456}) extract(image, finding, index);

    std::vector<std::string> names;
    for (const auto& [name, content] : readTree(output())) names.push_back(name);
    EXPECT_EQ(names,
              (std::vector<std::string>{"carved_000.mov", "carved_007.mov", "carved_042.mov",
                                        "carved_1000.mov", "carved_123456.mov", "carved_999.mov"}));
}

TEST_F(CarveExtract, SecondTimeWithTheSameIndex_ReplacesTheFile) {
    const CarveImage image(healthyMovie);
    writeTree(output(), {{"carved_001.mov", noise(90'000)}, {"carved_002.mov", "another"}});

    extract(image, image.scan().at(0));

    EXPECT_EQ(readTree(output()),
              (FolderTree{{"carved_001.mov", healthyMovie}, {"carved_002.mov", "another"}}));
}

TEST_F(CarveExtract, LinkUnderTheOutputsName_IsReplacedAndNotFollowed) {
    const CarveImage image(healthyMovie);
    writeTree(folder(), {{"precious.mov", "day's work"}, {"carved/x", ""}});
    std::filesystem::create_symlink(folder() / "precious.mov", output("carved_001.mov"));

    EXPECT_TRUE(extract(image, image.scan().at(0)).succeeded);

    EXPECT_EQ(readFile(folder() / "precious.mov"), "day's work");
    EXPECT_FALSE(std::filesystem::is_symlink(output("carved_001.mov")));
}

TEST_F(CarveExtract, FolderUnderTheOutputsName_IsSaidAndStays) {
    const CarveImage image(healthyMovie);
    writeTree(output("carved_001.mov"), {{"inside", "kept"}});

    const RepairOutcome outcome = extract(image, image.scan().at(0));

    EXPECT_EQ(outcome, carveFailure(image, outcome.detail));
    EXPECT_NE(outcome.detail.find("Is a directory"), std::string::npos) << outcome.detail;
    EXPECT_EQ(readTree(output("carved_001.mov")), (FolderTree{{"inside", "kept"}}));
}

TEST_F(CarveExtract, OutputFolder_IsMadeWithItsParents) {
    const CarveImage image(healthyMovie);

    const RepairOutcome outcome =
        CardCarver::extract(image.scan().at(0), image.path(), folder() / "a/b/c", {}, 1);

    EXPECT_EQ(outcome.output, folder() / "a/b/c/carved_001.mov");
    EXPECT_EQ(readFile(folder() / "a/b/c/carved_001.mov"), healthyMovie);
}

TEST_F(CarveExtract, UnclosedWave_IsRepairedAndTheRawFileRemoved) {
    const std::string wave = unclosedWave(14'400);
    const CarveImage image(wave + std::string(4096, '\0'));
    const Finding finding{FindingKind::wave, 0, std::ssize(wave), false};

    EXPECT_EQ(
        extract(image, finding),
        (RepairOutcome{image.path(), output("carved_001_repaired.wav"), true,
                       "carve + WAV size fix", finding.label() + " — 0.1s of audio recovered"}));
    FolderTree written = readTree(output());
    ASSERT_EQ(written.size(), 1U);
    const std::string repaired = written.at("carved_001_repaired.wav");
    EXPECT_EQ(repaired.substr(4, 4), littleEndian(wave.size() - 8, 4));
    EXPECT_EQ(repaired.substr(40), littleEndian(14'400, 4) + std::string(14'400, 's'));
}

TEST_F(CarveExtract, SecondRepairWithTheSameIndex_TakesANewName) {
    const std::string wave = unclosedWave(14'400);
    const CarveImage image(wave);
    const Finding finding{FindingKind::wave, 0, std::ssize(wave), false};

    const RepairOutcome first = extract(image, finding);
    const RepairOutcome second = extract(image, finding);

    EXPECT_TRUE(first.succeeded && second.succeeded);
    EXPECT_NE(first.output, second.output);
    EXPECT_EQ(readTree(output()).size(), 2U);
    EXPECT_EQ(readFile(*first.output), readFile(*second.output));
}

TEST_F(CarveExtract, MovieWithoutAnIndexAndNoReference_StaysAsCutOutAndSaysWhatItNeeds) {
    const std::string movie = fileTypeBox() + box("mdat", noise(5000));
    const CarveImage image(movie);
    const Finding finding{FindingKind::movie, 0, std::ssize(movie), false};

    EXPECT_EQ(extract(image, finding),
              (RepairOutcome{image.path(), output("carved_001.mov"), false, "carve + moov rebuild",
                             "QuickTime/MP4 @ 0.0 MB into image (0.0 MB) — incomplete — A healthy "
                             "reference clip from the same camera is required: pick a healthy clip "
                             "from the same camera"}));
    EXPECT_EQ(readTree(output()), (FolderTree{{"carved_001.mov", movie}}));
}

TEST_F(CarveExtract, MissingReference_IsSaidAndTheRawFileStays) {
    const std::string movie = fileTypeBox() + box("mdat", noise(5000));
    const CarveImage image(movie);
    const Finding finding{FindingKind::movie, 0, std::ssize(movie), false};
    const URL missing = folder() / "reference.mov";

    EXPECT_EQ(extract(image, finding, 3, missing),
              (RepairOutcome{image.path(), output("carved_003.mov"), false, "carve + repair",
                             finding.label() + " — Not found: " + missing.native()}));
    EXPECT_EQ(readFile(output("carved_003.mov")), movie);
}

TEST_F(CarveExtract, HealthyClip_NeedsNoReference) {
    const CarveImage image(healthyMovie);

    EXPECT_EQ(extract(image, image.scan().at(0), 1, folder() / "missing.mov").detail,
              "QuickTime/MP4 @ 0.0 MB into image (0.0 MB) — intact");
}

TEST_F(CarveExtract, TruncatedMXF_IsSaidAndTheRawFileStays) {
    const std::string mxf = triplet(partitionKey(2), garbage(88)) +
                            triplet(essenceKey(), noise(400)) + triplet(essenceKey(), noise(400));
    const CarveImage image(mxf);

    const RepairOutcome outcome = extract(image, image.scan().at(0));

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_TRUE(outcome.method.starts_with("carve + ")) << outcome.method;
    EXPECT_EQ(outcome.output, output("carved_001.mxf"));
    EXPECT_EQ(readFile(output("carved_001.mxf")), mxf);
}

TEST_F(CarveExtract, NothingThatCouldBeRepaired_StaysAsCutOut) {
    const CarveImage image("RIFF" + littleEndian(50, 4) + "WAVE" + garbage(200));
    const Finding finding = image.scan().at(0);

    EXPECT_EQ(extract(image, finding),
              (RepairOutcome{image.path(), output("carved_001.wav"), false, "carve + —",
                             finding.label() + " — nothing to repair"}));
    EXPECT_EQ(readFile(output("carved_001.wav")).size(), 58U);
}

TEST_F(CarveExtract, OrphanRun_HasAMediaHeaderInFront) {
    const std::string run = proResFrame(1000) + proResFrame(900) + proResFrame(800);
    const CarveImage image(run);

    const RepairOutcome outcome = extract(image, image.scan().at(0));

    EXPECT_EQ(readFile(output("carved_001.mov")),
              bigEndian(1, 4) + "mdat" + bigEndian(1900 + 16, 8) + run.substr(0, 1900));
    EXPECT_EQ(outcome.method, "carve + moov rebuild");
    EXPECT_TRUE(outcome.detail.ends_with("pick a healthy clip from the same camera"))
        << outcome.detail;
}

TEST_F(CarveExtract, FindingOfLengthZero_GivesAnEmptyFile) {
    const CarveImage image(healthyMovie);
    for (const FindingKind kind : {FindingKind::movie, FindingKind::mxf, FindingKind::wave}) {
        const Finding empty{kind, 0, 0, false};
        const URL carved = output("carved_001." + std::string(outputExtension(kind)));

        EXPECT_EQ(extract(image, empty), (RepairOutcome{image.path(), carved, false, "carve + —",
                                                        empty.label() + " — nothing to repair"}));
        EXPECT_EQ(readFile(carved), "");
    }
}

TEST_F(CarveExtract, OrphanRunOfLengthZero_IsTheMediaHeaderAlone) {
    const CarveImage image(healthyMovie);

    const RepairOutcome outcome = extract(image, {FindingKind::orphanProRes, 0, 0, false});

    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(readFile(output("carved_001.mov")), bigEndian(1, 4) + "mdat" + bigEndian(16, 8));
}

TEST_F(CarveExtract, LengthOfSeveralBlocks_IsCopiedWhole) {
    const std::string movie =
        fileTypeBox() + box("moov", "index") + box("mdat", noise(2 * carveBlock + 12'345));
    const CarveImage image(garbage(7) + movie);

    EXPECT_TRUE(extract(image, {FindingKind::movie, 7, std::ssize(movie), true}).succeeded);

    EXPECT_TRUE(readFile(output("carved_001.mov")) == movie);
}

}  // namespace
