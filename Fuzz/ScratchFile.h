#pragma once

#include "ReelCore/Platform/URL.h"

#include <fstream>
#include <span>
#include <string>
#include <string_view>

#include <unistd.h>

/// A place for one file of this process in the temporary folder.
inline ReelCore::URL scratchFile(const std::string& name) {
    return std::filesystem::temp_directory_path() /
           ("keldo-fuzz-" + std::to_string(::getpid()) + "-" + name);
}

inline void write(const ReelCore::URL& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

inline std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}
