#pragma once

#include <string>
#include <string_view>

namespace keldo_diskutil {

/// A file system that can be made here.
enum class TargetFileSystem { exFAT, fat32 };

/// The label nearest to `name` that the file system can hold; may be empty, for none.
///
/// At most 11 units (FAT: bytes; exFAT: UTF-16), cut between characters, blanks at both ends
/// taken away. What no label may hold becomes "_": control characters and "*/:<>?\| and what is not
/// UTF-8; for FAT also +,.;=[] and every character beyond ASCII, and letters become capitals.
std::string labelFor(std::string_view name, TargetFileSystem fileSystem);

/// The same label with every character beyond ASCII replaced by "_".
std::string plainLabel(std::string_view label);

}  // namespace keldo_diskutil
