#include "ReelCore/Vision/Detector.h"

#include "DetectorModels.h"
#include "FakeDetector.h"
#include "ReelCore/Vision/ClassicDetectors.h"
#include "ReelCore/Vision/DetectedBoxes.h"
#include "ReelCore/Vision/NeuralDetectors.h"
#include "Support/FolderTree.h"

#include <array>
#include <filesystem>
#include <limits>
#include <memory>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

const StillImage grey = plainPicture(320, 240, {128, 128, 128});

class DetectorModelFiles : public testing::Test {
protected:
    URL write(const std::string& bytes) const {
        TestSupport::writeFile(folder_.path() / "model.onnx", bytes);
        return folder_.path() / "model.onnx";
    }

    void expectUnusable(const URL& model) const {
        EXPECT_EQ(loadBlazeFace(model), nullptr) << model;
        EXPECT_EQ(loadNanoDet(model), nullptr) << model;
    }

    const TestSupport::TemporaryFolder folder_;
};

TEST_F(DetectorModelFiles, WhatIsNoNet_CountsAsMissing) {
    expectUnusable(folder_.path() / "missing.onnx");
    expectUnusable(folder_.path());
    expectUnusable(write(""));
    expectUnusable(write("onnx"));
    expectUnusable(write(TestSupport::noise(100'000)));
}

TEST_F(DetectorModelFiles, FileTooLargeForANet_IsNotRead) {
    const URL model = write("");
    std::filesystem::resize_file(model, std::uintmax_t{1} << 40U);

    expectUnusable(model);
}

TEST_F(DetectorModelFiles, BrokenModels_LeaveOpenCVsDetectors) {
    TestSupport::writeFile(folder_.path() / "blazeface.onnx", TestSupport::noise(5'000));
    TestSupport::writeFile(folder_.path() / "nanodet.onnx", "");

    EXPECT_TRUE(makeFaceDetector(folder_.path())->find(grey).empty());
    EXPECT_TRUE(makePersonDetector(folder_.path())->find(grey).empty());
}

TEST_F(DetectorModelFiles, NetForSomethingElse_CountsAsMissing) {
    if (const auto missing = detectorModelsMissing(); !missing.empty()) GTEST_SKIP() << missing;

    EXPECT_EQ(loadBlazeFace(detectorModels() / "nanodet.onnx"), nullptr);
    EXPECT_EQ(loadNanoDet(detectorModels() / "blazeface.onnx"), nullptr);
    EXPECT_NE(loadBlazeFace(detectorModels() / "blazeface.onnx"), nullptr);
    EXPECT_NE(loadNanoDet(detectorModels() / "nanodet.onnx"), nullptr);
}

TEST_F(DetectorModelFiles, CutModels_CountAsMissing) {
    if (const auto missing = detectorModelsMissing(); !missing.empty()) GTEST_SKIP() << missing;

    for (const char* name : {"blazeface.onnx", "nanodet.onnx"}) {
        const std::string model = TestSupport::readFile(detectorModels() / name);
        for (int part = 1; part < 8; ++part) {
            expectUnusable(
                write(model.substr(0, model.size() * static_cast<std::size_t>(part) / 8)));
        }
        expectUnusable(write(model.substr(0, model.size() - 1)));
    }
}

TEST_F(DetectorModelFiles, ModelsWithAWrongByte_CountAsMissing) {
    if (const auto missing = detectorModelsMissing(); !missing.empty()) GTEST_SKIP() << missing;
    const std::string model = TestSupport::readFile(detectorModels() / "blazeface.onnx");
    const auto expectUnusableWith = [&](std::size_t offset, int value) {
        std::string wrong = model;
        wrong.at(offset) = static_cast<char>(value);
        expectUnusable(write(wrong));
    };

    for (std::size_t i = 0; i < 30; ++i) {
        for (const std::size_t offset : {i * 7, model.size() * i / 30}) {
            expectUnusableWith(offset, model.at(offset) ^ 0x55);
        }
    }
    // With these OpenCV's importer ends the process.
    for (const auto& [offset, value] : {std::pair(78039, 196),
                                        {55683, 188},
                                        {3092, 233},
                                        {47577, 140},
                                        {32427, 1},
                                        {6600, 181}}) {
        expectUnusableWith(static_cast<std::size_t>(offset), value);
    }
}

TEST(Detector, BoxesThatAreNotFinite_AreNone) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {nan, infinity, -infinity}) {
        for (std::size_t i = 0; i < 4; ++i) {
            std::array box{10.0, 10.0, 20.0, 20.0};
            box.at(i) = odd;
            DetectedBoxes boxes(0.5F, 0.5F);
            boxes.add({box[0], box[1], box[2], box[3]}, 1.0F);
            boxes.add({10, 20, 30, 40}, 0.9F);
            EXPECT_EQ(boxes.within({100, 100}), (Boxes{{0.1, 0.4, 0.3, 0.4}})) << odd << i;
        }
    }
}

TEST(Detector, PicturesOfAllShapes_AreLookedAt) {
    std::vector<std::unique_ptr<Detector>> detectors;
    detectors.push_back(loadFaceCascade());
    detectors.push_back(makePedestrianDetector());
    if (detectorModelsMissing().empty()) {
        detectors.push_back(makeFaceDetector(detectorModels()));
        detectors.push_back(makePersonDetector(detectorModels()));
    }
    for (const auto& detector : detectors) {
        ASSERT_TRUE(detector);
        for (const auto& [width, height] :
             {std::pair(1, 1), {1, 4000}, {4000, 1}, {3, 2}, {64, 128}, {63, 128}}) {
            for (const NormalizedRect& one :
                 detector->find(plainPicture(width, height, {40, 90, 20}))) {
                EXPECT_GE(one.x, 0.0);
                EXPECT_GE(one.y, 0.0);
                EXPECT_LE(one.x + one.width, 1.0 + 1e-9);
                EXPECT_LE(one.y + one.height, 1.0 + 1e-9);
            }
        }
    }
}

}  // namespace

}  // namespace ReelCore
