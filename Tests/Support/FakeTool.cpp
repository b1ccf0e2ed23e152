#include "Support/FakeTool.h"

#include "ReelCore/Platform/FileSystem.h"

#include <filesystem>

#include <fmt/format.h>

namespace TestSupport {

namespace {

/// Each call is one write of how many arguments there are and the arguments, a zero byte after
/// each.
constexpr const char* noteCall = "#!/bin/sh\nprintf '%s\\0' \"$#\" \"$@\" >>'{}'\n{}\n";

std::string takeText(const std::string& log, std::size_t& at) {
    const std::size_t end = log.find('\0', at);
    std::string text = log.substr(at, end - at);
    at = end + 1;
    return text;
}

}  // namespace

FakeTool::FakeTool(const std::string& variable, const std::string& script)
    : path_(folder_.path() / "tool"),
      log_(folder_.path() / "calls"),
      variable_(variable, path_.native()) {
    writeFile(path_, fmt::format(fmt::runtime(noteCall), log_.native(), script));
    std::filesystem::permissions(path_, std::filesystem::perms(0755));
}

std::vector<std::vector<std::string>> FakeTool::calls() const {
    std::vector<std::vector<std::string>> result;
    if (!ReelCore::FileSystem::exists(log_)) return result;
    const std::string log = readFile(log_);
    for (std::size_t at = 0; at < log.size();) {
        auto& arguments = result.emplace_back(std::stoul(takeText(log, at)));
        for (std::string& argument : arguments) argument = takeText(log, at);
    }
    return result;
}

}  // namespace TestSupport
