#include "ReelCore/Platform/Split.h"

namespace ReelCore {

std::vector<std::string_view> piecesOf(std::string_view text, std::string_view separators) {
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        const auto end = text.find_first_of(separators);
        if (end != 0) pieces.push_back(text.substr(0, end));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return pieces;
}

}  // namespace ReelCore
