#include "ReelCore/Platform/URL.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/Text.h"

#include <string_view>

#include <fmt/format.h>

namespace ReelCore {

namespace {

/// What a path may hold unencoded (RFC 3986, pchar), but for "&", which XML would take for its own,
/// and ";", which old readers take for the start of parameters.
bool mayStand(char c) {
    constexpr std::string_view marks = "-._~/:@!$'()*+,=";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           marks.find(c) != marks.npos;
}

}  // namespace

URL withoutSlashAtEnd(const URL& url) {
    return url.has_filename() ? url : url.parent_path();
}

std::string lastPathComponent(const URL& url) {
    const URL path = withoutSlashAtEnd(url);
    return path.has_filename() ? path.filename().native() : path.native();
}

std::string lowerCasedExtension(const URL& url) {
    const std::string extension = withoutSlashAtEnd(url).extension().native();
    return extension.empty() ? extension : Text::lowerCased(extension.substr(1));
}

std::string absoluteString(const URL& url) {
    const URL absolute = FileSystem::absolute(url);
    std::string text = "file://";
    for (const char c : absolute.native()) {
        if (mayStand(c)) {
            text += c;
        } else {
            text += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return text;
}

}  // namespace ReelCore
