#include "ReelCore/Vision/StillImage.h"

#include "ReelCore/Vision/FrameGrabber.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <array>
#include <filesystem>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using namespace std::string_literals;
using Colour = std::array<int, 3>;

constexpr std::int64_t width = 64;
constexpr std::int64_t height = 32;

class StillImageFiles : public testing::Test {
protected:
    URL path(const std::string& name) const { return folder_.path() / name; }

    /// Red, with a green right half.
    URL makePicture(const std::string& name) const {
        TestSupport::outputOf(
            "ffmpeg", {"-v", "error", "-f", "lavfi", "-i",
                       "color=red:s=64x32,drawbox=x=32:c=lime:t=fill,format=rgb24", "-frames:v",
                       "1", "-q:v", "2", path(name).native()});
        return path(name);
    }

    std::optional<StillImage> loadBytes(const std::string& bytes) const {
        TestSupport::writeFile(path("bytes"), bytes);
        return FrameGrabber::loadCGImage(path("bytes"));
    }

    const TestSupport::TemporaryFolder folder_;
};

/// Blue, green, red.
Colour colourAt(const StillImage& image, std::int64_t x, std::int64_t y) {
    const auto at = static_cast<std::size_t>((y * image.width + x) * 3);
    return {image.pixels.at(at), image.pixels.at(at + 1), image.pixels.at(at + 2)};
}

void expectNear(const Colour& actual, const Colour& expected) {
    for (std::size_t i = 0; i < actual.size(); ++i) EXPECT_NEAR(actual[i], expected[i], 8) << i;
}

/// The picture as makePicture makes it, neither turned nor cut.
void expectThePicture(const std::optional<StillImage>& image) {
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, width);
    EXPECT_EQ(image->height, height);
    ASSERT_EQ(image->pixels.size(), static_cast<std::size_t>(width * height * 3));
    expectNear(colourAt(*image, 4, 4), {0, 0, 255});
    expectNear(colourAt(*image, width - 5, height - 5), {0, 255, 0});
}

/// A JPEG that says it is to be turned by a quarter to be seen (Exif orientation 6).
std::string turned(const std::string& jpeg) {
    const std::string exif = "Exif\0\0MM\0\x2A\0\0\0\x08\0\x01"s + "\x01\x12\0\x03\0\0\0\x01"s +
                             "\0\x06\0\0"s + "\0\0\0\0"s;
    const std::string size{'\0', static_cast<char>(exif.size() + 2)};
    return jpeg.substr(0, 2) + "\xFF\xE1" + size + exif + jpeg.substr(2);
}

/// The same JPEG with another size in its frame header.
std::string declaring(std::string jpeg, const std::string& heightAndWidth) {
    const std::size_t header = jpeg.find("\xFF\xC0");
    if (header == jpeg.npos) throw std::runtime_error("no frame header");
    return jpeg.replace(header + 5, 4, heightAndWidth);
}

TEST_F(StillImageFiles, JPEG_IsLoaded) {
    expectThePicture(FrameGrabber::loadCGImage(makePicture("still.jpg")));
}

TEST_F(StillImageFiles, MoreThanEnough_IsLoadedSmaller) {
    const URL picture = path("large.jpg");
    TestSupport::outputOf("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "color=red:s=1920x1080",
                                     "-frames:v", "1", picture.native()});
    const auto widthAt = [&](std::int64_t enough) {
        const auto image = FrameGrabber::loadCGImage(picture, enough);
        return image ? image->width : 0;
    };

    EXPECT_EQ(widthAt(1), 240);
    EXPECT_EQ(widthAt(240), 240);
    EXPECT_EQ(widthAt(241), 480);
    EXPECT_EQ(widthAt(832), 960);
    EXPECT_EQ(widthAt(961), 1920);
    EXPECT_EQ(widthAt(100'000), 1920);
    expectNear(colourAt(*FrameGrabber::loadCGImage(picture, 240), 100, 100), {0, 0, 255});
}

TEST_F(StillImageFiles, PNG_IsLoadedExactly) {
    const auto image = FrameGrabber::loadCGImage(makePicture("still.png"));
    TestSupport::outputOf("ffmpeg", {"-v", "error", "-i", path("still.png").native(), "-pix_fmt",
                                     "bgr24", "-f", "rawvideo", path("pixels").native()});

    expectThePicture(image);
    EXPECT_EQ(std::string(image->pixels.begin(), image->pixels.end()),
              TestSupport::readFile(path("pixels")));
}

TEST_F(StillImageFiles, JPEGThatAsksToBeTurned_IsLoadedAsItIsStored) {
    const std::string upright = TestSupport::readFile(makePicture("still.jpg"));
    const auto expected = loadBytes(upright);

    TestSupport::writeFile(path("turned.jpg"), turned(upright));

    const auto image = FrameGrabber::loadCGImage(path("turned.jpg"));
    expectThePicture(image);
    EXPECT_EQ(image, expected);
}

TEST_F(StillImageFiles, WhatIsNoPicture_IsAbsent) {
    const std::string jpeg = TestSupport::readFile(makePicture("still.jpg"));
    std::filesystem::create_directory(path("folder"));
    std::filesystem::create_symlink("nowhere", path("dangling"));

    EXPECT_EQ(loadBytes(""), std::nullopt);
    EXPECT_EQ(loadBytes("x"), std::nullopt);
    EXPECT_EQ(loadBytes(TestSupport::noise(100'000)), std::nullopt);
    EXPECT_EQ(loadBytes(jpeg.substr(0, 20)), std::nullopt);
    EXPECT_EQ(loadBytes(std::string("\0"s + jpeg)), std::nullopt);
    for (const char* name : {"folder", "dangling", "missing", "still.jpg/below"}) {
        EXPECT_EQ(FrameGrabber::loadCGImage(path(name)), std::nullopt) << name;
    }
}

TEST_F(StillImageFiles, HugeDeclaredSize_IsAbsent) {
    const std::string jpeg = TestSupport::readFile(makePicture("still.jpg"));

    EXPECT_EQ(loadBytes(declaring(jpeg, "\xFF\xDC\xFF\xDC")), std::nullopt);
    EXPECT_EQ(loadBytes(declaring(jpeg, "\x20\x08\x40\x10")), std::nullopt) << "16,400 by 8,200";
    EXPECT_EQ(loadBytes(declaring(jpeg, "\0\0\0\0"s)), std::nullopt);
    EXPECT_EQ(loadBytes("P6\n1000000 1000000\n255\n"), std::nullopt);
    EXPECT_EQ(loadBytes("P6\n-1 4\n255\nxxxx"), std::nullopt);
}

TEST_F(StillImageFiles, FileLargerThanAnyStill_IsAbsentAndNotRead) {
    makePicture("still.jpg");
    std::filesystem::resize_file(path("still.jpg"), (std::uintmax_t{1} << 29U) + 1);

    EXPECT_EQ(FrameGrabber::loadCGImage(path("still.jpg")), std::nullopt);
}

TEST_F(StillImageFiles, EveryCutAndFlippedByte_IsAPictureOrAbsent) {
    const std::string png = TestSupport::readFile(makePicture("still.png"));

    for (std::size_t at = 0; at < png.size(); ++at) {
        std::string flipped = png;
        flipped[at] = static_cast<char>(~flipped[at]);
        for (const std::string& bytes : {flipped, png.substr(0, at)}) {
            const auto image = loadBytes(bytes);
            if (!image) continue;
            EXPECT_EQ(image->pixels.size(),
                      static_cast<std::size_t>(image->width * image->height * 3));
        }
    }
}

}  // namespace

}  // namespace ReelCore
