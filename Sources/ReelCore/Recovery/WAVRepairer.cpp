#include "ReelCore/Recovery/WAVRepairer.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/OutputGuard.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace ReelCore {

namespace {

std::uint32_t clamped(std::int64_t size) {
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(size, 0, 0xFFFFFFFF));
}

std::array<std::byte, 4> littleEndian(std::uint32_t number) {
    std::array<std::byte, 4> bytes;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>(number >> (8 * i) & 0xFFU);
    }
    return bytes;
}

void duplicate(const URL& source, const URL& output) {
    const File file = File::openForReading(source, FileLinks::follow);
    openOutput(output).append(file, 0, file.size());
}

}  // namespace

WAVRepairer::Sizes WAVRepairer::sizesOf(const WAVLayout& layout, std::int64_t fileSize) {
    std::int64_t data = std::max<std::int64_t>(fileSize - layout.dataOffset, 0);
    if (layout.blockAlign >= 1) data -= data % layout.blockAlign;
    Sizes sizes{clamped(fileSize - 8), clamped(data), {}};
    if (layout.blockAlign >= 1 && layout.sampleRate > 0.0) {
        const auto samples = static_cast<double>(data) / static_cast<double>(layout.blockAlign);
        sizes.fixed.seconds = samples / layout.sampleRate;
    }
    return sizes;
}

WAVRepairer::Fixed WAVRepairer::repair(const URL& source, const URL& output) {
    requireOtherFile(output, {source});
    duplicate(source, output);
    const WAVLayout layout = WAVLayout::read(output);
    File file = File::openForUpdating(output);
    const Sizes sizes = sizesOf(layout, file.size());
    file.writeAt(4, littleEndian(sizes.riff));
    file.writeAt(layout.dataSizeOffset, littleEndian(sizes.data));
    return sizes.fixed;
}

}  // namespace ReelCore
