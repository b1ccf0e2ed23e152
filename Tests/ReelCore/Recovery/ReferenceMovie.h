#pragma once

#include "ReelCore/Recovery/MP4Box.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace TestSupport {

/// One track of an index, built byte by byte. Its durations, and the counts in its tables, are
/// wrong for any clip, so that what is left of them shows.
struct TrackRecipe {
    std::string kind = "vide";
    std::string format = "apch";
    std::uint32_t timescale = 25;
    std::uint32_t delta = 1;
    std::uint32_t sampleSize = 0;
    int version = 0;  ///< Of "tkhd" and "mdhd".
};

inline const TrackRecipe stereoSound{
    .kind = "soun", .format = "sowt", .timescale = 48'000, .delta = 1, .sampleSize = 4};

/// The boxes that a track has; an empty one is left out.
struct TrackBoxes {
    std::string tkhd, edts, mdhd, hdlr, stsd, stts, stsz;

    explicit TrackBoxes(const TrackRecipe& recipe = {});

    std::string trak() const;
};

constexpr std::uint32_t staleDuration = 0xEEEEEEEE;

std::string movieHeader(int version, std::uint32_t timescale);

/// A sample description of a format, filled with bytes that do not repeat.
std::string sampleDescription(const std::string& format);

/// A "moov" with a movie header of version 0 and a time scale of 600 and with these tracks.
std::string moovBox(const std::vector<TrackRecipe>& tracks);

/// The tree of a whole "moov" box.
std::shared_ptr<ReelCore::MP4Box> parsedMoov(const std::string& box);

std::string textOf(const ReelCore::MP4Box::Bytes& bytes);

/// The types of a box's children, in order, with a space between them.
std::string childrenOf(const ReelCore::MP4Box& box);

}  // namespace TestSupport
