#pragma once

#include <string_view>
#include <vector>

namespace ReelCore {

/// The pieces of `text` between any of the characters of `separators`; empty pieces are dropped.
/// They stand in the text's own bytes.
std::vector<std::string_view> piecesOf(std::string_view text, std::string_view separators);

}  // namespace ReelCore
