// Looks for clips in the raw image of a card whose file system is gone, and cuts them out:
//
//     example-carve IMAGE OUTPUT [REFERENCE]
//
// OUTPUT, made if need be, gets the clips; those that are damaged are repaired where that can be
// done. REFERENCE is a healthy clip from the same camera, for clips without an index. The exit
// status is 0, or 2 on a failure.

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Recovery/CardCarver.h"

#include <iostream>

#include <fmt/format.h>

using namespace ReelCore;

namespace {

void show(const CarveProgress& progress) {
    const bool isDone = progress.bytesScanned == progress.totalBytes;
    std::cerr << fmt::format("{:.0f}%, {} found{}", 100 * progress.fraction(), progress.found,
                             isDone ? '\n' : '\r');
}

void show(const Finding& finding, const RepairOutcome& outcome) {
    std::cout << finding.label() << "  "
              << (outcome.output ? lastPathComponent(*outcome.output) : "nothing written") << "  "
              << outcome.detail << "\n";
}

}  // namespace

int main(int count, char* arguments[]) {
    if (count != 3 && count != 4) {
        std::cerr << "usage: example-carve IMAGE OUTPUT [REFERENCE]\n";
        return 2;
    }
    const URL image = arguments[1];
    const URL output = arguments[2];
    std::optional<URL> reference;
    if (count == 4) reference = arguments[3];
    try {
        // A scan can take hours: what would make them vain is to fail before.
        FileSystem::createFolders(output);
        const auto keepOn = [] { return false; };
        const auto progress = [](const CarveProgress& one) { show(one); };
        std::int64_t index = 0;
        for (const Finding& finding : CardCarver::scan(image, keepOn, progress)) {
            show(finding, CardCarver::extract(finding, image, output, reference, ++index));
        }
        return 0;
    } catch (const Error& error) {
        std::cerr << error.description() << "\n";
        return 2;
    }
}
