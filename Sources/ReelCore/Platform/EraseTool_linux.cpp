#include "ReelCore/Platform/CardHandover.h"
#include "ReelCore/Platform/EraseTool.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/SystemError.h"

#include <system_error>
#include <utility>

namespace ReelCore {

namespace {

constexpr const char* systemTool = "/usr/sbin/diskutil";

}  // namespace

URL eraseTool() {
    if (FileSystem::exists(systemTool)) return systemTool;
    const URL self = "/proc/self/exe";
    std::error_code failure;
    const URL program = std::filesystem::read_symlink(self, failure);
    if (failure) throw SystemError(failure.value(), self);
    return program.parent_path().parent_path() / "libexec/keldobay/diskutil";
}

ChildProcess::Outcome runEraseTool(const std::vector<std::string>& arguments,
                                   std::optional<HeldCard> card) {
    const URL tool = eraseTool();
    std::optional<CardHandover> handover;
    if (card && tool != systemTool) handover.emplace(*std::move(card));
    card.reset();
    RunningChild child(tool, arguments,
                       {.output = ChildStream::pipe(),
                        .error = ChildStream::pipe(),
                        .input = handover ? handover->descriptor() : -1});
    ChildProcess::Outcome outcome;
    outcome.output = child.readAll();
    outcome.status = child.wait();
    return outcome;
}

}  // namespace ReelCore
