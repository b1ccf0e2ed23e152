#include "keldo-app/Support/ReportSaver.h"

#include "ReelCore/Reports/ReportRenderer.h"
#include "keldo-app/Support/Format.h"

#include <algorithm>

namespace keldo_app {

void ReportSaver::save(Desktop& desktop, const QString& message, Make make,
                       std::function<void()> changed) {
    const auto folder = desktop.chooseFolder(message);
    if (!folder) return;
    clear();
    changed();
    job_ = runOnce<URLs>(
        [make = std::move(make), folder] {
            return ReelCore::ReportRenderer::write(make(), *folder, {"pdf", "csv"});
        },
        [this, &desktop, folder, changed](const URLs& written) {
            tell(desktop, *folder, written);
            changed();
        },
        [](const std::exception&) { return URLs(); });
}

void ReportSaver::tell(Desktop& desktop, const ReelCore::URL& folder, const URLs& written) {
    if (written.empty()) {
        status_ = "Could not write report.";
        return;
    }
    status_ =
        QStringLiteral("Saved %1 file(s) to %2.").arg(written.size()).arg(Format::name(folder));
    const auto pdf =
        std::ranges::find_if(written, [](const auto& url) { return url.extension() == ".pdf"; });
    if (pdf != written.end()) desktop.reveal(*pdf);
}

}  // namespace keldo_app
