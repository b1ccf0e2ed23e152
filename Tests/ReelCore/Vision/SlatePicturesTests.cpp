#include "DrawnSlate.h"
#include "ReelCore/Vision/SlateParser.h"
#include "ReelCore/Vision/SlateReader.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <filesystem>
#include <iostream>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using Design = DrawnSlate::Design;
using Field = std::optional<std::string> SlateInfo::*;

constexpr const char* house = "/usr/share/doc/opencv-doc/examples/data/home.jpg";
constexpr const char* street = "/usr/share/doc/opencv-doc/examples/data/leuvenA.jpg";
constexpr const char* coffee = "/usr/lib/python3/dist-packages/skimage/data/coffee.png";
constexpr const char* level = "190,40 1090,40 1090,680 190,680";
constexpr const char* hand = "../truetype/humor-sans/Humor-Sans.ttf";

const SlateInfo harbor{"NIGHT HARBOR", "A004",       "12A", "3", "J. MORALES",
                       "K. LIND",      "2026-11-21", "24",  {}};
const SlateInfo road{"THE LONG ROAD", "B012",        "47", "11", "MARIA STEIN",
                     "TOM WEBER",     "14 MAR 2025", "25", {}};
const SlateInfo summer{"RED SUMMER", "A101",       "8C",    "2", "P. OKAFOR",
                       "L. HANSEN",  "03/07/2024", "23.98", {}};

const std::vector<Field> all{&SlateInfo::production, &SlateInfo::roll,     &SlateInfo::scene,
                             &SlateInfo::take,       &SlateInfo::director, &SlateInfo::camera,
                             &SlateInfo::date,       &SlateInfo::fps};

struct Case {
    DrawnSlate slate;
    SlateInfo fields;
    std::vector<Field> visible = all;
};

const std::vector<Case> cases{
    {{"white", Design::cells, level, house}, harbor},
    {{.name = "black", .corners = level, .background = coffee, .ink = "white", .paper = "black"},
     road},
    {{.name = "noisy",
      .corners = level,
      .background = street,
      .effects = {"-attenuate", "0.6", "+noise", "Gaussian"}},
     summer},
    {{"tilted", Design::cells, "230,20 1110,145 1020,700 140,600", house}, road},
    {{"perspective", Design::cells, "250,60 1060,130 1000,640 180,690", coffee}, summer},
    {{"small", Design::cells, "450,180 900,190 895,510 445,500", street}, harbor},
    {{"half out on the right", Design::cells, "620,40 1520,40 1520,680 620,680", house},
     harbor,
     {&SlateInfo::production, &SlateInfo::scene, &SlateInfo::take, &SlateInfo::director,
      &SlateInfo::camera, &SlateInfo::fps}},
    {{"half out below", Design::cells, "190,330 1090,330 1090,970 190,970", street},
     road,
     {&SlateInfo::production, &SlateInfo::roll, &SlateInfo::scene, &SlateInfo::take,
      &SlateInfo::director}},
    {{"lines", Design::lines, level, coffee}, summer},
    {{"columns", Design::columns, level, street}, road},
    {{"tilted columns", Design::columns, "300,60 1080,150 1020,690 230,600", coffee}, harbor},
    {{"table", Design::table, "240,90 1080,40 1100,650 260,690", coffee}, road},
    {{.name = "blurred table",
      .design = Design::table,
      .corners = "300,120 960,120 960,600 300,600",
      .background = house,
      .effects = {"-blur", "0x1.2"}},
     harbor},
    {{.name = "black, tilted and noisy",
      .corners = "240,110 1060,50 1090,620 280,680",
      .background = street,
      .ink = "white",
      .paper = "black",
      .effects = {"-attenuate", "0.4", "+noise", "Gaussian"}},
     summer},
    {{.name = "dim",
      .corners = level,
      .background = house,
      .effects = {"-modulate", "45", "-attenuate", "0.3", "+noise", "Gaussian"}},
     harbor},
    {{.name = "by a casual hand",
      .corners = level,
      .background = house,
      .font = hand,
      .ink = "#202080",
      .paper = "#f4f2ea"},
     harbor},
};

/// The slate in the first second and a half of a clip, read as the transcript does.
SlateInfo readThroughAClip(const SlateReader& reader, const Case& one, const URL& folder) {
    const URL picture = folder / "frame.png";
    const URL clip = folder / "clip.mp4";
    drawFrame(one.slate, one.fields, picture);
    TestSupport::outputOf(
        "ffmpeg", {"-v", "error", "-y", "-loop", "1", "-i", picture.native(), "-t", "1.5", "-r",
                   "10", "-c:v", "libx264", "-crf", "20", "-pix_fmt", "yuv420p", clip.native()});
    return reader.read(clip, 10.0, 8, [] { return false; }).value_or(SlateInfo());
}

TEST(SlatePictures, DrawnSlates_GiveNearlyAllTheirFields) {
    if (const auto missing = slatesMissing(); !missing.empty()) GTEST_SKIP() << missing;
    for (const char* picture : {house, street, coffee}) {
        if (!std::filesystem::exists(picture)) GTEST_SKIP() << "needs " << picture;
    }
    const TestSupport::TemporaryFolder folder;
    const SlateReader reader;
    std::size_t fields = 0;
    std::size_t right = 0;
    for (const Case& one : cases) {
        const SlateInfo read = readThroughAClip(reader, one, folder.path());
        for (const Field field : one.visible) {
            ++fields;
            if (read.*field == one.fields.*field) {
                ++right;
            } else {
                std::cout << one.slate.name << ": \"" << (read.*field).value_or("nothing")
                          << "\" for \"" << *(one.fields.*field) << "\"\n";
            }
        }
    }
    std::cout << right << " of " << fields << " fields of " << cases.size() << " slates\n";
    RecordProperty("right", static_cast<int>(right));
    EXPECT_GE(cases.size(), 12U);
    EXPECT_GE(static_cast<double>(right), 0.95 * static_cast<double>(fields));
}

TEST(SlatePictures, SlateBesideALargerBoardWithMoreToRead_IsWhatIsRead) {
    if (const auto missing = slatesMissing(); !missing.empty()) GTEST_SKIP() << missing;
    const TestSupport::TemporaryFolder folder;
    const URL picture = folder.path() / "boards.png";
    TestSupport::outputOf("convert",
                          {"-size",
                           "1280x720",
                           "xc:gray30",
                           "-fill",
                           "white",
                           "-draw",
                           "rectangle 60,60 900,420 rectangle 700,470 1240,690",
                           "-fill",
                           "black",
                           "-font",
                           "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
                           "-pointsize",
                           "34",
                           "-annotate",
                           "+100+120",
                           "THE QUICK BROWN FOX JUMPS OVER\n\nSEVEN LAZY DOGS AND RUNS ALONG\n\n"
                           "EVERY RIVER THAT IT CAN FIND",
                           "-pointsize",
                           "40",
                           "-annotate",
                           "+730+530",
                           "SCENE: 12A\nTAKE: 3\nROLL: A004",
                           picture.native()});

    EXPECT_EQ(VisionAnalyzer().recognizeText(*FrameGrabber::loadCGImage(picture)),
              (std::vector<std::string>{"SCENE: 12A", "TAKE: 3", "ROLL: A004"}));
}

TEST(SlatePictures, PicturesWithoutASlate_GiveNone) {
    const TestSupport::TemporaryFolder folder;
    for (const char* picture : {house, street, coffee}) {
        if (!std::filesystem::exists(picture)) GTEST_SKIP() << "needs " << picture;
        const auto image = FrameGrabber::loadCGImage(picture);
        ASSERT_TRUE(image);
        EXPECT_EQ(SlateParser::parse(VisionAnalyzer().recognizeText(*image)).fieldCount(), 0)
            << picture;
    }
}

}  // namespace

}  // namespace ReelCore
