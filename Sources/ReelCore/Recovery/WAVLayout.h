#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>

namespace ReelCore {

/// Where the sizes and the sound of a WAV file stand, and what its header says of them. Bytes.
struct WAVLayout {
    std::int64_t riffSize = 0;        ///< As declared.
    std::int64_t declaredData = 0;    ///< The size of the "data" chunk, as declared.
    std::int64_t dataSizeOffset = 0;  ///< Where that size stands in the file.
    std::int64_t dataOffset = 0;      ///< Of the first byte of sound.
    double sampleRate = 48000.0;      ///< In Hz; this where no format stands before the sound.
    std::int64_t blockAlign = 0;      ///< Bytes of one sample of all channels; 0 likewise.

    bool operator==(const WAVLayout&) const = default;

    /// Goes over the chunks up to the sound. Throws BWFReader::BWFError: NotRIFF, or Unreadable
    /// where there is no sound; SystemError where the file can't be opened or read.
    static WAVLayout read(const URL& url);
};

}  // namespace ReelCore
