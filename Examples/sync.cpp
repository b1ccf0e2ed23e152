// Finds the sound that belongs to the clips of a day, and writes what an editor imports:
//
//     example-sync DAY OUTPUT
//
// DAY is a folder with clips and recordings. OUTPUT, made if need be, gets a timeline (FCPXML), a
// log (ALE) and a report (PDF and CSV). The exit status is 0, or 2 on a failure.

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "ReelCore/Sync/ALEWriter.h"
#include "ReelCore/Sync/FCPXMLWriter.h"
#include "ReelCore/Sync/Synchronizer.h"

#include <iostream>

using namespace ReelCore;

namespace {

SyncResult scan(const URL& day) {
    if (!FileSystem::isFolder(day)) throw Error("Not a folder: " + day.native());
    SyncResult result = Synchronizer::scan(day);
    if (result.groups.empty()) {
        throw Error("No clip, or no ffprobe to read one with: " + day.native());
    }
    return result;
}

void show(const SyncResult& result) {
    for (const SyncGroup& group : result.groups) {
        const auto best = group.best();
        std::cout << group.video.name() << "  " << (best ? best->clip->name() : "no sound") << "\n";
    }
    for (const AudioClip& clip : result.unmatchedAudio) {
        std::cout << clip.name() << "  no picture\n";
    }
    std::cout << result.syncedCount() << " of " << result.groups.size() << " clips have sound\n";
}

void write(const SyncResult& result, const std::string& name, const URL& output) {
    FileSystem::createFolders(output);
    std::cout << "timeline  " << FCPXMLWriter::write(result, output / "day.fcpxml", name).native()
              << "\n";
    std::cout << "log  " << ALEWriter::write(result, output / "day.ale").native() << "\n";
    const Report report = Report::sync(result, name);
    for (const URL& written : ReportRenderer::write(report, output, {"pdf", "csv"})) {
        std::cout << "report  " << written.native() << "\n";
    }
}

}  // namespace

int main(int count, char* arguments[]) {
    if (count != 3) {
        std::cerr << "usage: example-sync DAY OUTPUT\n";
        return 2;
    }
    const URL day = arguments[1];
    try {
        const SyncResult result = scan(day);
        show(result);
        write(result, lastPathComponent(FileSystem::standardised(day)), arguments[2]);
        return 0;
    } catch (const Error& error) {
        std::cerr << error.description() << "\n";
        return 2;
    }
}
