#include "ReelCore/Transcode/MediaQuery.h"

#include "ReelCore/Platform/ChildProcess.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/Text.h"

namespace ReelCore {

std::string toolPath(const URL& url) {
    return FileSystem::absolute(url).native();
}

std::string answerOf(const URL& ffprobe, std::vector<std::string> arguments, const URL& file) {
    arguments.push_back(toolPath(file));
    const std::string answer = ChildProcess::readOutput(ffprobe, arguments).output;
    return Text::isWellFormed(answer) ? Text::trimmed(answer) : "";
}

}  // namespace ReelCore
