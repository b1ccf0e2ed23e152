#include "ReelCore/Platform/MountTable.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>

namespace ReelCore {

namespace {

/// The kernel writes blanks, tabs, line feeds and backslashes as "\" and three octal digits.
std::string unescaped(const std::string& field) {
    const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const bool escape = field[i] == '\\' && i + 3 < field.size() && isOctal(field[i + 1]) &&
                            isOctal(field[i + 2]) && isOctal(field[i + 3]);
        text +=
            escape ? static_cast<char>(std::stoi(field.substr(i + 1, 3), nullptr, 8)) : field[i];
        if (escape) i += 3;
    }
    return text;
}

bool holdsOption(const std::string& options, const std::string& wanted) {
    return ("," + options + ",").find("," + wanted + ",") != std::string::npos;
}

/// The fields of a line, each parted from the next by one blank: a field may be empty.
std::vector<std::string> fieldsOf(const std::string& line) {
    std::istringstream rest(line);
    std::vector<std::string> fields;
    for (std::string field; std::getline(rest, field, ' ');) fields.push_back(field);
    return fields;
}

/// The kernel's number of the mount that the deepest existing part of `path` lies on.
std::optional<std::uint64_t> mountIdOf(URL path) {
    struct statx status {};
    while (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_MNT_ID,
                   &status) != 0) {
        if (path == path.parent_path()) return std::nullopt;
        path = path.parent_path();
    }
    if ((status.stx_mask & STATX_MNT_ID) == 0) return std::nullopt;
    return status.stx_mnt_id;
}

std::optional<Mount> parseLine(const std::string& line) {
    const std::vector<std::string> fields = fieldsOf(line);
    constexpr std::ptrdiff_t fixed = 6;
    if (fields.size() < fixed) return std::nullopt;
    const auto separator = std::find(fields.begin() + fixed, fields.end(), "-");
    if (fields.end() - separator < 4) return std::nullopt;
    std::uint64_t id = 0;
    std::from_chars(fields[0].data(), fields[0].data() + fields[0].size(), id);
    return Mount{unescaped(fields[4]),
                 unescaped(fields[3]),
                 fields[2],
                 unescaped(separator[2]),
                 unescaped(separator[1]),
                 holdsOption(fields[5], "ro") || holdsOption(separator[3], "ro"),
                 id};
}

}  // namespace

std::vector<Mount> parseMountTable(const std::string& text) {
    std::vector<Mount> table;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        if (auto mount = parseLine(line)) table.push_back(*std::move(mount));
    }
    return table;
}

std::vector<Mount> mountTable() {
    std::ifstream file("/proc/self/mountinfo", std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return parseMountTable(text.str());
}

std::optional<Mount> mountOf(const URL& path, const std::vector<Mount>& table) {
    const auto id = mountIdOf(path);
    const auto named = std::ranges::find_if(table, [&](const Mount& mount) {
        return mount.id == id && hasPathPrefix(path, mount.mountPoint);
    });
    if (named != table.end()) return *named;
    const Mount* best = nullptr;
    for (const Mount& mount : table) {
        if (!hasPathPrefix(path, mount.mountPoint)) continue;
        if (!best || hasPathPrefix(mount.mountPoint, best->mountPoint)) best = &mount;
    }
    return best ? std::optional(*best) : std::nullopt;
}

bool hasPathPrefix(const URL& path, const URL& folder) {
    const auto [end, ignored] =
        std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
    return end == folder.end();
}

}  // namespace ReelCore
