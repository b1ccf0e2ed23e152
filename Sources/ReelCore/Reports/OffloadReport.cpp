#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Platform/UserAccount.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

std::string verdict(const OffloadResult& result) {
    if (result.allVerified()) return "ALL FILES VERIFIED ✓";
    return fmt::format("{} FAILED ✗", result.failures().size());
}

std::vector<Report::Field> summary(const OffloadResult& result,
                                   const std::optional<std::string>& project,
                                   const std::optional<std::string>& operatorName) {
    std::vector<std::string> drives;
    for (const URL& drive : result.request.destinations) drives.push_back(lastPathComponent(drive));
    std::vector<Report::Field> fields;
    if (project) fields.push_back({"Project", *project});
    fields.insert(fields.end(),
                  {{"Reel / Card", result.request.reelName},
                   {"Camera", std::string(rawValue(result.cameraFormat))},
                   {"Source", withoutSlashAtEnd(result.request.source).native()},
                   {"Destinations", fmt::format("{}", fmt::join(drives, ", ")), drives},
                   {"Copies", std::to_string(drives.size())},
                   {"Files", std::to_string(result.files.size())},
                   {"Total size", humanBytes(result.totalBytes())},
                   {"Checksum", std::string(rawValue(result.request.algorithm))},
                   {"Verified", verdict(result)},
                   {"Started", dateTime(result.startedAt)},
                   {"Finished", dateTime(result.finishedAt)},
                   {"Operator", operatorName ? *operatorName : UserAccount::fullName()}});
    return fields;
}

Report::Table table(const OffloadResult& result) {
    Report::Table files{{"File", "Size", std::string(mhlTag(result.request.algorithm)), "Status"},
                        {}};
    for (const FileVerification& one : result.files) {
        files.rows.push_back({one.file.relativePath, humanBytes(one.file.size), one.sourceHash,
                              one.verified() ? "VERIFIED" : "FAILED"});
    }
    return files;
}

}  // namespace

Report Report::offload(const OffloadResult& result, const std::optional<std::string>& project,
                       const std::optional<std::string>& operatorName) {
    return {.title = "Offload Report",
            .subtitle = result.request.reelName,
            .summary = ReelCore::summary(result, project, operatorName),
            .table = ReelCore::table(result),
            .generatedAt = now(),
            .tool = toolOnPaper()};
}

}  // namespace ReelCore
