#pragma once

#include "keldo-app/Support/Desktop.h"

#include <QStringList>
#include <deque>
#include <vector>

namespace WindowSupport {

/// A desktop whose folder panels are answered in advance, and which remembers what it was asked.
class FakeDesktop : public keldo_app::Desktop {
    Q_OBJECT

public:
    /// The answers to come, first to last; when there are none left the panel is dismissed.
    std::deque<std::optional<ReelCore::URL>> answers;
    QStringList messages;
    std::vector<ReelCore::URL> revealed;

    std::optional<ReelCore::URL> chooseFolder(const QString& message) override;
    void reveal(const ReelCore::URL& file) override;
};

}  // namespace WindowSupport
