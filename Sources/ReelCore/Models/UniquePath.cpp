#include "ReelCore/Models/UniquePath.h"

#include "ReelCore/Platform/FileSystem.h"

#include <string>

namespace ReelCore {

URL uniqueOutputURL(const URL& url) {
    URL candidate = url;
    for (int number = 2; FileSystem::exists(candidate); ++number) {
        const std::string name = url.stem().native() + " " + std::to_string(number);
        candidate = url.parent_path() / (name + url.extension().native());
    }
    return candidate;
}

}  // namespace ReelCore
