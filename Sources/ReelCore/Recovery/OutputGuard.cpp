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

}  // namespace ReelCore
