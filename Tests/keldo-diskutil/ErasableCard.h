#pragma once

#include "ReelCore/CardFormat/CardFormatter.h"
#include "Support/LoopDevice.h"

#include <string>

namespace keldo_diskutil {

/// The files on the card of every erase test.
const TestSupport::FolderTree& cardFiles();

using FileSystem = ReelCore::CardFormatter::FileSystem;

/// Erases with the real tool, the gate open and everything confirmed; returns what it said.
std::string erase(const ReelCore::URL& mountPoint, const std::string& newName,
                  FileSystem fileSystem = FileSystem::exFAT);

/// The same where it is to fail: what the tool said with a status other than 0. Throws
/// std::logic_error if the erase went through.
std::string failureOf(const ReelCore::URL& mountPoint, const std::string& newName = "A001",
                      FileSystem fileSystem = FileSystem::exFAT);

}  // namespace keldo_diskutil
