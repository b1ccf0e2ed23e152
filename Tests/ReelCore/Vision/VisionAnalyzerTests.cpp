#include "ReelCore/Vision/VisionAnalyzer.h"

#include "DrawnSlate.h"
#include "FakeDetector.h"
#include "ReelCore/Vision/FrameGrabber.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"

#include <thread>

#include <gtest/gtest.h>
#include <opencv2/core/utility.hpp>

namespace ReelCore {

namespace {

constexpr NormalizedRect whole{0, 0, 1, 1};
const StillImage grey = plainPicture(8, 8, {128, 128, 128});

/// 100 by 100 pixels of black, where a rectangle is blue.
StillImage blueIn(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom) {
    StillImage image = plainPicture(100, 100, {0, 0, 0});
    for (std::int64_t y = top; y < bottom; ++y) {
        for (std::int64_t x = left; x < right; ++x) {
            image.pixels.at(static_cast<std::size_t>((y * 100 + x) * 3)) = 255;
        }
    }
    return image;
}

std::optional<std::string> clothingOf(const NormalizedRect& person, const StillImage& image) {
    return analyzerThatFinds({{}}, {{person}}).analyzePeople(image).clothingColor;
}

TEST(VisionAnalyzer, FaceCount_IsTheNumberOfFaces) {
    EXPECT_EQ(analyzerThatFinds({{}}, {{whole}}).faceCount(grey), 0);
    EXPECT_EQ(analyzerThatFinds({{whole, whole}}, {{}}).faceCount(grey), 2);
}

TEST(VisionAnalyzer, PeopleInFrame_AreTheLargerNumber) {
    EXPECT_EQ(analyzerThatFinds({{}}, {{}}).peopleInFrame(grey), 0);
    EXPECT_EQ(analyzerThatFinds({{whole}}, {{}}).peopleInFrame(grey), 1);
    EXPECT_EQ(analyzerThatFinds({{}}, {{whole}}).peopleInFrame(grey), 1);
    EXPECT_EQ(analyzerThatFinds({{whole, whole}}, {{whole, whole, whole}}).peopleInFrame(grey), 3);
    EXPECT_EQ(analyzerThatFinds({{whole, whole}}, {{whole}}).peopleInFrame(grey), 2);
}

TEST(VisionAnalyzer, AnalyzePeople_CountsFacesAndPeopleApart) {
    const auto analysis = analyzerThatFinds({{whole, whole, whole}}, {{whole}}).analyzePeople(grey);

    EXPECT_EQ(analysis.count, 1);
    EXPECT_EQ(analysis.faceCount, 3);
    EXPECT_EQ(analysis.clothingColor, "grey");
}

TEST(VisionAnalyzer, FacesWithoutPeople_HaveNoClothing) {
    EXPECT_EQ(analyzerThatFinds({{whole}}, {{}}).analyzePeople(grey),
              (VisionAnalyzer::PersonAnalysis{0, 1, std::nullopt}));
}

TEST(VisionAnalyzer, Clothing_IsTheTallestPersonsAndTheFirstOfEquals) {
    const StillImage halves = blueIn(0, 0, 50, 100);
    const NormalizedRect left{0, 0, 0.5, 0.8};
    const NormalizedRect right{0.5, 0, 0.5, 0.8};
    const NormalizedRect tall{0.5, 0, 0.5, 0.9};

    const auto clothing = [&](const Boxes& people) {
        return analyzerThatFinds({{}}, {people}).analyzePeople(halves).clothingColor;
    };
    EXPECT_EQ(clothing({left, right}), "blue");
    EXPECT_EQ(clothing({right, left}), "black");
    EXPECT_EQ(clothing({left, tall}), "black");
}

TEST(VisionAnalyzer, Torso_IsTheMiddleHalfFrom45To70PercentAboveTheFeet) {
    const StillImage torso = blueIn(25, 30, 75, 55);
    EXPECT_EQ(VisionAnalyzer::averageColor(torso)->b, 32.0 / 255.0);

    EXPECT_EQ(clothingOf(whole, torso), "blue");
    // One pixel less on a side leaves 2 or 4 percent of black, seen at the edge of "dark blue".
    const StillImage lower = blueIn(25, 55, 75, 100);
    EXPECT_EQ(clothingOf(whole, lower), "black");
    EXPECT_EQ(clothingOf(whole, blueIn(25, 0, 75, 30)), "black");
    EXPECT_EQ(clothingOf(whole, blueIn(0, 0, 25, 100)), "black");
    EXPECT_EQ(clothingOf(whole, blueIn(75, 0, 100, 100)), "black");
}

TEST(VisionAnalyzer, Torso_IsRoundedOutward) {
    // From 25.5 to 26.5 across and from 72.25 to 74.75 down.
    const NormalizedRect person{0.25, 0.24, 0.02, 0.1};

    EXPECT_EQ(clothingOf(person, blueIn(25, 69, 27, 72)), "blue");
    EXPECT_EQ(clothingOf(person, blueIn(26, 69, 27, 72)), "blue");
    EXPECT_EQ(clothingOf(person, blueIn(27, 0, 100, 100)), "black");
    EXPECT_EQ(clothingOf(person, blueIn(0, 0, 25, 100)), "black");
    EXPECT_EQ(clothingOf(person, blueIn(25, 72, 27, 100)), "black");
    EXPECT_EQ(clothingOf(person, blueIn(25, 0, 27, 69)), "black");
}

TEST(VisionAnalyzer, TorsoOfLessThanTwoPixels_HasNoColourAndThePersonCounts) {
    const auto analysis = analyzerThatFinds({{}}, {{{0, 0, 1, 0.04}}}).analyzePeople(grey);
    EXPECT_EQ(analysis, (VisionAnalyzer::PersonAnalysis{1, 0, std::nullopt}));

    EXPECT_EQ(clothingOf({0, 0, 0.012, 1}, plainPicture(100, 100, {255, 0, 0})), std::nullopt);
    EXPECT_EQ(clothingOf({0.01, 0, 0.02, 1}, plainPicture(100, 100, {255, 0, 0})), "blue")
        << "from 1.5 to 2.5 is two whole pixels";
}

TEST(VisionAnalyzer, TorsoPartlyBeyondThePicture_IsCutAtItsEdge) {
    const StillImage blue = plainPicture(100, 100, {255, 0, 0});

    EXPECT_EQ(clothingOf({-0.5, -0.5, 1, 1}, blue), "blue");
    EXPECT_EQ(clothingOf({0.5, 0.5, 1, 1}, blue), "blue");
    EXPECT_EQ(clothingOf({2, 2, 1, 1}, blue), std::nullopt);
    EXPECT_EQ(clothingOf({-3, -3, 1, 1}, blue), std::nullopt);
}

TEST(VisionAnalyzer, AverageColor_IsTheMeanOfAllPixelsAsAPixelHoldsIt) {
    const StillImage image{2, 2, {0, 51, 255, 0, 51, 255, 0, 51, 0, 101, 51, 0}};

    const auto color = VisionAnalyzer::averageColor(image);

    ASSERT_TRUE(color);
    EXPECT_DOUBLE_EQ(color->r, 128.0 / 255.0) << "of 127.5";
    EXPECT_DOUBLE_EQ(color->g, 51.0 / 255.0);
    EXPECT_DOUBLE_EQ(color->b, 25.0 / 255.0) << "of 25.25";
}

TEST(VisionAnalyzer, ClothingAtABoundary_IsNamedByTheWholePixelValue) {
    StillImage image = plainPicture(100, 100, {209, 209, 209});
    for (std::size_t i = 0; i < image.pixels.size(); i += 12) {
        for (std::size_t channel = 0; channel < 3; ++channel) image.pixels.at(i + channel) = 210;
    }

    EXPECT_EQ(clothingOf(whole, image), "grey") << "0.8205 is 209 of 255, which is below 0.82";
}

TEST(VisionAnalyzer, OneThread_IsAllThatOpenCVMayTake) {
    if (cv::getNumberOfCPUs() < 2) GTEST_SKIP() << "needs two processors";
    const VisionAnalyzer analyzer;

    EXPECT_EQ(cv::getNumThreads(), 1);
}

TEST(VisionAnalyzer, LettersBesideDigits_StayWhereNoNumberIsLabelled) {
    if (const auto missing = slatesMissing(); !missing.empty()) GTEST_SKIP() << missing;
    const TestSupport::TemporaryFolder folder;
    const std::vector<std::string> texts{"PROD: MI6", "TITLE: CO2"};
    drawText(texts, folder.path() / "text.png");

    EXPECT_EQ(
        VisionAnalyzer().recognizeText(*FrameGrabber::loadCGImage(folder.path() / "text.png")),
        texts);
}

TEST(VisionAnalyzer, MissingTextData_AreLookedForOnce) {
    if (const auto missing = slatesMissing(); !missing.empty()) GTEST_SKIP() << missing;
    const TestSupport::TemporaryFolder folder;
    drawText({"SCENE 12"}, folder.path() / "text.png");
    const StillImage image = *FrameGrabber::loadCGImage(folder.path() / "text.png");
    const VisionAnalyzer analyzer;
    {
        const TestSupport::EnvironmentVariable empty("TESSDATA_PREFIX", folder.path().native());
        EXPECT_TRUE(analyzer.recognizeText(image).empty());
    }

    EXPECT_TRUE(analyzer.recognizeText(image).empty());
    EXPECT_EQ(VisionAnalyzer().recognizeText(image), std::vector<std::string>{"SCENE 12"});
}

TEST(VisionAnalyzer, PicturesThatAreNone_ShowNothing) {
    for (const StillImage& image :
         {StillImage{}, StillImage{2, 2, {1, 2, 3}}, StillImage{-1, -1, {1, 2, 3}}}) {
        EXPECT_EQ(VisionAnalyzer::averageColor(image), std::nullopt);
        EXPECT_EQ(VisionAnalyzer().faceCount(image), 0);
        EXPECT_EQ(VisionAnalyzer().peopleInFrame(image), 0);
        EXPECT_EQ(VisionAnalyzer().analyzePeople(image), VisionAnalyzer::PersonAnalysis());
        EXPECT_TRUE(VisionAnalyzer().recognizeText(image).empty());
        EXPECT_EQ(analyzerThatCounts({1}).peopleInFrame(image), 0);
    }
}

TEST(VisionAnalyzer, OnePixel_ShowsNothing) {
    const StillImage pixel{1, 1, {1, 2, 3}};

    EXPECT_EQ(VisionAnalyzer().analyzePeople(pixel), VisionAnalyzer::PersonAnalysis());
    EXPECT_TRUE(VisionAnalyzer().recognizeText(pixel).empty());
}

TEST(VisionAnalyzer, DetectorsThatFail_FindNothing) {
    EXPECT_EQ(analyzerThatFails().faceCount(grey), 0);
    EXPECT_EQ(analyzerThatFails().peopleInFrame(grey), 0);
    EXPECT_EQ(analyzerThatFails().analyzePeople(grey), VisionAnalyzer::PersonAnalysis());
}

TEST(VisionAnalyzer, Copies_ShareTheirDetectors) {
    const VisionAnalyzer first = analyzerThatCounts({1, 2, 3});
    const VisionAnalyzer second = first;

    EXPECT_EQ(first.peopleInFrame(grey), 1);
    EXPECT_EQ(second.peopleInFrame(grey), 2);
    EXPECT_EQ(first.peopleInFrame(grey), 3);
}

TEST(VisionAnalyzer, SeveralThreads_WaitForEachOther) {
    const VisionAnalyzer shared;
    std::vector<std::thread> threads;
    std::vector<std::int64_t> counts(4, -1);
    for (std::int64_t& count : counts) {
        threads.emplace_back([&] {
            count = shared.peopleInFrame(plainPicture(64, 64, {9, 9, 9}));
        });
    }
    for (std::thread& one : threads) one.join();

    EXPECT_EQ(counts, std::vector<std::int64_t>(4, 0));
}

}  // namespace

}  // namespace ReelCore
