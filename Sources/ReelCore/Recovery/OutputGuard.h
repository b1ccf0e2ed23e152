#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/URL.h"

#include <initializer_list>

namespace ReelCore {

/// Throws RecoveryError::IOFailed where `output` is one of the files that it is to be made from,
/// also under another name or through a link: outputs are written in place of what is there.
void requireOtherFile(const URL& output, std::initializer_list<URL> inputs);

/// Opens an output to be written from its start, in place of what is there. An empty file is
/// written to as it is: it may be the one that keeps the name from others.
File openOutput(const URL& output);

}  // namespace ReelCore
