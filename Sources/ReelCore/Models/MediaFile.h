#pragma once

#include "ReelCore/Platform/Date.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace ReelCore {

/// One regular file on a source.
struct MediaFile {
    /// Path below the source root, with "/" between its parts and none in front. The bytes are the
    /// file system's and need not be UTF-8.
    std::string relativePath;
    /// In bytes; 0 where the file system reports none.
    std::int64_t size = 0;
    /// Content modification date; absent where the file system reports none that a Date holds.
    std::optional<Date> modificationDate;

    bool operator==(const MediaFile&) const = default;

    /// The last part of the path.
    std::string filename() const;
};

}  // namespace ReelCore

template <>
struct std::hash<ReelCore::MediaFile> {
    std::size_t operator()(const ReelCore::MediaFile& file) const noexcept;
};
