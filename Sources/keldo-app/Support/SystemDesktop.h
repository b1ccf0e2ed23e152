#pragma once

#include "keldo-app/Support/Desktop.h"

namespace keldo_app {

/// The real desktop: the toolkit's folder panel and the session's file manager.
class SystemDesktop : public Desktop {
    Q_OBJECT

public:
    using Desktop::Desktop;

    std::optional<ReelCore::URL> chooseFolder(const QString& message) override;
    void reveal(const ReelCore::URL& file) override;

private:
    /// Where the last choice lies: cards and drives mostly stand side by side.
    QString lastFolder_;
};

}  // namespace keldo_app
