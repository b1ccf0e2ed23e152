#include "ReelCore/Transcode/TranscodeTypes.h"

#include "ReelCore/Transcode/TranscodeError.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

URL outputOfInput(const URL& input, const TranscodePreset& preset = TranscodePreset::proRes422) {
    return TranscodeRequest{input, "/out", preset, {}, {}}.outputURL();
}

template <class Case>
std::string textOf(const Case& failure) {
    const TranscodeError error{failure};
    EXPECT_TRUE(error.is<Case>());
    EXPECT_EQ(error.what(), error.description());
    return error.description();
}

TEST(TranscodeRequest, OutputURL_HasTheContainersExtension) {
    EXPECT_EQ(outputOfInput("/in/A001.R3D", TranscodePreset::h264Review), "/out/A001.mp4");
    EXPECT_EQ(outputOfInput("/in/A001.mp4"), "/out/A001.mov");
    EXPECT_EQ(outputOfInput("/in/A001.mov"), "/out/A001.mov");
}

TEST(TranscodeRequest, OutputURL_LosesTheLastExtensionOnly) {
    EXPECT_EQ(outputOfInput("/in/A001.take.2.mxf"), "/out/A001.take.2.mov");
    EXPECT_EQ(outputOfInput("/in.d/A001"), "/out/A001.mov");
    EXPECT_EQ(outputOfInput("/in/.A001"), "/out/.A001.mov");
}

TEST(TranscodeRequest, OutputURLOfAFolder_IsNamedAfterIt) {
    EXPECT_EQ(outputOfInput("/in/A001.RDC/"), "/out/A001.mov");
}

TEST(TranscodeRequest, OutputURL_KeepsTheBytesOfTheName) {
    EXPECT_EQ(outputOfInput("/in/\xFF 'a:b'\n.mov").native(), "/out/\xFF 'a:b'\n.mov");
}

TEST(TranscodeRequest, Defaults_AreNoLUTAndTheInputsSize) {
    const TranscodeRequest request;

    EXPECT_EQ(request.lut, std::nullopt);
    EXPECT_EQ(request.scaleLongEdge, std::nullopt);
}

TEST(TranscodeProgress, Fields_StandInTheirOrder) {
    const TranscodeProgress progress{0.5, 1.0, 2.0, 24.0, "2.13x"};

    EXPECT_EQ(progress.fractionComplete, 0.5);
    EXPECT_EQ(progress.currentSeconds, 1.0);
    EXPECT_EQ(progress.totalSeconds, 2.0);
    EXPECT_EQ(progress.fps, 24.0);
    EXPECT_EQ(progress.speed, "2.13x");
}

TEST(TranscodeError, InputNotFound_NamesThePath) {
    EXPECT_EQ(textOf(TranscodeError::InputNotFound{"/in/A.mov"}), "Input not found: /in/A.mov");
}

TEST(TranscodeError, LUTNotFound_NamesThePath) {
    EXPECT_EQ(textOf(TranscodeError::LUTNotFound{"/L/a.cube"}), "LUT not found: /L/a.cube");
}

TEST(TranscodeError, UnsupportedLUT_NamesTheExtension) {
    EXPECT_EQ(textOf(TranscodeError::UnsupportedLUT{"lut"}),
              "Unsupported LUT type: .lut (use .cube or .3dl)");
    EXPECT_EQ(textOf(TranscodeError::UnsupportedLUT{""}),
              "Unsupported LUT type: . (use .cube or .3dl)");
}

TEST(TranscodeError, ProbeFailed_GivesTheReason) {
    EXPECT_EQ(textOf(TranscodeError::ProbeFailed{"no duration for A.mov"}),
              "ffprobe failed: no duration for A.mov");
}

TEST(TranscodeError, FFmpegFailed_GivesStatusAndTail) {
    EXPECT_EQ(textOf(TranscodeError::FFmpegFailed{187, "one\ntwo"}),
              "ffmpeg failed (187):\none\ntwo");
    EXPECT_EQ(textOf(TranscodeError::FFmpegFailed{1, ""}), "ffmpeg failed (1):\n");
}

TEST(TranscodeError, FFmpegNotFound_SaysWhatToDo) {
    EXPECT_EQ(textOf(TranscodeError::FFmpegNotFound{}),
              "ffmpeg not found. Install it (e.g. `brew install ffmpeg`) or set FFMPEG_PATH.");
}

TEST(TranscodeError, Cancelled_SaysSo) {
    EXPECT_EQ(textOf(TranscodeError::Cancelled{}), "Transcode cancelled.");
}

}  // namespace

}  // namespace ReelCore
