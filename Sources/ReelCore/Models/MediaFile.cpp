#include "ReelCore/Models/MediaFile.h"

namespace ReelCore {

std::string MediaFile::filename() const {
    return relativePath.substr(relativePath.rfind('/') + 1);
}

}  // namespace ReelCore

std::size_t std::hash<ReelCore::MediaFile>::operator()(
    const ReelCore::MediaFile& file) const noexcept {
    const auto mix = [](std::size_t seed, std::size_t value) {
        return seed ^ (value + 0x9e3779b97f4a7c15U + (seed << 6) + (seed >> 2));
    };
    const std::int64_t date =
        file.modificationDate ? file.modificationDate->time_since_epoch().count() : -1;
    std::size_t seed = std::hash<std::string>{}(file.relativePath);
    seed = mix(seed, std::hash<std::int64_t>{}(file.size));
    return mix(seed, std::hash<std::int64_t>{}(date));
}
