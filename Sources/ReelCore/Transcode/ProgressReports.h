#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace ReelCore {

/// Reads the stream of reports that ffmpeg writes with "-progress": lines of a key, "=" and a
/// value, each report closed by the key "progress". What a report does not say again stands as it
/// was.
class ProgressReports {
public:
    using Fields = std::map<std::string, std::string>;

    /// `report` is called with all fields each time a report closes, inside `take`.
    explicit ProgressReports(std::function<void(const Fields&)> report)
        : report_(std::move(report)) {}

    /// The next bytes of the stream, cut anywhere. Lines that are not UTF-8 or have no "=" are
    /// passed over; what follows the last report is left for the next bytes.
    void take(std::string_view bytes);

private:
    /// True if the line closes the last report.
    bool takeLine(std::string_view line);

    std::function<void(const Fields&)> report_;
    Fields fields_;
    std::string pending_;
};

}  // namespace ReelCore
