#include "ReelCore/Vision/FrameGrabber.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/ChildProcess.h"
#include "ReelCore/Platform/FileBytes.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Transcode/MediaQuery.h"
#include "ReelCore/Transcribe/TranscribeError.h"

#include <algorithm>
#include <exception>
#include <system_error>

#include <fmt/format.h>
#include <opencv2/imgcodecs.hpp>

namespace ReelCore {

namespace {

/// In bytes; far above any encoded still, and what the decoder can count.
constexpr std::int64_t largestStill = std::int64_t{1} << 29;

/// More than any camera's frame has (12,288 by 8,040). The decoder itself would go up to 2^30, and
/// a still is held twice while it is handed on.
constexpr std::int64_t mostPixels = std::int64_t{1} << 27;

/// An eighth of a picture is decoded quickly, and tells how large the whole is.
cv::Mat decoded(const cv::Mat& encoded, std::optional<std::int64_t> enough) {
    const auto at = [&](int size) {
        return cv::imdecode(encoded, size | cv::IMREAD_IGNORE_ORIENTATION);
    };
    if (!enough) return at(cv::IMREAD_COLOR);
    cv::Mat eighth = at(cv::IMREAD_REDUCED_COLOR_8);
    const int longest = std::max(eighth.cols, eighth.rows);
    if (longest == 0 || longest >= *enough) return eighth;
    if (longest * 2 >= *enough) return at(cv::IMREAD_REDUCED_COLOR_4);
    return at(longest * 4 >= *enough ? cv::IMREAD_REDUCED_COLOR_2 : cv::IMREAD_COLOR);
}

}  // namespace

URL FrameGrabber::grabFile(const URL& url, double seconds, const URL& directory) const {
    const auto ffmpeg = ff.ffmpeg();
    if (!ffmpeg) throw TranscribeError(TranscribeError::FFmpegNotFound{});
    FileSystem::createFolders(directory);
    const std::int64_t milliseconds = nearestInteger(seconds * 1000.0);
    URL output = directory / fmt::format("frame_{}.jpg", milliseconds);
    std::error_code ignored;
    std::filesystem::remove(output, ignored);  // no earlier frame may be taken for this one
    const std::string time = shortestDecimal(seconds);
    const int status =
        ChildProcess::status(*ffmpeg, {"-y", "-v", "error", "-ss", time, "-i", toolPath(url),
                                       "-frames:v", "1", "-q:v", "2", toolPath(output)});
    if (status != 0 || !FileSystem::leadsSomewhere(output)) {
        throw TranscribeError(
            TranscribeError::ExtractionFailed{fmt::format("frame grab at {}s failed", time)});
    }
    return output;
}

std::optional<StillImage> FrameGrabber::still(const URL& url, double seconds, const URL& directory,
                                              std::optional<std::int64_t> enough) const {
    try {
        return loadCGImage(grabFile(url, seconds, directory), enough);
    } catch (const Error&) {
        return std::nullopt;
    }
}

std::optional<StillImage> FrameGrabber::loadCGImage(const URL& url,
                                                    std::optional<std::int64_t> enough) {
    try {
        auto bytes = bytesOfFile(url, largestStill);
        if (!bytes || bytes->empty()) return std::nullopt;
        const cv::Mat encoded(1, static_cast<int>(bytes->size()), CV_8UC1, bytes->data());
        const cv::Mat image = decoded(encoded, enough);
        const bool isStill = !image.empty() && image.isContinuous() &&
                             std::int64_t{image.cols} * image.rows <= mostPixels;
        if (!isStill) return std::nullopt;
        return StillImage{image.cols, image.rows,
                          std::vector<std::uint8_t>(image.datastart, image.dataend)};
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

}  // namespace ReelCore
