#include "Support/Boxes.h"

#include "Support/FolderTree.h"

namespace TestSupport {

std::string bigEndian(std::uint64_t number, int bytes) {
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        text += static_cast<char>(number >> shift & 0xFFU);
    }
    return text;
}

std::string boxHeader(std::string_view type, std::uint32_t size) {
    return bigEndian(size, 4) + std::string(type);
}

std::string box(std::string_view type, std::string_view payload) {
    return boxHeader(type, static_cast<std::uint32_t>(payload.size() + 8)) + std::string(payload);
}

std::string wideBoxHeader(std::string_view type, std::uint64_t size) {
    return boxHeader(type, 1) + bigEndian(size, 8);
}

std::string wideBox(std::string_view type, std::string_view payload) {
    return wideBoxHeader(type, payload.size() + 16) + std::string(payload);
}

std::string fileTypeBox() {
    return box("ftyp", "qt  " + bigEndian(512, 4) + "qt  ");
}

std::string proResFrame(std::size_t size, unsigned seed) {
    return bigEndian(size, 4) + "icpf" + noise(size - 8, seed);
}

}  // namespace TestSupport
