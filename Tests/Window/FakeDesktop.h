#pragma once

#include "Window/FakePreferences.h"
#include "keldo-app/Support/Desktop.h"

#include <QStringList>
#include <deque>
#include <vector>

namespace WindowSupport {

/// A desktop whose panels are answered in advance, and which remembers what it was asked.
class FakeDesktop : public keldo_app::Desktop {
    Q_OBJECT

public:
    struct Mail {
        QString subject;
        ReelCore::URL attachment;
    };

    /// The answers to come, first to last, of panels for one folder or file, and of those for
    /// several files; when there are none left the panel is dismissed.
    std::deque<std::optional<ReelCore::URL>> answers;
    std::deque<std::vector<ReelCore::URL>> filesAnswers;
    keldo_app::MailOutcome mailOutcome = keldo_app::MailOutcome::opened;

    QStringList messages;
    std::vector<ReelCore::URL> revealed;
    std::vector<ReelCore::URL> opened;
    std::vector<Mail> mails;
    FakePreferences stored;

    using Desktop::reveal;
    std::optional<ReelCore::URL> chooseFolder(const QString& message,
                                              keldo_app::FirstPlace first) override;
    std::optional<ReelCore::URL> chooseFile(const QString& message,
                                            keldo_app::FirstPlace first) override;
    std::vector<ReelCore::URL> chooseFiles(const QString& message,
                                           keldo_app::FirstPlace first) override;
    void reveal(const std::vector<ReelCore::URL>& files) override;
    keldo_app::Preferences& preferences() override { return stored; }
    void open(const ReelCore::URL& file) override;
    void composeMail(const QString& subject, const ReelCore::URL& attachment, QObject* asker,
                     MailTold told) override;
};

}  // namespace WindowSupport
