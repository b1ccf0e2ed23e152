#include "ReelCore/Offload/AlikePaths.h"

#include "ReelCore/Platform/Text.h"

#include <functional>

namespace ReelCore {

std::vector<std::size_t> AlikePaths::add(const std::string& path) {
    const std::size_t hash = std::hash<std::string>{}(Text::alikeKey(path));
    const auto [first, last] = numbers_.equal_range(hash);
    std::vector<std::size_t> alike;
    for (auto one = first; one != last; ++one) alike.push_back(one->second);
    numbers_.emplace(hash, numbers_.size());
    return alike;
}

}  // namespace ReelCore
