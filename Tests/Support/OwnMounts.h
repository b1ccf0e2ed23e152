#pragma once

#include "ReelCore/Platform/URL.h"

#include <functional>
#include <string>

namespace TestSupport {

/// Runs `body` as statusOfForked does, in a mount table of its own: what it mounts and hides is so
/// for nobody else, and is gone with its process.
int statusInOwnMounts(const std::function<int()>& body);

/// Why this machine can't have it; empty where it can.
std::string ownMountsMissing();

/// Puts an empty folder in the place of a folder. Only in a mount table of the test's own.
void mountEmptyFolder(const ReelCore::URL& folder);

/// Hides ffmpeg and ffprobe wherever they are looked for. Only in a mount table of the test's own.
void hideMediaTools();

}  // namespace TestSupport
