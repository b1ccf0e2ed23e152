#include "ReelCore/Transcode/MediaQuery.h"

#include "ReelCore/Platform/ChildProcess.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/Text.h"

#include <cerrno>
#include <set>
#include <sstream>

namespace ReelCore {

namespace {

std::string withoutRepeatedLines(const std::string& text) {
    std::set<std::string> seen;
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (seen.insert(line).second) result += line + "\n";
    }
    return result;
}

}  // namespace

std::string toolPath(const URL& url) {
    if (FileSystem::isPipeOrDevice(url)) throw SystemError(EINVAL, url);
    return FileSystem::absolute(url).native();
}

std::string answerOf(const URL& ffprobe, std::vector<std::string> arguments, const URL& file) {
    if (FileSystem::isPipeOrDevice(file)) return {};
    arguments.push_back(toolPath(file));
    const std::string answer = ChildProcess::readOutput(ffprobe, arguments).output;
    return Text::isWellFormed(answer) ? Text::trimmed(withoutRepeatedLines(answer)) : "";
}

}  // namespace ReelCore
