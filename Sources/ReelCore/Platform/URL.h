#pragma once

#include <filesystem>

namespace ReelCore {

/// A file location. Its bytes are kept as the file system gave them: they need not be UTF-8, and
/// become text only where a person or a document is to read them (Text::wellFormed).
using URL = std::filesystem::path;

}  // namespace ReelCore
