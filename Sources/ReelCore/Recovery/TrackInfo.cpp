#include "ReelCore/Recovery/TrackInfo.h"

#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Recovery/BoxHeader.h"

#include <algorithm>

namespace ReelCore {

namespace {

/// Four ASCII characters in a payload; empty where there are none.
std::string textAt(const MP4Box::Bytes& payload, std::size_t offset) {
    ByteCursor cursor(payload);
    if (!cursor.skip(offset)) return {};
    const auto text = cursor.text(4);
    return text ? boxType(*text).value_or("") : "";
}

std::uint32_t timescaleOf(const MP4Box::Bytes& mdhd) {
    return numberAt(mdhd, versionOf(mdhd) == 1 ? 20 : 12);
}

std::uint32_t firstDelta(const std::shared_ptr<MP4Box>& stts) {
    if (!stts) return 1;
    return std::max(numberAt(stts->payload, 12), 1U);
}

}  // namespace

std::uint32_t numberAt(const MP4Box::Bytes& payload, std::size_t offset) {
    ByteCursor cursor(payload);
    if (!cursor.skip(offset)) return 0;
    return cursor.bigEndian<std::uint32_t>().value_or(0);
}

std::uint8_t versionOf(const MP4Box::Bytes& payload) {
    return payload.empty() ? 0 : std::to_integer<std::uint8_t>(payload.front());
}

std::vector<TrackInfo> describe(const MP4Box& moov) {
    std::vector<TrackInfo> tracks;
    for (const auto& trak : moov.all("trak")) {
        const auto hdlr = trak->first({"mdia", "hdlr"});
        const auto mdhd = trak->first({"mdia", "mdhd"});
        const auto stsd = trak->first({"mdia", "minf", "stbl", "stsd"});
        if (!hdlr || !mdhd || !stsd) continue;
        const auto stsz = trak->first({"mdia", "minf", "stbl", "stsz"});
        tracks.push_back({trak, textAt(hdlr->payload, 8), textAt(stsd->payload, 12),
                          timescaleOf(mdhd->payload),
                          firstDelta(trak->first({"mdia", "minf", "stbl", "stts"})),
                          stsz ? numberAt(stsz->payload, 4) : 0});
    }
    return tracks;
}

}  // namespace ReelCore
