#pragma once

#include "ReelCore/Vision/Detector.h"
#include "ReelCore/Vision/VisionAnalyzer.h"

#include <string>
#include <vector>

namespace ReelCore {

using Boxes = std::vector<NormalizedRect>;

/// An analyzer that finds, picture after picture, what the test says; the last again and again.
VisionAnalyzer analyzerThatFinds(std::vector<Boxes> faces, std::vector<Boxes> people);

/// The same, by numbers.
VisionAnalyzer analyzerThatCounts(const std::vector<std::size_t>& people);

/// An analyzer whose detectors throw.
VisionAnalyzer analyzerThatFails();

/// A picture of one colour; blue, green, red.
StillImage plainPicture(std::int64_t width, std::int64_t height, std::vector<std::uint8_t> color);

/// A script in ffmpeg's place that gives this picture as each frame.
std::string ffmpegThatGives(const URL& picture);

/// How many temporary files and folders of the library are in a folder.
std::int64_t ownFilesIn(const URL& folder);

}  // namespace ReelCore
