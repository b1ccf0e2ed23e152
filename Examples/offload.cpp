// Copies a card to one or more folders, proves every copy, and leaves a report:
//
//     example-offload CARD REEL REPORTS DESTINATION...
//
// The exit status is 0 if every file is proved on every destination, 1 if not, 2 on a failure.

#include "ReelCore/Offload/OffloadEngine.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/Error.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Reports/ReportRenderer.h"

#include <atomic>
#include <csignal>
#include <iostream>

using namespace ReelCore;

namespace {

std::atomic<bool> interrupted = false;

void show(const OffloadProgress& progress) {
    if (!progress.currentFile) return;
    std::cout << rawValue(progress.phase) << "  " << progress.filesCompleted + 1 << "/"
              << progress.totalFiles << "  " << *progress.currentFile << "\n";
}

bool offload(const OffloadRequest& request, const URL& reports) {
    const auto scan = SourceScanner::scan(request.source);
    std::cout << rawValue(scan.cameraFormat) << ": " << scan.fileCount() << " files, "
              << humanBytes(scan.totalBytes()) << "\n";

    constexpr std::size_t bufferSize = 4 << 20;
    OffloadEngine engine(bufferSize, [] { return interrupted.load(); });
    const OffloadResult result = engine.run(request, show);

    const Report report = Report::offload(result, std::nullopt, std::nullopt);
    for (const URL& written : ReportRenderer::write(report, reports, {"pdf", "csv"})) {
        std::cout << "report  " << written.native() << "\n";
    }
    for (const FileVerification& failed : result.failures()) {
        std::cout << "FAILED  " << failed.file.relativePath << "\n";
    }
    std::cout << (result.allVerified() ? "all files verified" : "NOT VERIFIED") << "\n";
    return result.allVerified();
}

}  // namespace

int main(int count, char* arguments[]) {
    if (count < 5) {
        std::cerr << "usage: example-offload CARD REEL REPORTS DESTINATION...\n";
        return 2;
    }
    std::signal(SIGINT, [](int) { interrupted = true; });
    OffloadRequest request;
    request.source = arguments[1];
    request.reelName = arguments[2];
    request.destinations.assign(arguments + 4, arguments + count);
    try {
        return offload(request, arguments[3]) ? 0 : 1;
    } catch (const Error& error) {
        std::cerr << error.description() << "\n";
        return 2;
    }
}
