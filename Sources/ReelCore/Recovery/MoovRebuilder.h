#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/URL.h"
#include "ReelCore/Recovery/MdatIndex.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace ReelCore {

/// Makes a clip playable whose index was never written, without decoding it: finds its frames by
/// their own tag and derives the index from that of a healthy clip of the same camera. Covers
/// ProRes with or without PCM sound and refuses all else. Any thread; can't be cancelled.
struct MoovRebuilder {
    using MdatIndex = ReelCore::MdatIndex;

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
    /// or the reference does not serve, or `output` is one of them; OutOfRange where no index can
    /// hold the clip's numbers, before anything is written; SystemError where a file can't be read
    /// or written; what was written until then stays.
    static Stats rebuild(const URL& damaged, const URL& reference, const URL& output);

    /// Finds the ProRes frames (SMPTE RDD 36) in media by their own tag and takes what lies between
    /// them for sound of `bytesPerAudioFrame` bytes a sample; of 0, there is none. A frame that
    /// runs over the end of the media ends the index: one that follows a frame, and one that
    /// follows sound unless a whole frame stands behind it, which tells that sound only looked like
    /// one.
    static MdatIndex indexMdat(std::span<const std::byte> mdat, std::int64_t bytesPerAudioFrame);

    /// The same for `length` bytes of a file from `offset` on, of which only the beginnings of
    /// frames and what lies between them are read. Throws SystemError where they can't be.
    static MdatIndex indexMdat(const File& file, std::int64_t offset, std::int64_t length,
                               std::int64_t bytesPerAudioFrame);
};

}  // namespace ReelCore
