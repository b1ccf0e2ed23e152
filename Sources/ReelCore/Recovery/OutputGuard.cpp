#include "ReelCore/Recovery/OutputGuard.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Recovery/RecoveryError.h"

namespace ReelCore {

void requireOtherFile(const URL& output, std::initializer_list<URL> inputs) {
    const auto existing = FileSystem::identity(output);
    if (!existing) return;
    for (const URL& input : inputs) {
        if (FileSystem::identity(input) != existing) continue;
        throw RecoveryError(RecoveryError::IOFailed{lastPathComponent(input) +
                                                    " would be replaced by what is made from it"});
    }
}

File openOutput(const URL& output) {
    const auto stamp = FileSystem::stamp(output);
    return stamp && stamp->size == 0 ? File::openForUpdating(output) : File::create(output);
}

}  // namespace ReelCore
