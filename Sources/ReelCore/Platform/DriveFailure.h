#pragma once

#include <string_view>

namespace ReelCore {

/// True for a sentence with which the kernel tells that a device, a file system or a network failed
/// who reads or writes an open file. In English, as programs say it that don't ask for the user's
/// language. Any thread.
bool isSentenceOfFailedDrive(std::string_view sentence);

}  // namespace ReelCore
