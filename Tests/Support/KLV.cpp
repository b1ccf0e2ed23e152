#include "Support/KLV.h"

#include "Support/Boxes.h"

namespace TestSupport {

std::string partitionKey(int kind) {
    const std::string prefix("\x06\x0E\x2B\x34\x02\x05\x01\x01\x0D\x01\x02\x01\x01", 13);
    return prefix + static_cast<char>(kind) + std::string("\x04\0", 2);
}

std::string essenceKey() {
    return {"\x06\x0E\x2B\x34\x01\x02\x01\x01\x0D\x01\x03\x01\x15\x01\x05\0", 16};
}

std::string berLength(std::uint64_t length, int bytes) {
    return static_cast<char>(0x80 + bytes) + bigEndian(length, bytes);
}

std::string triplet(std::string_view key, std::string_view value) {
    return std::string(key) + berLength(value.size()) + std::string(value);
}

std::string mxfClip(std::string_view essence) {
    const std::string pack(88, '\0');
    return triplet(partitionKey(2), pack) + triplet(essenceKey(), essence) +
           triplet(partitionKey(4), pack);
}

}  // namespace TestSupport
