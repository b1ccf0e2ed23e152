#include "ReelCore/Platform/FileBytes.h"

#include "ReelCore/Platform/File.h"

namespace ReelCore {

std::optional<std::vector<std::byte>> bytesOfFile(const URL& file, std::int64_t most) {
    const File opened = File::openForReading(file, FileLinks::follow);
    const std::int64_t size = opened.size();
    if (size > most) return std::nullopt;
    std::vector<std::byte> bytes(static_cast<std::size_t>(size));
    bytes.resize(opened.readAt(0, bytes));
    return bytes;
}

}  // namespace ReelCore
