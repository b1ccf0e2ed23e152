#pragma once

#include <string_view>

namespace ReelCore {

/// The library's version, as it stands in reports and hash lists.
inline constexpr std::string_view ReelCoreVersion = "0.1.0";

/// The tool's name, as it stands in reports and hash lists.
inline constexpr std::string_view toolName = "keldobay";

}  // namespace ReelCore
