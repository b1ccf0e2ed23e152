#include "ReelCore/Platform/ChildProcess.h"

#include "ReelCore/Platform/RunningChild.h"

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
    return outcomeOf(program, arguments,
                     {.output = ChildStream::nowhere(), .error = ChildStream::pipe()});
}

int ChildProcess::status(const URL& program, const std::vector<std::string>& arguments) {
    return RunningChild(program, arguments, {}).wait();
}

void ChildProcess::endAll() {
    RunningChild::endAll();
}

}  // namespace ReelCore
