#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace TestSupport {

/// A number as `bytes` bytes, the lowest first.
std::string littleEndian(std::uint64_t number, int bytes);

/// The eight bytes in front of a chunk's payload, whatever really follows.
std::string riffHeader(std::string_view id, std::uint32_t size);

/// A RIFF chunk: its id, its size, its payload, and a zero byte where the size is odd.
std::string riffChunk(std::string_view id, std::string_view payload);

/// A RIFF/WAVE file with these chunks one after the other.
std::string riffFile(std::string_view chunks);

/// What a recorder writes about a recording.
struct Recording {
    std::uint32_t sampleRate = 48000;
    std::uint16_t channels = 1;
    std::uint16_t bitsPerSample = 24;
    double seconds = 1.0;             ///< Of silence.
    std::uint64_t timeReference = 0;  ///< Samples since midnight.
    bool hasBroadcastExtension = true;
    std::string iXML = {};  ///< Empty for no such chunk; it stands behind the sound.
};

/// The payload of a "fmt " chunk for PCM sound, 16 bytes.
std::string formatPayload(const Recording& recording);

/// The payload of a "bext" chunk, 602 bytes.
std::string broadcastPayload(std::uint64_t timeReference);

/// The recording as a Broadcast WAV file.
std::string broadcastWAV(const Recording& recording);

}  // namespace TestSupport
