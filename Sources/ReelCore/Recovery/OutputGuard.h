#pragma once

#include "ReelCore/Platform/URL.h"

#include <initializer_list>

namespace ReelCore {

/// Throws RecoveryError::IOFailed where `output` is one of the files that it is to be made from,
/// also under another name or through a link: outputs are written in place of what is there.
void requireOtherFile(const URL& output, std::initializer_list<URL> inputs);

}  // namespace ReelCore
