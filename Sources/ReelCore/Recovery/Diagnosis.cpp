#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Recovery/ClipDoctor.h"
#include "ReelCore/Recovery/MP4Scan.h"
#include "ReelCore/Recovery/MXFScan.h"
#include "ReelCore/Recovery/WAVLayout.h"

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace ReelCore {

namespace {

ClipDiagnosis unreadable(std::string reason) {
    return {ClipDiagnosis::Unreadable{std::move(reason)}};
}

/// What a diagnosis needs of a movie's boxes. Each but the last ends where the next one begins, so
/// that the last one tells whether all fit into the file.
struct Movie {
    std::optional<TopLevelBox> last;
    std::optional<TopLevelBox> media;
    bool hasIndex = false;

    void add(const TopLevelBox& box) {
        last = box;
        if (box.type == "moov") hasIndex = true;
        if (box.type == "mdat" && !media) media = box;
    }
};

std::int64_t endOf(const TopLevelBox& box, std::int64_t fileSize) {
    if (box.extendsToEOF) return fileSize;
    std::int64_t end = 0;
    const bool overflows = __builtin_add_overflow(box.payloadOffset(), box.declaredPayload, &end);
    return overflows ? std::numeric_limits<std::int64_t>::max() : end;
}

ClipDiagnosis judge(const Movie& movie, std::int64_t fileSize) {
    if (!movie.last) return unreadable("no QuickTime/MP4 structure");
    if (movie.hasIndex) {
        const std::int64_t end = endOf(*movie.last, fileSize);
        if (end > fileSize) return {ClipDiagnosis::Truncated{end, fileSize}};
        return {ClipDiagnosis::Healthy{}};
    }
    if (!movie.media) return unreadable("no moov and no mdat");
    const std::int64_t available = fileSize - movie.media->payloadOffset();
    const std::int64_t bytes =
        movie.media->extendsToEOF ? available : std::min(available, movie.media->declaredPayload);
    if (bytes <= 0) return unreadable("mdat empty");
    return {ClipDiagnosis::MissingIndex{bytes}};
}

ClipDiagnosis diagnoseMovie(const URL& url) {
    try {
        Movie movie;
        const std::int64_t fileSize =
            MP4Scan::walk(url, [&](const TopLevelBox& box) { movie.add(box); });
        return judge(movie, fileSize);
    } catch (const std::exception&) {
        return unreadable("no QuickTime/MP4 structure");
    }
}

ClipDiagnosis diagnoseWave(const URL& url, std::int64_t fileSize) {
    try {
        const WAVLayout layout = WAVLayout::read(url);
        const std::int64_t actual = std::max<std::int64_t>(fileSize - layout.dataOffset, 0);
        if (layout.declaredData != actual || layout.riffSize != fileSize - 8) {
            return {ClipDiagnosis::StaleWAVSizes{layout.declaredData, actual}};
        }
        return {ClipDiagnosis::Healthy{}};
    } catch (const std::exception&) {
        return unreadable("not a RIFF/WAVE");
    }
}

bool beginsWithHeaderPartition(const File& file) {
    std::array<std::byte, 16> bytes;
    try {
        return file.readAt(0, bytes) == bytes.size() &&
               MXFScan::isPartitionKey(bytes, 0, MXFScan::PartitionKind::header);
    } catch (const std::exception&) {
        return false;
    }
}

ClipDiagnosis diagnoseMXF(const URL& url, std::int64_t fileSize) {
    try {
        const File file = File::openForReading(url, FileLinks::follow);
        if (!beginsWithHeaderPartition(file)) return unreadable("no MXF header partition");
        const auto walk = MXFScan::walk(file, 0, fileSize);
        if (!walk) return unreadable("MXF structure unwalkable");
        if (walk->sawFooter && walk->length >= fileSize) return {ClipDiagnosis::Healthy{}};
        return {ClipDiagnosis::Truncated{fileSize, walk->length}};
    } catch (const std::exception&) {
        // A folder can be opened, but not be read.
        return unreadable(FileSystem::isFolder(url) ? "no MXF header partition" : "cannot open");
    }
}

bool contains(std::span<const std::string_view> extensions, const std::string& extension) {
    return std::ranges::find(extensions, extension) != extensions.end();
}

}  // namespace

ClipDiagnosis ClipDoctor::diagnose(const URL& url) {
    const std::int64_t size = FileSystem::sizeOf(url).value_or(0);
    if (size < 1 && !FileSystem::isFolder(url)) return unreadable("empty file");
    const std::string extension = lowerCasedExtension(url);
    if (contains(movieExtensions, extension)) return diagnoseMovie(url);
    if (contains(waveExtensions, extension)) return diagnoseWave(url, size);
    if (contains(mxfExtensions, extension)) return diagnoseMXF(url, size);
    return unreadable("unsupported type ." + extension);
}

}  // namespace ReelCore
