#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Recovery/WAVLayout.h"

#include <cstdint>

namespace ReelCore {

/// Writes a copy of a WAV file in which the two sizes in the header are those of the sound that is
/// there. Nothing else differs.
struct WAVRepairer {
    struct Fixed {
        double seconds = 0.0;  ///< Of sound; 0 where the file does not tell its format.

        bool operator==(const Fixed&) const = default;
    };

    /// What a header is to say of a file of `fileSize` bytes.
    struct Sizes {
        std::uint32_t riff = 0;
        std::uint32_t data = 0;
        Fixed fixed;

        bool operator==(const Sizes&) const = default;
    };

    /// A last sample that is cut off is left out of the sound. Sizes above 32 bits become the
    /// largest, which leaves the seconds as they are.
    static Sizes sizesOf(const WAVLayout& layout, std::int64_t fileSize);

    /// A file at `output` is replaced. Throws what WAVLayout::read throws, RecoveryError::IOFailed
    /// where `output` is the source, and SystemError; what was written until then stays.
    static Fixed repair(const URL& source, const URL& output);
};

}  // namespace ReelCore
