// Tells what is wrong with the clips of a folder, and repairs those that can be repaired:
//
//     example-recover FOLDER OUTPUT [REFERENCE]
//
// OUTPUT, made if need be, gets the repaired clips; FOLDER is only read. REFERENCE is a healthy
// clip of the same camera, for clips whose index was never written. The exit status is 0, also
// where a clip could not be repaired, or 2 on a failure.

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Recovery/ClipDoctor.h"

#include <algorithm>
#include <iostream>

using namespace ReelCore;

namespace {

/// Names and what ffmpeg says can run over several lines.
std::string oneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

/// True if the clip was repaired.
bool repair(const ClipReport& report, const std::optional<URL>& reference, const URL& output) {
    const RepairOutcome outcome = ClipDoctor::repair(report, reference, output);
    const std::string made = outcome.output ? lastPathComponent(*outcome.output) : "NOT REPAIRED";
    std::cout << "  " << oneLine(made) << "  " << oneLine(outcome.detail);
    return outcome.succeeded;
}

void recover(const URL& folder, const URL& output, const std::optional<URL>& reference) {
    if (!FileSystem::isFolder(folder)) throw Error("Not a folder: " + folder.native());
    FileSystem::createFolders(output);
    const RecoveryScan scan = ClipDoctor::scan(folder);
    int repaired = 0;
    for (const ClipReport& report : scan.reports) {
        std::cout << oneLine(report.name()) << "  " << report.diagnosis.label();
        if (report.diagnosis.isRepairable() && repair(report, reference, output)) ++repaired;
        std::cout << std::endl;
    }
    const auto healthy = scan.healthy().size();
    const auto damaged = scan.damaged().size();
    std::cout << "clips: " << scan.reports.size() << ", healthy: " << healthy
              << ", repaired: " << repaired << " of " << damaged
              << ", unreadable: " << scan.reports.size() - healthy - damaged << "\n";
}

}  // namespace

int main(int count, char* arguments[]) {
    if (count != 3 && count != 4) {
        std::cerr << "usage: example-recover FOLDER OUTPUT [REFERENCE]\n";
        return 2;
    }
    std::optional<URL> reference;
    if (count == 4) reference = arguments[3];
    try {
        recover(arguments[1], arguments[2], reference);
        return 0;
    } catch (const Error& error) {
        std::cerr << error.description() << "\n";
        return 2;
    }
}
