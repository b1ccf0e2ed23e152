#pragma once

#include "ReelCore/Platform/URL.h"

namespace ReelCore {

/// Writes a copy of a WAV file in which the two sizes in the header are those of the sound that is
/// there. Nothing else differs.
struct WAVRepairer {
    struct Fixed {
        double seconds = 0.0;  ///< Of sound; 0 where the file does not tell its format.

        bool operator==(const Fixed&) const = default;
    };

    /// A file at `output` is replaced. A last sample that is cut off is left out of the sound;
    /// sizes above 32 bits are written as the largest. Throws what WAVLayout::read throws,
    /// RecoveryError::IOFailed where `output` is the source, and SystemError; what was written
    /// until then stays.
    static Fixed repair(const URL& source, const URL& output);
};

}  // namespace ReelCore
