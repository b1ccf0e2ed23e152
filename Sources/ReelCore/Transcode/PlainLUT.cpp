#include "ReelCore/Transcode/PlainLUT.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <string_view>
#include <system_error>

namespace ReelCore {

namespace {

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           static_cast<unsigned char>(c) >= 0x80 ||
           std::string_view("/._- ").find(c) != std::string_view::npos;
}

}  // namespace

PlainLUT::PlainLUT(const URL& lut) : lut_(FileSystem::absolute(lut)) {
    if (std::ranges::all_of(lut_.native(), isPlain)) return;
    link_.emplace("keldo-lut-", "." + lowerCasedExtension(lut));
    std::error_code failure;
    std::filesystem::create_symlink(lut_, link_->url(), failure);
    if (failure) throw SystemError(failure.value(), link_->url());
}

URL PlainLUT::url() const {
    return link_ ? link_->url() : lut_;
}

}  // namespace ReelCore
