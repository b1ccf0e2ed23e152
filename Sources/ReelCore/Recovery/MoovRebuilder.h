#pragma once

#include "ReelCore/Platform/URL.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace ReelCore {

/// Makes a clip playable whose index was never written, without decoding it: finds its frames by
/// their own tag and derives the index from that of a healthy clip of the same camera. Covers
/// ProRes with or without PCM sound and refuses all else. Any thread; can't be cancelled.
struct MoovRebuilder {
    /// Formats of sample descriptions.
    static constexpr std::array<std::string_view, 6> proResTypes{"apch", "apcn", "apcs",
                                                                 "apco", "ap4h", "ap4x"};
    static constexpr std::array<std::string_view, 9> pcmTypes{
        "sowt", "twos", "lpcm", "in24", "in32", "fl32", "fl64", "NONE", "raw "};

    struct Stats {
        std::int64_t videoFrames = 0;
        double audioSeconds = 0.0;  ///< 0 without sound.
        double durationSeconds = 0.0;

        bool operator==(const Stats&) const = default;

        /// For people.
        std::string summary() const;
    };

    /// Writes the clip's media with a new index to `output`, in place of what is there. Neither the
    /// damaged file nor the reference, which may be the same, is ever written to. Memory grows with
    /// the number of frames and not with the size of the clip. Throws RecoveryError where the clip
    /// or the reference does not serve, or `output` is one of them; SystemError where a file can't
    /// be read or written; what was written until then stays.
    static Stats rebuild(const URL& damaged, const URL& reference, const URL& output);
};

}  // namespace ReelCore
