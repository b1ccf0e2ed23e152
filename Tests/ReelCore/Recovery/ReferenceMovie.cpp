#include "ReferenceMovie.h"

#include "Support/Boxes.h"
#include "Support/FolderTree.h"

#include <span>

namespace TestSupport {

namespace {

/// Version, flags and the two dates, which are as wide as the version says.
std::string versionAndDates(int version) {
    return bigEndian(static_cast<std::uint64_t>(version), 1) + bigEndian(7, 3) +
           noise(version == 1 ? 16 : 8);
}

std::string duration(int version) {
    return version == 1 ? bigEndian(staleDuration, 4) + bigEndian(staleDuration, 4)
                        : bigEndian(staleDuration, 4);
}

}  // namespace

std::string movieHeader(int version, std::uint32_t timescale) {
    return box("mvhd", versionAndDates(version) + bigEndian(timescale, 4) + duration(version) +
                           noise(80, 2));
}

std::string sampleDescription(const std::string& format) {
    return box("stsd", bigEndian(0, 4) + bigEndian(1, 4) + box(format, noise(78, 3)));
}

TrackBoxes::TrackBoxes(const TrackRecipe& recipe)
    : tkhd(box("tkhd", versionAndDates(recipe.version) + bigEndian(1, 4) + bigEndian(0, 4) +
                           duration(recipe.version) + noise(60, 4))),
      edts(box("edts", box("elst", noise(16, 5)))),
      mdhd(box("mdhd", versionAndDates(recipe.version) + bigEndian(recipe.timescale, 4) +
                           duration(recipe.version) + bigEndian(0x7FFF, 4))),
      hdlr(box("hdlr", bigEndian(0, 4) + "mhlr" + recipe.kind + noise(13, 6))),
      stsd(sampleDescription(recipe.format)),
      stts(box("stts",
               bigEndian(0, 4) + bigEndian(1, 4) + bigEndian(999, 4) + bigEndian(recipe.delta, 4))),
      stsz(box("stsz", bigEndian(0, 4) + bigEndian(recipe.sampleSize, 4) + bigEndian(999, 4))) {}

std::string TrackBoxes::trak() const {
    const std::string tables =
        box("stbl", stsd + stts + box("stss", noise(12, 7)) + box("stsc", noise(20, 8)) + stsz +
                        box("stco", noise(12, 9)));
    const std::string media = box("minf", box("vmhd", noise(12, 10)) + tables);
    return box("trak", tkhd + edts + box("mdia", mdhd + hdlr + media));
}

std::string moovBox(const std::vector<TrackRecipe>& tracks) {
    std::string boxes = movieHeader(0, 600);
    for (const TrackRecipe& track : tracks) boxes += TrackBoxes(track).trak();
    return box("moov", boxes);
}

std::shared_ptr<ReelCore::MP4Box> parsedMoov(const std::string& box) {
    return ReelCore::MP4Box::parse("moov", std::as_bytes(std::span(box)).subspan(8));
}

std::string textOf(const ReelCore::MP4Box::Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string childrenOf(const ReelCore::MP4Box& box) {
    std::string types;
    for (const auto& child : box.children) types += (types.empty() ? "" : " ") + child->type;
    return types;
}

}  // namespace TestSupport
