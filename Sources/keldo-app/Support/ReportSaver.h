#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Reports/Report.h"
#include "keldo-app/Support/Desktop.h"
#include "keldo-app/Support/Jobs.h"

#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace keldo_app {

/// Saves a screen's report as a PDF and a CSV, and has a sentence on what became of it. Main
/// thread only.
class ReportSaver {
public:
    using Make = std::function<ReelCore::Report()>;

    /// Asks for a folder with `message`; nothing happens if that is dismissed. Otherwise the status
    /// is cleared, the report is made and written on a thread of its own, and then the status
    /// says what was saved and the PDF is shown in the file manager. `changed` is called whenever
    /// the status has changed. `make` owns what it needs; `desktop` must outlive this.
    void save(Desktop& desktop, const QString& message, Make make, std::function<void()> changed);

    /// Empty before the first save, and while one is under way.
    const QString& status() const { return status_; }
    void clear() { status_.clear(); }

private:
    using URLs = std::vector<ReelCore::URL>;

    void tell(Desktop& desktop, const ReelCore::URL& folder, const URLs& written);

    QString status_;
    std::optional<Job<URLs>> job_;
};

}  // namespace keldo_app
