#include "ReelCore/Transcode/Transcoder.h"

#include "ReelCore/Models/UniquePath.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Platform/ToolLog.h"
#include "ReelCore/Transcode/MediaQuery.h"
#include "ReelCore/Transcode/PlainLUT.h"
#include "ReelCore/Transcode/ProgressReports.h"
#include "ReelCore/Transcode/TranscodeError.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

constexpr std::chrono::milliseconds betweenLooks(100);

using Fields = std::map<std::string, std::string>;

std::optional<std::string> value(const Fields& fields, const std::string& key) {
    const auto found = fields.find(key);
    if (found == fields.end()) return std::nullopt;
    return found->second;
}

/// A number that can be reckoned with, which no infinity is.
std::optional<double> finiteNumber(std::string_view text) {
    const auto number = parseDouble(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

/// The request with every path as ffmpeg takes it for a file and nothing else.
TranscodeRequest forTool(TranscodeRequest request, const std::optional<PlainLUT>& lut) {
    request.input = toolPath(request.input);
    if (lut) request.lut = LUT{lut->url()};
    return request;
}

/// Reads ffmpeg's reports until it closes them. False once the run is cancelled.
bool readReports(RunningChild& ffmpeg, ProgressReports& reports,
                 const std::function<bool()>& isCancelled) {
    std::array<char, 4096> block;
    while (!isCancelled()) {
        const auto count = ffmpeg.read(block, betweenLooks);
        if (count == 0U) return true;
        if (count) reports.take({block.data(), *count});
    }
    return false;
}

/// ffmpeg closes the clip first, so that what is there can be played.
void endCancelled(RunningChild& ffmpeg, const std::function<bool()>& mustEndNow) {
    ffmpeg.askToEnd();
    while (!ffmpeg.waitForEnd(betweenLooks)) {
        if (!mustEndNow()) continue;
        ffmpeg.kill();
        return;
    }
}

}  // namespace

Transcoder::Transcoder(std::function<bool()> asked, std::function<bool()> askedAgain)
    : isCancelled(std::move(asked)), mustEndNow(std::move(askedAgain)) {}

double Transcoder::probeDuration(const URL& url) const {
    const auto ffprobe = locator.ffprobe();
    if (!ffprobe) throw TranscodeError(TranscodeError::FFmpegNotFound{});
    const std::string answer = answerOf(*ffprobe,
                                        {"-v", "error", "-show_entries", "format=duration", "-of",
                                         "default=nokey=1:noprint_wrappers=1"},
                                        url);
    const auto seconds = finiteNumber(answer);
    if (!seconds) {
        throw TranscodeError(
            TranscodeError::ProbeFailed{"no duration for " + lastPathComponent(url)});
    }
    return *seconds;
}

TranscodeResult Transcoder::run(
    const TranscodeRequest& request,
    const std::function<void(const TranscodeProgress&)>& progress) const {
    const auto ffmpeg = locator.ffmpeg();
    if (!ffmpeg) throw TranscodeError(TranscodeError::FFmpegNotFound{});
    if (!FileSystem::leadsSomewhere(request.input) || FileSystem::isPipeOrDevice(request.input)) {
        throw TranscodeError(TranscodeError::InputNotFound{request.input});
    }
    if (request.lut) request.lut->validate();
    FileSystem::createFolders(request.outputDirectory);

    TranscodeResult result;
    result.request = request;
    result.startedAt = now();
    try {
        result.durationSeconds = probeDuration(request.input);
    } catch (const Error&) {
        // Without a length the fraction stays at 0, and the clip is transcoded all the same.
    }
    const ReservedOutput output(request.outputURL());
    result.outputURL = output.url();

    std::optional<PlainLUT> lut;
    if (request.lut) lut.emplace(request.lut->url);
    const ToolLog log("keldo-ffmpeg-");
    RunningChild child(*ffmpeg, arguments(forTool(request, lut), toolPath(result.outputURL)),
                       {.output = ChildStream::pipe(), .error = ChildStream::file(log.file())});
    ProgressReports reports(
        [&](const Fields& fields) { progress(parseProgress(fields, result.durationSeconds)); });
    if (!readReports(child, reports, isCancelled)) {
        endCancelled(child, mustEndNow);
        throw TranscodeError(TranscodeError::Cancelled{});
    }
    const int status = child.wait();
    const ToolComplaints complaints = log.complaints();
    if (status != 0 || complaints.tellOfFailedDrive()) {
        throw TranscodeError(TranscodeError::FFmpegFailed{status, complaints.tail()});
    }
    result.finishedAt = now();
    return result;
}

std::string Transcoder::filterQuote(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\\' || c == '\'') quoted += '\\';
        quoted += c;
    }
    return quoted + "'";
}

std::optional<std::string> Transcoder::filterChain(const std::optional<LUT>& lut,
                                                   std::optional<std::int64_t> scaleLongEdge) {
    std::vector<std::string> filters;
    if (lut) filters.push_back("lut3d=file=" + filterQuote(lut->url.native()));
    if (scaleLongEdge) {
        filters.push_back(
            fmt::format("scale=w={0}:h={0}:force_original_aspect_ratio=decrease"
                        ":force_divisible_by=2:flags=lanczos",
                        *scaleLongEdge));
    }
    if (filters.empty()) return std::nullopt;
    return fmt::format("{}", fmt::join(filters, ","));
}

std::vector<std::string> Transcoder::arguments(const TranscodeRequest& request,
                                               const std::optional<URL>& output) {
    std::vector<std::string> list{"-y", "-i", request.input.native()};
    const auto append = [&](const std::vector<std::string>& more) {
        list.insert(list.end(), more.begin(), more.end());
    };
    if (const auto chain = filterChain(request.lut, request.scaleLongEdge)) append({"-vf", *chain});
    append(request.preset.videoArgs);
    if (request.preset.pixelFormat) append({"-pix_fmt", *request.preset.pixelFormat});
    append(request.preset.audioArgs);
    append({"-progress", "pipe:1", "-nostats", "-v", "error"});
    append({output.value_or(request.outputURL()).native()});
    return list;
}

TranscodeProgress Transcoder::parseProgress(const Fields& fields, double totalSeconds) {
    // Both count microseconds, whatever the second is named.
    auto time = value(fields, "out_time_us");
    if (!time) time = value(fields, "out_time_ms");
    TranscodeProgress progress;
    progress.currentSeconds = finiteNumber(time.value_or("")).value_or(0.0) / 1e6;
    progress.totalSeconds = totalSeconds;
    if (totalSeconds > 0.0) {
        progress.fractionComplete = std::min(progress.currentSeconds / totalSeconds, 1.0);
    }
    if (const auto fps = value(fields, "fps")) progress.fps = finiteNumber(*fps);
    progress.speed = value(fields, "speed");
    if (progress.speed == "N/A") progress.speed.reset();
    return progress;
}

}  // namespace ReelCore
