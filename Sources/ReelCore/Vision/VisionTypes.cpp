#include "ReelCore/Vision/VisionTypes.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

std::int64_t SlateInfo::fieldCount() const {
    const std::array fields{&production, &roll, &scene, &take, &director, &camera, &date, &fps};
    return std::ranges::count_if(fields, [](const auto* field) { return field->has_value(); });
}

std::string SlateInfo::summary() const {
    std::vector<std::string> pieces;
    const auto add = [&](std::string_view label, const std::optional<std::string>& value) {
        if (value) pieces.push_back(fmt::format("{} {}", label, *value));
    };
    add("Sc", scene);
    add("Tk", take);
    add("Roll", roll);
    add("Dir", director);
    return fmt::format("{}", fmt::join(pieces, " · "));
}

std::string AppearanceHint::note() const {
    if (peopleCount < 1 && faceCount < 1) return "no person on camera at this moment";
    const std::string head =
        clothingColor ? "person in " + *clothingColor : std::string("person on camera");
    if (faceCount >= 2) return fmt::format("{} ({} faces on camera)", head, faceCount);
    if (peopleCount >= 2) return fmt::format("{} ({} on camera)", head, peopleCount);
    return head;
}

}  // namespace ReelCore
