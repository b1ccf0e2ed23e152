#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace ReelCore {

/// The file system that a folder or file lies on, and its number there.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;

    bool operator==(const FileIdentity&) const = default;

    struct Hash {
        std::size_t operator()(const FileIdentity& identity) const {
            return std::hash<std::uint64_t>{}(identity.number ^ identity.device << 48);
        }
    };
};

/// What tells a regular file from the one that stood in its place before: a copy that was replaced,
/// written to or cut has another one. It outlasts an unmounting and another plug. File systems of
/// the FAT family, and programs that serve one, number their files anew whenever they like and keep
/// dates to two seconds at worst; there the number is absent and the date cut to that.
struct FileStamp {
    std::optional<std::uint64_t> number;   ///< Of the file on its file system.
    std::int64_t size = 0;                 ///< In bytes.
    std::int64_t modifiedSeconds = 0;      ///< Of the modification date, since 1970.
    std::int64_t modifiedNanoseconds = 0;  ///< Of the modification date, within its second.

    bool operator==(const FileStamp&) const = default;
};

}  // namespace ReelCore
