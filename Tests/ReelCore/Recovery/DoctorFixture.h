#pragma once

#include "ReelCore/Recovery/ClipDoctor.h"
#include "Support/Boxes.h"
#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/KLV.h"
#include "Support/RIFF.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace ReelCore {

inline ClipDiagnosis missingIndexOf(std::int64_t bytes) {
    return {ClipDiagnosis::MissingIndex{bytes}};
}

inline ClipDiagnosis truncatedTo(std::int64_t declared, std::int64_t actual) {
    return {ClipDiagnosis::Truncated{declared, actual}};
}

inline ClipDiagnosis staleSizes(std::int64_t declared, std::int64_t actual) {
    return {ClipDiagnosis::StaleWAVSizes{declared, actual}};
}

inline ClipDiagnosis unreadable(std::string reason) {
    return {ClipDiagnosis::Unreadable{std::move(reason)}};
}

inline const ClipDiagnosis healthy{ClipDiagnosis::Healthy{}};

/// A movie whose boxes all fit, though nothing in them is of use.
inline std::string wholeMovie() {
    return TestSupport::fileTypeBox() + TestSupport::box("moov", "any") +
           TestSupport::box("mdat", "media");
}

/// A recording of `seconds` of silence, 3 bytes a sample, whose sizes were never written.
inline std::string staleRecording(double seconds) {
    std::string bytes =
        TestSupport::broadcastWAV({.seconds = seconds, .hasBroadcastExtension = false});
    bytes.replace(4, 4, 4, '\0');
    bytes.replace(40, 4, 4, '\0');
    return bytes;
}

/// Bytes as a number, the highest first.
inline std::size_t numberIn(std::string_view bytes) {
    std::size_t number = 0;
    for (const char byte : bytes) number = number << 8U | static_cast<unsigned char>(byte);
    return number;
}

/// Where the QuickTime box of a type begins that stands at the top level of a clip.
inline std::size_t beginOf(std::string_view clip, std::string_view type) {
    std::size_t at = 0;
    while (at + 8 <= clip.size() && clip.substr(at + 4, 4) != type) {
        at += numberIn(clip.substr(at, 4));
    }
    return at;
}

struct FoundFrame {
    std::size_t begin;
    std::size_t size;
};

/// The ProRes frames of a clip, by their tag.
inline std::vector<FoundFrame> framesOf(std::string_view clip) {
    std::vector<FoundFrame> frames;
    for (std::size_t tag = clip.find("icpf"); tag != clip.npos; tag = clip.find("icpf", tag + 1)) {
        frames.push_back({tag - 4, numberIn(clip.substr(tag - 4, 4))});
    }
    return frames;
}

/// A folder for each test, with clips in it that ffmpeg makes.
class DoctorFixture : public ::testing::Test {
protected:
    const URL& folder() const { return folder_.path(); }
    URL output() const { return folder() / "out"; }

    URL file(const std::string& path, std::string_view content) const {
        TestSupport::writeTree(folder(), {{path, std::string(content)}});
        return folder() / path;
    }

    /// The bytes of a clip that ffmpeg makes, which is gone then.
    std::string made(const std::string& name, const TestSupport::ClipRecipe& recipe) const {
        std::filesystem::create_directories(folder() / "made");
        TestSupport::makeClip(folder() / "made" / name, recipe);
        std::string bytes = TestSupport::readFile(folder() / "made" / name);
        std::filesystem::remove_all(folder() / "made");
        return bytes;
    }

    /// ProRes with PCM sound, its index behind the media as cameras write it.
    std::string cameraClip(double seconds = 1.0) const {
        return made("camera.mov", {.seconds = seconds});
    }

    /// The same with the index in front.
    std::string indexedClip() const {
        return made("indexed.mov", {.more = {"-movflags", "+faststart"}});
    }

    /// H.264 with the index in front.
    std::string h264Clip(double seconds = 1.0) const {
        return made("h264.mp4", {.seconds = seconds,
                                 .video = {"-c:v", "libx264", "-g", "5"},
                                 .audio = {"-c:a", "aac"},
                                 .more = {"-movflags", "+faststart"}});
    }

    std::string mxfMovie() const {
        return made("movie.mxf", {.video = {"-c:v", "mpeg2video", "-q:v", "2"}});
    }

    /// What repairing the clip as it is diagnosed comes to.
    RepairOutcome repaired(const URL& clip, const std::optional<URL>& reference = {}) const {
        return repairedInto(output(), clip, reference);
    }

    static RepairOutcome repairedInto(const URL& folder, const URL& clip,
                                      const std::optional<URL>& reference = {}) {
        return ClipDoctor::repair({clip, 0, ClipDoctor::diagnose(clip)}, reference, folder);
    }

private:
    const TestSupport::TemporaryFolder folder_;
};

}  // namespace ReelCore
