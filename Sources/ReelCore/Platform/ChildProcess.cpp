#include "ReelCore/Platform/ChildProcess.h"

#include "ReelCore/Platform/RunningChild.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>

namespace ReelCore {

namespace {

ChildProcess::Outcome outcomeOf(const URL& program, const std::vector<std::string>& arguments,
                                const RunningChild::Streams& streams) {
    RunningChild child(program, arguments, streams);
    ChildProcess::Outcome outcome;
    outcome.output = child.readAll();
    outcome.status = child.wait();
    return outcome;
}

bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

std::string readEnd(RunningChild& child) {
    constexpr std::ptrdiff_t most = 262'144;
    constexpr std::chrono::seconds betweenLooks(1);
    std::string text;
    std::array<char, 65536> block;
    for (;;) {
        const auto count = child.read(block, betweenLooks);
        if (count == 0U) return text;
        if (count) text.append(block.data(), *count);
        if (std::ssize(text) <= most) continue;
        text.erase(text.begin(),
                   std::find_if_not(text.end() - most, text.end(), continuesCharacter));
    }
}

}  // namespace

ChildProcess::Outcome ChildProcess::run(const URL& program,
                                        const std::vector<std::string>& arguments) {
    return outcomeOf(program, arguments,
                     {.output = ChildStream::pipe(), .error = ChildStream::pipe()});
}

ChildProcess::Outcome ChildProcess::readOutput(const URL& program,
                                               const std::vector<std::string>& arguments) {
    return outcomeOf(program, arguments,
                     {.output = ChildStream::pipe(), .error = ChildStream::nowhere()});
}

ChildProcess::Outcome ChildProcess::readError(const URL& program,
                                              const std::vector<std::string>& arguments) {
    RunningChild child(program, arguments,
                       {.output = ChildStream::nowhere(), .error = ChildStream::pipe()});
    ChildProcess::Outcome outcome;
    outcome.output = readEnd(child);
    outcome.status = child.wait();
    return outcome;
}

int ChildProcess::status(const URL& program, const std::vector<std::string>& arguments) {
    return RunningChild(program, arguments, {}).wait();
}

}  // namespace ReelCore
