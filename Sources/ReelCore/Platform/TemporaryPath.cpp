#include "ReelCore/Platform/TemporaryPath.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/ProcessCleanup.h"
#include "ReelCore/Platform/SystemError.h"

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <system_error>

#include <fmt/format.h>

namespace ReelCore {

namespace {

/// A random identifier (RFC 4122, version 4).
std::string freshUUID() {
    std::random_device random;
    std::array<std::uint32_t, 4> word{};
    for (auto& one : word) one = random();
    return fmt::format("{:08X}-{:04X}-4{:03X}-{:04X}-{:04X}{:08X}", word[0], word[1] >> 16U,
                       word[1] & 0xFFFU, (word[2] >> 16U & 0x3FFFU) | 0x8000U, word[2] & 0xFFFFU,
                       word[3]);
}

URL temporaryFolder() {
    std::error_code failure;
    URL folder = std::filesystem::temp_directory_path(failure);
    if (failure) throw SystemError(failure.value(), folder);
    return FileSystem::absolute(folder);
}

}  // namespace

TemporaryPath::TemporaryPath(std::string_view prefix, std::string_view suffix)
    : url_(temporaryFolder() / fmt::format("{}{}{}", prefix, freshUUID(), suffix)) {
    ProcessCleanup::shared().addPath(url_);
}

TemporaryPath::~TemporaryPath() {
    std::error_code ignored;
    std::filesystem::remove_all(url_, ignored);
    ProcessCleanup::shared().removePath(url_);
}

}  // namespace ReelCore
