#pragma once

#include <filesystem>
#include <string>

namespace ReelCore {

/// A file location. Its bytes are kept as the file system gave them: they need not be UTF-8, and
/// become text only where a person or a document is to read them (Text::wellFormed).
using URL = std::filesystem::path;

/// The path without slashes at its end; "/" for the root of all folders.
URL withoutSlashAtEnd(const URL& url);

/// The last part of a path, whether or not a slash follows it; "/" for the root of all folders.
std::string lastPathComponent(const URL& url);

/// What stands behind the last dot of the last part, in lower case; empty where nothing does, or
/// where the dot begins the name.
std::string lowerCasedExtension(const URL& url);

/// The location as an absolute "file" URL (RFC 8089), percent-encoded so that it may stand in an
/// XML attribute as it is. Throws SystemError where a relative path has no working folder.
std::string absoluteString(const URL& url);

}  // namespace ReelCore
