#include "DetectorModels.h"
#include "ReelCore/Vision/FrameGrabber.h"
#include "ReelCore/Vision/PeopleCounter.h"
#include "ReelCore/Vision/VisionAnalyzer.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

const URL book = "/usr/share/doc/opencv-doc/examples/data";
const URL science = "/usr/lib/python3/dist-packages/skimage/data";

/// A picture, or a frame of a clip, and what a person sees in it: people of whom more than the head
/// is visible, and faces large enough to have eyes.
struct Seen {
    URL file;
    std::int64_t people;
    std::int64_t faces;
    double seconds = -1.0;
};

const std::vector<Seen> seen{
    {science / "astronaut.png", 1, 1},
    {science / "camera.png", 1, 1},
    {book / "messi5.jpg", 1, 1},
    {book / "basketball1.png", 2, 1},
    {book / "basketball2.png", 2, 1},
    {book / "left06.jpg", 1, 1},
    {book / "right06.jpg", 1, 1},
    {book / "left01.jpg", 1, 0},
    {book / "Megamind.avi", 2, 2, 0.5},
    {book / "Megamind.avi", 2, 2, 3.0},
    {book / "Megamind.avi", 1, 1, 6.0},
    {book / "Megamind.avi", 1, 1, 9.0},
    {book / "vtest.avi", 6, 0, 5.0},
    {book / "vtest.avi", 7, 0, 20.0},
    {book / "vtest.avi", 3, 0, 40.0},
    {book / "vtest.avi", 6, 0, 60.0},
    {book / "vtest.avi", 8, 0, 75.0},
    {science / "coffee.png", 0, 0},
    {science / "chelsea.png", 0, 0},
    {science / "rocket.jpg", 0, 0},
    {science / "motorcycle_left.png", 0, 0},
    {book / "aero1.jpg", 0, 0},
    {book / "apple.jpg", 0, 0},
    {book / "baboon.jpg", 0, 0},
    {book / "board.jpg", 0, 0},
    {book / "building.jpg", 0, 0},
    {book / "butterfly.jpg", 0, 0},
    {book / "fruits.jpg", 0, 0},
    {book / "home.jpg", 0, 0},
    {book / "leuvenA.jpg", 0, 0},
    {book / "stuff.jpg", 0, 0},
    {book / "starry_night.jpg", 0, 0},
    {book / "licenseplate_motion.jpg", 0, 0},
    {book / "aloeL.jpg", 0, 0},
    {book / "squirrel_cls.jpg", 0, 0},
    {book / "chicky_512.png", 0, 0},
};

std::string picturesMissing() {
    for (const Seen& one : seen) {
        if (!std::filesystem::exists(one.file)) return "needs " + one.file.native();
    }
    return {};
}

StillImage pictureOf(const Seen& one, const URL& folder) {
    const auto image = one.seconds < 0.0 ? FrameGrabber::loadCGImage(one.file)
                                         : FrameGrabber().still(one.file, one.seconds, folder);
    if (!image) throw std::runtime_error("no picture of " + one.file.native());
    return *image;
}

/// How far counting came: pictures with the right number, and things found rightly and wrongly.
struct Tally {
    double pictures = 0;
    double rightPictures = 0;
    double right = 0;
    double wrong = 0;

    void add(const URL& file, const char* kind, std::int64_t found, std::int64_t truth) {
        ++pictures;
        if (found == truth) ++rightPictures;
        right += static_cast<double>(std::min(found, truth));
        wrong += static_cast<double>(std::abs(found - truth));
        if (found != truth) {
            std::cout << file.filename() << ": " << found << " " << kind << ", not " << truth
                      << "\n";
        }
    }

    double shareOfPictures() const { return rightPictures / pictures; }
    double shareOfFinds() const { return right / (right + wrong); }
};

struct Tallies {
    Tally people;
    Tally inFrame;  ///< People or faces, whichever are more.
    Tally faces;
};

Tallies tallied(const VisionAnalyzer& vision) {
    const TestSupport::TemporaryFolder folder;
    Tallies tallies;
    for (const Seen& one : seen) {
        const auto found = vision.analyzePeople(pictureOf(one, folder.path()));
        tallies.people.add(one.file, "people", found.count, one.people);
        tallies.inFrame.add(one.file, "in frame", std::max(found.count, found.faceCount),
                            one.people);
        tallies.faces.add(one.file, "faces", found.faceCount, one.faces);
    }
    for (const auto& [tally, kind] : {std::pair(tallies.people, "people"),
                                      {tallies.inFrame, "in frame"},
                                      {tallies.faces, "faces"}}) {
        std::cout << kind << ": " << tally.rightPictures << " of " << tally.pictures
                  << " pictures; " << tally.right << " found, " << tally.wrong << " wrong\n";
    }
    return tallies;
}

/// A clip of pictures that stand for two seconds each.
void makeClip(const std::vector<URL>& pictures, const URL& clip) {
    std::vector<std::string> arguments{"-v", "error"};
    std::string filter;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        arguments.insert(arguments.end(),
                         {"-loop", "1", "-t", "2", "-r", "10", "-i", pictures[i].native()});
        const std::string n = std::to_string(i);
        filter += "[" + n +
                  "]scale=640:480:force_original_aspect_ratio=decrease,pad=640:480:-1:-1,"
                  "setsar=1,format=yuv420p[v" +
                  n + "];";
    }
    for (std::size_t i = 0; i < pictures.size(); ++i) filter += "[v" + std::to_string(i) + "]";
    filter += "concat=n=" + std::to_string(pictures.size());
    arguments.insert(arguments.end(),
                     {"-filter_complex", filter, "-c:v", "libx264", clip.native()});
    TestSupport::outputOf("ffmpeg", arguments);
}

std::int64_t countIn(const std::vector<URL>& pictures, const VisionAnalyzer& vision) {
    const TestSupport::TemporaryFolder folder;
    makeClip(pictures, folder.path() / "clip.mp4");
    const auto estimate =
        PeopleCounter{{}, vision}.estimate(folder.path() / "clip.mp4", 10, 2, [] { return false; });
    return estimate ? estimate->count : 0;
}

/// A picture in which the astronaut stands as often as told.
URL crowd(std::int64_t people, const URL& folder) {
    const URL picture = folder / ("crowd" + std::to_string(people) + ".png");
    std::vector<std::string> arguments;
    for (std::int64_t i = 0; i < people; ++i)
        arguments.push_back((science / "astronaut.png").native());
    arguments.insert(arguments.end(), {"+append", picture.native()});
    TestSupport::outputOf("convert", arguments);
    return picture;
}

/// The astronaut in a suit of another colour: all hues turned on; 100 leaves them.
URL recoloured(int hue, const URL& folder) {
    const URL picture = folder / "recoloured.png";
    TestSupport::outputOf("convert", {(science / "astronaut.png").native(), "-modulate",
                                      "100,100," + std::to_string(hue), picture.native()});
    return picture;
}

/// The analyzer of a machine without the nets.
VisionAnalyzer analyzerWithoutModels() {
    return {makeFaceDetector("/missing"), makePersonDetector("/missing")};
}

class PeoplePictures : public testing::Test {
protected:
    void SetUp() override {
        if (const auto missing = picturesMissing(); !missing.empty()) GTEST_SKIP() << missing;
    }

    const TestSupport::TemporaryFolder folder_;
};

class PeoplePicturesByNets : public PeoplePictures {
protected:
    void SetUp() override {
        if (const auto missing = detectorModelsMissing(); !missing.empty()) GTEST_SKIP() << missing;
        PeoplePictures::SetUp();
    }

    const VisionAnalyzer vision_{makeFaceDetector(detectorModels()),
                                 makePersonDetector(detectorModels())};
};

TEST_F(PeoplePicturesByNets, NinePicturesOfTen_AreCountedRight) {
    const auto [people, inFrame, faces] = tallied(vision_);

    EXPECT_GE(people.shareOfPictures(), 0.85);
    EXPECT_GE(inFrame.shareOfPictures(), 0.9);
    EXPECT_GE(inFrame.shareOfFinds(), 0.9);
    EXPECT_GE(people.shareOfFinds(), 0.9);
    EXPECT_GE(faces.shareOfPictures(), 0.9);
    EXPECT_GE(faces.shareOfFinds(), 0.9);
}

TEST_F(PeoplePicturesByNets, ClipsOfOneTwoAndThreePeople_AreCountedRight) {
    EXPECT_EQ(countIn({science / "astronaut.png"}, vision_), 1);
    EXPECT_EQ(countIn({science / "camera.png", book / "home.jpg"}, vision_), 1);
    EXPECT_EQ(countIn({book / "basketball1.png"}, vision_), 2);
    EXPECT_EQ(countIn({science / "astronaut.png", book / "basketball2.png"}, vision_), 2);
    EXPECT_EQ(countIn({crowd(3, folder_.path())}, vision_), 3);
    EXPECT_EQ(countIn({book / "home.jpg"}, vision_), 0);
}

TEST_F(PeoplePicturesByNets, ClothesOfAKnownColour_AreNamedRight) {
    const auto clothing = [&](const URL& picture) {
        return vision_.analyzePeople(*FrameGrabber::loadCGImage(picture)).clothingColor;
    };
    EXPECT_EQ(clothing(science / "astronaut.png"), "dark orange");
    EXPECT_EQ(clothing(recoloured(160, folder_.path())), "dark green");
    EXPECT_EQ(clothing(recoloured(210, folder_.path())), "dark blue");
    EXPECT_EQ(clothing(science / "camera.png"), "black");
}

TEST_F(PeoplePictures, WithoutNets_FewerAreCountedRight) {
    const auto [people, inFrame, faces] = tallied(analyzerWithoutModels());

    EXPECT_GE(people.shareOfPictures(), 0.5);
    EXPECT_GE(inFrame.shareOfPictures(), 0.5);
    EXPECT_GE(faces.shareOfPictures(), 0.8);
}

TEST_F(PeoplePictures, ClipsWithoutNets_AreCountedWhereFacesLookAtTheCamera) {
    EXPECT_EQ(countIn({science / "astronaut.png"}, analyzerWithoutModels()), 1);
    EXPECT_EQ(countIn({book / "home.jpg"}, analyzerWithoutModels()), 0);
}

}  // namespace

}  // namespace ReelCore
