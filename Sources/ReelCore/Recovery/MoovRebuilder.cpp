#include "ReelCore/Recovery/MoovRebuilder.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/MP4Scan.h"
#include "ReelCore/Recovery/MdatHeader.h"
#include "ReelCore/Recovery/MoovPatch.h"
#include "ReelCore/Recovery/OutputGuard.h"
#include "ReelCore/Recovery/RecoveryError.h"

#include <algorithm>
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

/// The media of a damaged clip, as far as the file holds it.
Extent mediaOf(const MP4Scan::TopLevel& damaged) {
    const TopLevelBox* mdat = damaged.first("mdat");
    if (!mdat) throw RecoveryError(RecoveryError::Unsupported{"damaged file has no mdat"});
    const std::int64_t available = damaged.fileSize - mdat->payloadOffset();
    const std::int64_t length =
        mdat->extendsToEOF ? available : std::min(available, mdat->declaredPayload);
    if (length < 1) throw RecoveryError(RecoveryError::NoRecoverableFrames{});
    return {mdat->payloadOffset(), length};
}

/// A box's whole payload, or as much as the file holds. No index is larger than the limit, and a
/// damaged size must not fill the memory.
std::shared_ptr<MP4Box> readMoov(const URL& reference, const MP4Scan::TopLevel& layout) {
    constexpr std::int64_t largestMoov = std::int64_t{256} << 20U;
    const TopLevelBox* moov = layout.first("moov");
    if (!moov) throw RecoveryError(RecoveryError::ReferenceUnusable{"reference has no moov"});
    const std::int64_t available = layout.fileSize - moov->payloadOffset();
    const std::int64_t length = std::min({moov->declaredPayload, available, largestMoov});
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

/// The first "ftyp" of a file with its header; absent where there is none, or none that ends within
/// the file.
std::optional<Bytes> fileType(const URL& url, const MP4Scan::TopLevel& layout) {
    constexpr std::int64_t largestFileType = std::int64_t{1} << 20U;
    const TopLevelBox* box = layout.first("ftyp");
    if (!box || box->declaredPayload > largestFileType) return std::nullopt;
    const Extent whole{box->offset, box->headerSize + box->declaredPayload};
    if (whole.offset + whole.length > layout.fileSize) return std::nullopt;
    return read(File::openForReading(url, FileLinks::follow), whole);
}

}  // namespace

std::string MoovRebuilder::Stats::summary() const {
    return fmt::format("recovered {} frames ({:.1f}s video, {:.1f}s audio)", videoFrames,
                       durationSeconds, audioSeconds);
}

MoovRebuilder::Stats MoovRebuilder::rebuild(const URL& damaged, const URL& reference,
                                            const URL& output) {
    requireOtherFile(output, {damaged, reference});
    const MP4Scan::TopLevel damagedLayout = MP4Scan::topLevel(damaged);
    const Extent media = mediaOf(damagedLayout);
    const MP4Scan::TopLevel referenceLayout = MP4Scan::topLevel(reference);
    const auto moov = readMoov(reference, referenceLayout);
    const KeptTracks tracks = tracksOf(*moov);

    File source = File::openForReading(damaged, FileLinks::follow);
    const MdatIndex index = indexMdat(source, media.offset, media.length,
                                      tracks.audio ? tracks.audio->bytesPerFrame : 0);
    if (index.videoSamples.empty()) throw RecoveryError(RecoveryError::NoRecoverableFrames{});

    auto head = fileType(damaged, damagedLayout);
    if (!head) head = fileType(reference, referenceLayout);
    Bytes beginning = head.value_or(Bytes());
    const Bytes header = mdatHeader(index.referencedEnd);
    beginning.insert(beginning.end(), header.begin(), header.end());
    const Stats stats = patch(*moov, tracks, index, std::ssize(beginning));

    File target = File::create(output);
    target.write(beginning);
    source.expectSequentialRead();
    target.append(source, media.offset, index.referencedEnd);
    target.write(moov->serialize());
    return stats;
}

}  // namespace ReelCore
