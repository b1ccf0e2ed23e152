#include "ReelCore/Recovery/ImagePiece.h"

#include "ReelCore/Platform/SystemError.h"

namespace ReelCore {

std::span<const std::byte> readPiece(const File& image, std::int64_t offset,
                                     std::span<std::byte> into) {
    try {
        return into.first(image.readAt(offset, into));
    } catch (const SystemError&) {
        return {};
    }
}

}  // namespace ReelCore
