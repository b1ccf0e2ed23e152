#pragma once

#include "ReelCore/Recovery/MoovPatch.h"
#include "ReferenceMovie.h"
#include "Support/Boxes.h"

namespace ReelCore {

/// A "moov" and its tracks: the first is the picture, the second, if there is one, the sound.
struct PatchedMovie {
    explicit PatchedMovie(const std::string& box)
        : moov(TestSupport::parsedMoov(box)), tracks(keptOf(*moov)) {}

    static KeptTracks keptOf(const MP4Box& moov) {
        auto tracks = describe(moov);
        if (tracks.size() == 1) return {tracks[0], std::nullopt};
        return {tracks.at(0), tracks.at(1)};
    }

    /// The media stands at byte 36 of the file.
    MoovRebuilder::Stats patched(const MdatIndex& index) { return patch(*moov, tracks, index, 36); }

    /// The payload of a box below the n-th track.
    std::string of(std::size_t track, const std::vector<std::string_view>& path) const {
        return TestSupport::textOf(moov->all("trak").at(track)->first(path)->payload);
    }

    std::string table(std::size_t track, std::string_view type) const {
        return of(track, {"mdia", "minf", "stbl", type});
    }

    std::shared_ptr<MP4Box> moov;
    KeptTracks tracks;
};

inline std::string words(std::initializer_list<std::uint64_t> numbers) {
    std::string bytes;
    for (const std::uint64_t number : numbers) bytes += TestSupport::bigEndian(number, 4);
    return bytes;
}

/// So many frames of 20 bytes, and no sound.
inline MdatIndex framesAlone(std::size_t count) {
    return {std::vector<MdatIndex::VideoSample>(count, {0, 20}), {}, 20};
}

}  // namespace ReelCore
