#pragma once

#include "keldo-app/Support/Desktop.h"
#include "keldo-app/Support/SystemPreferences.h"

#include <QHash>
#include <QStringList>

class QFileDialog;

namespace keldo_app {

/// The real desktop: its own panels where the toolkit knows them and otherwise the toolkit's, the
/// session's file manager, and the programs that the user has chosen for files and mail.
class SystemDesktop : public Desktop {
    Q_OBJECT

public:
    using Desktop::Desktop;
    using Desktop::reveal;

    std::optional<ReelCore::URL> chooseFolder(const QString& message, FirstPlace first) override;
    std::optional<ReelCore::URL> chooseFile(const QString& message, FirstPlace first) override;
    std::vector<ReelCore::URL> chooseFiles(const QString& message, FirstPlace first) override;
    void reveal(const std::vector<ReelCore::URL>& files) override;
    Preferences& preferences() override { return preferences_; }
    void open(const ReelCore::URL& file) override;
    void composeMail(const QString& subject, const ReelCore::URL& attachment, QObject* asker,
                     MailTold told) override;

private:
    std::vector<ReelCore::URL> run(QFileDialog& panel, FirstPlace first);

    SystemPreferences preferences_;

    /// The folder in which the last panel of each message was closed.
    QHash<QString, QString> lastPlaces_;
};

}  // namespace keldo_app
