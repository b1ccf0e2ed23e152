#include "Support/RIFF.h"

#include <cmath>

namespace TestSupport {

std::string littleEndian(std::uint64_t number, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i, number >>= 8U) text += static_cast<char>(number & 0xFFU);
    return text;
}

std::string riffHeader(std::string_view id, std::uint32_t size) {
    return std::string(id) + littleEndian(size, 4);
}

std::string riffChunk(std::string_view id, std::string_view payload) {
    std::string chunk = riffHeader(id, static_cast<std::uint32_t>(payload.size()));
    chunk += payload;
    if (payload.size() % 2 == 1) chunk += '\0';
    return chunk;
}

std::string riffFile(std::string_view chunks) {
    return "RIFF" + littleEndian(chunks.size() + 4, 4) + "WAVE" + std::string(chunks);
}

std::string formatPayload(const Recording& recording) {
    const std::uint32_t blockAlign = recording.channels * recording.bitsPerSample / 8U;
    return littleEndian(1, 2) + littleEndian(recording.channels, 2) +
           littleEndian(recording.sampleRate, 4) +
           littleEndian(recording.sampleRate * blockAlign, 4) + littleEndian(blockAlign, 2) +
           littleEndian(recording.bitsPerSample, 2);
}

std::string broadcastPayload(std::uint64_t timeReference) {
    return std::string(338, '\0') + littleEndian(timeReference, 8) + std::string(256, '\0');
}

std::string broadcastWAV(const Recording& recording) {
    const double frames = std::round(recording.seconds * recording.sampleRate);
    const std::size_t blockAlign = recording.channels * recording.bitsPerSample / 8U;
    std::string chunks = riffChunk("fmt ", formatPayload(recording));
    if (recording.hasBroadcastExtension) {
        chunks += riffChunk("bext", broadcastPayload(recording.timeReference));
    }
    chunks += riffChunk("data", std::string(static_cast<std::size_t>(frames) * blockAlign, '\0'));
    if (!recording.iXML.empty()) chunks += riffChunk("iXML", recording.iXML);
    return riffFile(chunks);
}

}  // namespace TestSupport
