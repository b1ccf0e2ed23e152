#include "ReelCore/Platform/UserAccount.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Transcode/TranscodePreset.h"

#include <fmt/format.h>

namespace ReelCore {

namespace {

std::string resolution(std::optional<std::int64_t> scaleLongEdge) {
    return scaleLongEdge ? fmt::format("long edge {}px", *scaleLongEdge) : "source";
}

Report::Table table(std::span<const URL> outputs, std::span<const Report::Failure> failures) {
    Report::Table clips{{"Output", "Status"}, {}};
    for (const URL& output : outputs) {
        clips.rows.push_back({lastPathComponent(output), "RENDERED"});
    }
    for (const Report::Failure& failure : failures) {
        clips.rows.push_back({failure.name, "FAILED — " + failure.message});
    }
    return clips;
}

}  // namespace

Report Report::transcode(const TranscodePreset& preset, const std::optional<std::string>& lut,
                         std::optional<std::int64_t> scaleLongEdge, std::span<const URL> outputs,
                         std::span<const Failure> failures,
                         const std::optional<std::string>& operatorName) {
    const Date generatedAt = now();
    return {.title = "Transcode Report",
            .subtitle = preset.name,
            .summary = {{"Preset", preset.name},
                        {"Edit system", preset.editor},
                        {"Container", "." + preset.container},
                        {"LUT", lut.value_or("none")},
                        {"Resolution", resolution(scaleLongEdge)},
                        {"Rendered", std::to_string(outputs.size())},
                        {"Failed", std::to_string(failures.size())},
                        {"Generated", dateTime(generatedAt)},
                        {"Operator", operatorName ? *operatorName : UserAccount::fullName()}},
            .table = ReelCore::table(outputs, failures),
            .generatedAt = generatedAt,
            .tool = toolOnPaper()};
}

}  // namespace ReelCore
