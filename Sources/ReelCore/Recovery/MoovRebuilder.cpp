#include "ReelCore/Recovery/MoovRebuilder.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/MP4Scan.h"
#include "ReelCore/Recovery/MdatHeader.h"
#include "ReelCore/Recovery/MoovPatch.h"
#include "ReelCore/Recovery/OutputGuard.h"
#include "ReelCore/Recovery/RecoveryError.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <span>

#include <fmt/format.h>

namespace ReelCore {

namespace {

using Bytes = MP4Box::Bytes;

/// A piece of a file.
struct Extent {
    std::int64_t offset;
    std::int64_t length;
};

Bytes read(const File& file, const Extent& extent) {
    Bytes bytes(static_cast<std::size_t>(extent.length));
    bytes.resize(file.readAt(extent.offset, bytes));
    return bytes;
}

/// The first boxes of a file that a rebuild goes by, however many others there are.
struct Layout {
    std::int64_t fileSize = 0;
    std::map<std::string, TopLevelBox, std::less<>> firsts;

    const TopLevelBox* first(std::string_view type) const {
        const auto found = firsts.find(type);
        return found == firsts.end() ? nullptr : &found->second;
    }
};

Layout layoutOf(const URL& url) {
    Layout layout;
    layout.fileSize = MP4Scan::walk(url, [&](const TopLevelBox& box) {
        const bool counts = box.type == "ftyp" || box.type == "moov" || box.type == "mdat";
        if (counts) layout.firsts.try_emplace(box.type, box);
    });
    return layout;
}

/// The media of a damaged clip, as far as the file holds it.
Extent mediaOf(const Layout& damaged) {
    const TopLevelBox* mdat = damaged.first("mdat");
    if (!mdat) throw RecoveryError(RecoveryError::Unsupported{"damaged file has no mdat"});
    const std::int64_t available = damaged.fileSize - mdat->payloadOffset();
    const std::int64_t length =
        mdat->extendsToEOF ? available : std::min(available, mdat->declaredPayload);
    if (length < 1) throw RecoveryError(RecoveryError::NoRecoverableFrames{});
    return {mdat->payloadOffset(), length};
}

/// The whole index, or as much of it as the file holds.
std::shared_ptr<MP4Box> readMoov(const URL& reference, const Layout& layout) {
    const TopLevelBox* moov = layout.first("moov");
    if (!moov) throw RecoveryError(RecoveryError::ReferenceUnusable{"reference has no moov"});
    const std::int64_t available = layout.fileSize - moov->payloadOffset();
    const std::int64_t length = std::min(moov->declaredPayload, available);
    const Bytes payload =
        read(File::openForReading(reference, FileLinks::follow), {moov->payloadOffset(), length});
    return MP4Box::parse("moov", payload);
}

bool contains(std::span<const std::string_view> formats, const std::string& format) {
    return std::ranges::find(formats, format) != formats.end();
}

KeptTracks tracksOf(const MP4Box& moov) {
    const std::vector<TrackInfo> tracks = describe(moov);
    const auto video = std::ranges::find(tracks, "vide", &TrackInfo::kind);
    if (video == tracks.end()) {
        throw RecoveryError(RecoveryError::ReferenceUnusable{"no video track in reference"});
    }
    if (!contains(MoovRebuilder::proResTypes, video->format)) {
        throw RecoveryError(RecoveryError::Unsupported{
            fmt::format("video codec '{}' — native rebuild covers ProRes; H.264/HEVC cards need a "
                        "tool like untrunc",
                        video->format)});
    }
    const auto audio = std::ranges::find_if(tracks, [](const TrackInfo& track) {
        return track.kind == "soun" && track.bytesPerFrame > 0;
    });
    if (audio == tracks.end()) return {*video, std::nullopt};
    if (!contains(MoovRebuilder::pcmTypes, audio->format)) {
        throw RecoveryError(RecoveryError::Unsupported{
            fmt::format("audio codec '{}' — expected PCM", audio->format)});
    }
    return {*video, *audio};
}

/// The first "ftyp" of a file with its header; empty where there is none, or none that ends within
/// the file.
Extent fileTypeOf(const Layout& layout) {
    const TopLevelBox* box = layout.first("ftyp");
    if (!box || box->declaredPayload > layout.fileSize - box->payloadOffset()) return {0, 0};
    return {box->offset, box->headerSize + box->declaredPayload};
}

}  // namespace

std::string MoovRebuilder::Stats::summary() const {
    return fmt::format("recovered {} frames ({:.1f}s video, {:.1f}s audio)", videoFrames,
                       durationSeconds, audioSeconds);
}

MoovRebuilder::Stats MoovRebuilder::rebuild(const URL& damaged, const URL& reference,
                                            const URL& output) {
    requireOtherFile(output, {damaged, reference});
    const Layout damagedLayout = layoutOf(damaged);
    const Extent media = mediaOf(damagedLayout);
    const Layout referenceLayout = layoutOf(reference);
    const auto moov = readMoov(reference, referenceLayout);
    const KeptTracks tracks = tracksOf(*moov);

    File source = File::openForReading(damaged, FileLinks::follow);
    const MdatIndex index = indexMdat(source, media.offset, media.length,
                                      tracks.audio ? tracks.audio->bytesPerFrame : 0);
    if (index.videoSamples.empty()) throw RecoveryError(RecoveryError::NoRecoverableFrames{});

    const bool hasFileType = fileTypeOf(damagedLayout).length > 0;
    const Extent fileType = fileTypeOf(hasFileType ? damagedLayout : referenceLayout);
    const Bytes header = mdatHeader(index.referencedEnd);
    const Stats stats = patch(*moov, tracks, index, fileType.length + std::ssize(header));
    const Bytes newIndex = moov->serialize();

    File target = openOutput(output);
    target.append(File::openForReading(hasFileType ? damaged : reference, FileLinks::follow),
                  fileType.offset, fileType.length);
    target.write(header);
    source.expectSequentialRead();
    target.append(source, media.offset, index.referencedEnd);
    target.write(newIndex);
    return stats;
}

}  // namespace ReelCore
