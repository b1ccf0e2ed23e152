#include "Support/Tool.h"

#include "ReelCore/Platform/ChildProcess.h"
#include "ReelCore/Platform/FileSystem.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace TestSupport {

namespace {

/// The program's path; the system folders count as well, which not every user's path holds.
std::string find(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::istringstream folders(std::string(path ? path : "") + ":/usr/sbin:/sbin");
    std::string folder;
    while (std::getline(folders, folder, ':')) {
        const ReelCore::URL candidate = ReelCore::URL(folder) / name;
        if (ReelCore::FileSystem::exists(candidate)) return candidate.native();
    }
    return {};
}

}  // namespace

bool hasTool(const std::string& name) {
    return !find(name).empty();
}

ToolOutcome runTool(const std::string& name, const std::vector<std::string>& arguments) {
    const std::string program = find(name);
    if (program.empty()) throw std::runtime_error("no program " + name);
    auto outcome = ReelCore::ChildProcess::run(program, arguments);
    return {outcome.status, std::move(outcome.output)};
}

std::string outputOf(const std::string& name, const std::vector<std::string>& arguments) {
    auto outcome = runTool(name, arguments);
    if (outcome.status != 0) throw std::runtime_error(name + " failed: " + outcome.output);
    return std::move(outcome.output);
}

}  // namespace TestSupport
