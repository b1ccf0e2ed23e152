#include "ReelCore/Recovery/MdatHeader.h"

#include "ReelCore/Recovery/BigEndian.h"

#include <string_view>

namespace ReelCore {

MP4Box::Bytes mdatHeader(std::int64_t payload) {
    MP4Box::Bytes header;
    appendBigEndian(header, std::uint32_t{1});
    for (const char c : std::string_view("mdat")) header.push_back(static_cast<std::byte>(c));
    appendBigEndian(header, static_cast<std::uint64_t>(payload) + 16);
    return header;
}

}  // namespace ReelCore
