#pragma once

#include "ReelCore/Recovery/MdatIndex.h"
#include "ReelCore/Recovery/MoovRebuilder.h"
#include "ReelCore/Recovery/TrackInfo.h"

#include <cstdint>
#include <optional>

namespace ReelCore {

/// The tracks of a reference that a rebuilt clip keeps.
struct KeptTracks {
    TrackInfo video;
    std::optional<TrackInfo> audio;
};

/// Turns the "moov" of a reference into that of an index, whose media stands in the file from
/// `mdatFileOffset` on: new sample tables and durations, the kept tracks alone, no edit lists and
/// no user data. Throws RecoveryError::ReferenceUnusable where a box is missing, OutOfRange where a
/// length or a table can't be written.
MoovRebuilder::Stats patch(MP4Box& moov, const KeptTracks& tracks, const MdatIndex& index,
                           std::int64_t mdatFileOffset);

}  // namespace ReelCore
