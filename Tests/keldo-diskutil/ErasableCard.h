#pragma once

#include "ReelCore/CardFormat/CardFormatter.h"
#include "ReelCore/Platform/HeldCard.h"
#include "Support/LoopDevice.h"

#include <optional>
#include <string>

namespace keldo_diskutil {

/// The files on the card of every erase test.
const TestSupport::FolderTree& cardFiles();

using FileSystem = ReelCore::CardFormatter::FileSystem;

/// Erases with the real tool, the gate open and everything confirmed; returns what it said.
std::string erase(const ReelCore::URL& mountPoint, const std::string& newName,
                  FileSystem fileSystem = FileSystem::exFAT,
                  std::optional<ReelCore::HeldCard> card = std::nullopt);

/// The same where it is to fail: what the tool said with a status other than 0. Throws
/// std::logic_error if the erase went through.
std::string failureOf(const ReelCore::URL& mountPoint, const std::string& newName = "A001",
                      FileSystem fileSystem = FileSystem::exFAT,
                      std::optional<ReelCore::HeldCard> card = std::nullopt);

}  // namespace keldo_diskutil
