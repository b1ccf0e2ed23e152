#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace ReelCore {

/// Remembers the paths of a card to find those that some drive may take for one (Text::alikeKey).
/// Keeps a number for each path, not its text: now and then it finds too many.
class AlikePaths {
public:
    /// Remembers the next path, and tells the numbers of those before it, counted from 0, that may
    /// be alike.
    std::vector<std::size_t> add(const std::string& path);

private:
    std::unordered_multimap<std::size_t, std::size_t> numbers_;  ///< Hash of the key to number.
};

}  // namespace ReelCore
