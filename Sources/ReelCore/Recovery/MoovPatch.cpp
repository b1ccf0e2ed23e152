#include "ReelCore/Recovery/MoovPatch.h"

#include "ReelCore/Recovery/BigEndian.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReelCore/Recovery/SampleTables.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace ReelCore {

namespace {

/// Where a duration stands in a header box, by the version that it begins with.
struct DurationOffsets {
    std::size_t version0;
    std::size_t version1;
};
constexpr DurationOffsets mediaOffsets{16, 24};  ///< "mvhd" and "mdhd".
constexpr DurationOffsets trackOffsets{20, 28};  ///< "tkhd".

/// Where the payload is too short for it, nothing is written.
void write32(MP4Box::Bytes& payload, std::size_t offset, std::uint64_t number) {
    if (payload.size() < offset + 4) return;
    MP4Box::Bytes bytes;
    appendBigEndian(bytes, static_cast<std::uint32_t>(number));
    std::ranges::copy(bytes, payload.begin() + static_cast<std::ptrdiff_t>(offset));
}

void setDuration(MP4Box::Bytes& payload, const DurationOffsets& offsets, std::int64_t duration) {
    const auto value = static_cast<std::uint64_t>(duration);
    if (versionOf(payload) == 1) {
        write32(payload, offsets.version1, value >> 32U);
        write32(payload, offsets.version1 + 4, value);
    } else {
        constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
        write32(payload, offsets.version0, std::min(value, most));
    }
}

/// A length in the units of another clock; 0 where the first has none.
std::int64_t converted(std::int64_t units, std::uint32_t timescale, std::uint32_t newTimescale) {
    if (timescale == 0) return 0;
    return exactProduct(units, newTimescale) / timescale;
}

double seconds(std::int64_t units, std::uint32_t timescale) {
    return timescale == 0 ? 0.0 : static_cast<double>(units) / timescale;
}

std::int64_t audioUnits(const TrackInfo& audio, const MdatIndex& index) {
    std::int64_t bytes = 0;
    for (const MdatIndex::AudioChunk& chunk : index.audioChunks) {
        bytes = exactSum(bytes, chunk.bytes);
    }
    return exactProduct(bytes / audio.bytesPerFrame, audio.sttsDelta);
}

/// A track that is kept, and its length in its own units.
struct TrackLength {
    const TrackInfo& track;
    std::int64_t units;
};

void patchTrack(const TrackLength& length, std::uint32_t movieTimescale, const MdatIndex& index,
                std::int64_t mdatFileOffset) {
    const TrackInfo& track = length.track;
    track.trak->removeAll({"edts"});
    if (const auto tkhd = track.trak->first({"tkhd"})) {
        setDuration(tkhd->payload, trackOffsets,
                    converted(length.units, track.mdhdTimescale, movieTimescale));
    }
    if (const auto mdhd = track.trak->first({"mdia", "mdhd"})) {
        setDuration(mdhd->payload, mediaOffsets, length.units);
    }
    const auto stbl = track.trak->first({"mdia", "minf", "stbl"});
    if (!stbl) throw RecoveryError(RecoveryError::ReferenceUnusable{"track missing stbl"});
    rebuildSampleTables(*stbl, track, index, mdatFileOffset);
}

}  // namespace

MoovRebuilder::Stats patch(MP4Box& moov, const KeptTracks& tracks, const MdatIndex& index,
                           std::int64_t mdatFileOffset) {
    std::vector<TrackLength> lengths{
        {tracks.video, exactProduct(std::ssize(index.videoSamples), tracks.video.sttsDelta)}};
    if (tracks.audio) lengths.push_back({*tracks.audio, audioUnits(*tracks.audio, index)});

    const auto mvhd = moov.first({"mvhd"});
    if (!mvhd) {
        throw RecoveryError(RecoveryError::ReferenceUnusable{"reference moov has no mvhd"});
    }
    const std::uint32_t timescale =
        numberAt(mvhd->payload, versionOf(mvhd->payload) == 1 ? 20 : 12);
    std::int64_t duration = 0;
    for (const auto& [track, units] : lengths) {
        duration = std::max(duration, converted(units, track.mdhdTimescale, timescale));
    }
    setDuration(mvhd->payload, mediaOffsets, duration);

    for (const TrackLength& length : lengths) {
        patchTrack(length, timescale, index, mdatFileOffset);
    }
    moov.removeAll({"trak", "udta", "meta"});
    for (const TrackLength& length : lengths) moov.children.push_back(length.track.trak);

    MoovRebuilder::Stats stats;
    stats.videoFrames = std::ssize(index.videoSamples);
    stats.durationSeconds = seconds(lengths.front().units, tracks.video.mdhdTimescale);
    if (tracks.audio) {
        stats.audioSeconds = seconds(lengths.back().units, tracks.audio->mdhdTimescale);
    }
    return stats;
}

}  // namespace ReelCore
