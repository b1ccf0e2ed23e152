#pragma once

#include "ReelCore/Platform/File.h"

namespace ReelCore {

/// Opens what a user gave, also through a link, to be read only. Throws RecoveryError::NotFound
/// where it can't be opened or is no file.
File openSource(const URL& url);

}  // namespace ReelCore
