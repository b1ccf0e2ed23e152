#include "ReelCore/Platform/MountTable.h"

#include <algorithm>
#include <fstream>
#include <sstream>

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

std::optional<Mount> parseLine(const std::string& line) {
    std::istringstream words(line);
    std::string id, parent, device, root, mountPoint, options, word;
    words >> id >> parent >> device >> root >> mountPoint >> options;
    while (words >> word && word != "-") {
    }
    std::string fileSystem, source, superOptions;
    words >> fileSystem >> source >> superOptions;
    if (source.empty()) return std::nullopt;
    return Mount{unescaped(mountPoint),
                 unescaped(root),
                 device,
                 unescaped(source),
                 fileSystem,
                 holdsOption(options, "ro") || holdsOption(superOptions, "ro")};
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
