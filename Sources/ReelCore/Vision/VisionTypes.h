#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

/// What a slate says, field by field as written on it.
struct SlateInfo {
    std::optional<std::string> production;
    std::optional<std::string> roll;
    std::optional<std::string> scene;
    std::optional<std::string> take;
    std::optional<std::string> director;
    std::optional<std::string> camera;  ///< The camera, or the director of photography.
    std::optional<std::string> date;
    std::optional<std::string> fps;
    std::vector<std::string> rawLines;  ///< As recognised, trimmed, without empty ones.

    /// How many of the eight fields are known.
    std::int64_t fieldCount() const;

    /// "Sc 12A · Tk 3 · Roll A004 · Dir JANE ROE", of what is known.
    std::string summary() const;

    bool operator==(const SlateInfo&) const = default;
};

/// Who is in the picture while a speaker talks: a clue, not an identification.
struct AppearanceHint {
    std::string speaker;
    std::string atTimecode;  ///< The frame that was looked at.
    std::int64_t peopleCount = 0;
    std::int64_t faceCount = 0;
    std::optional<std::string> clothingColor;  ///< Of the tallest person.

    /// In words for people, such as "person in blue (2 faces on camera)".
    std::string note() const;

    bool operator==(const AppearanceHint&) const = default;
};

}  // namespace ReelCore
