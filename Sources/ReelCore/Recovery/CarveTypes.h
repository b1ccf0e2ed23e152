#pragma once

#include "ReelCore/Models/Enumeration.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace ReelCore {

/// What kind of media was found in an image.
enum class FindingKind { movie, mxf, orphanProRes, wave };

/// For people.
std::string_view rawValue(FindingKind kind);
template <>
std::span<const FindingKind> allCases<FindingKind>();

/// The extension of a file that is cut out, without a dot.
std::string_view outputExtension(FindingKind kind);

/// Media that was found in the image of a card. Bytes.
struct Finding {
    FindingKind kind = FindingKind::movie;
    std::int64_t offset = 0;  ///< In the image.
    std::int64_t length = 0;
    bool complete = false;  ///< It ends where its own structure says.

    bool operator==(const Finding&) const = default;

    /// For people.
    std::string label() const;
};

/// How far a scan is. Bytes.
struct CarveProgress {
    std::int64_t bytesScanned = 0;
    std::int64_t totalBytes = 0;
    std::int64_t found = 0;  ///< Findings so far.

    bool operator==(const CarveProgress&) const = default;

    /// 0 to 1.
    double fraction() const;
};

}  // namespace ReelCore
