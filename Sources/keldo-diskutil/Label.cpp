#include "keldo-diskutil/Label.h"

#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <vector>

namespace keldo_diskutil {

namespace {

using ReelCore::Text;

constexpr std::size_t capacity = 11;

bool isASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::vector<std::string> characters(std::string_view text) {
    std::vector<std::string> list;
    std::string rest = Text::wellFormed(text);
    while (!rest.empty()) {
        list.push_back(Text::prefix(rest, 1));
        rest.erase(0, list.back().size());
    }
    return list;
}

/// Of well-formed UTF-8: one unit a code point, two beyond the basic plane.
std::size_t utf16Length(std::string_view text) {
    std::size_t length = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80) length += byte >= 0xF0 ? 2 : 1;
    }
    return length;
}

bool isForbidden(const std::string& character, TargetFileSystem fileSystem) {
    const std::string_view everywhere = "\"*/:<>?\\|";
    const std::string_view inFAT = "+,.;=[]";
    const char first = character.front();
    if (character == "\uFFFD" || everywhere.find(first) != everywhere.npos) return true;
    if (static_cast<unsigned char>(first) < 0x20 || first == 0x7F) return true;
    return fileSystem == TargetFileSystem::fat32 &&
           (!isASCII(character) || inFAT.find(first) != inFAT.npos);
}

std::string trimmed(const std::string& text) {
    const auto begin = text.find_first_not_of(' ');
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

}  // namespace

std::string labelFor(std::string_view name, TargetFileSystem fileSystem) {
    std::string label;
    for (const std::string& character : characters(trimmed(std::string(name)))) {
        const std::string next = isForbidden(character, fileSystem) ? "_" : character;
        if (utf16Length(label + next) > capacity) break;
        label += next;
    }
    if (fileSystem == TargetFileSystem::fat32) label = Text::upperCased(label);
    return trimmed(label);
}

std::string plainLabel(std::string_view label) {
    std::string plain;
    for (const std::string& character : characters(label)) {
        plain += isASCII(character) ? character : "_";
    }
    return plain;
}

}  // namespace keldo_diskutil
