#include "ReelCore/Recovery/WAVRepairer.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/OutputGuard.h"
#include "ReelCore/Recovery/WAVLayout.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace ReelCore {

namespace {

/// The size as a RIFF header holds it: little-endian, and the largest where it does not fit.
std::array<std::byte, 4> headerSizeOf(std::int64_t size) {
    const auto fitting = static_cast<std::uint32_t>(std::clamp<std::int64_t>(size, 0, 0xFFFFFFFF));
    std::array<std::byte, 4> bytes;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>(fitting >> (8 * i) & 0xFFU);
    }
    return bytes;
}

void duplicate(const URL& source, const URL& output) {
    const File file = File::openForReading(source, FileLinks::follow);
    File::create(output).append(file, 0, file.size());
}

}  // namespace

WAVRepairer::Fixed WAVRepairer::repair(const URL& source, const URL& output) {
    requireOtherFile(output, {source});
    duplicate(source, output);
    const WAVLayout layout = WAVLayout::read(output);
    File file = File::openForUpdating(output);
    const std::int64_t fileSize = file.size();
    std::int64_t dataSize = std::max<std::int64_t>(fileSize - layout.dataOffset, 0);
    if (layout.blockAlign >= 1) dataSize -= dataSize % layout.blockAlign;
    file.writeAt(4, headerSizeOf(fileSize - 8));
    file.writeAt(layout.dataSizeOffset, headerSizeOf(dataSize));
    if (layout.blockAlign < 1 || layout.sampleRate <= 0.0) return {};
    return {static_cast<double>(dataSize) / static_cast<double>(layout.blockAlign) /
            layout.sampleRate};
}

}  // namespace ReelCore
