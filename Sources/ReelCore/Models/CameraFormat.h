#pragma once

#include "ReelCore/Models/Enumeration.h"

#include <string>
#include <string_view>
#include <vector>

namespace ReelCore {

/// The camera family that wrote a card.
enum class CameraFormat { red, arri, sony, blackmagic, canon, panasonic, generic };

/// The family's name on paper and on screen, such as "Sony".
std::string_view rawValue(CameraFormat format);

template <>
std::span<const CameraFormat> allCases<CameraFormat>();

/// Tells the family from the names at the top of a card, in either case of letters. Names that no
/// rule knows, and no names at all, give `generic`.
CameraFormat detect(const std::vector<std::string>& topLevelNames);

}  // namespace ReelCore
