#pragma once

#include "ReelCore/Platform/URL.h"
#include "keldo-app/Support/Preferences.h"

#include <QObject>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// Where a panel opens the first time.
enum class FirstPlace { home, removableMedia };

enum class MailOutcome {
    opened,        ///< A mail program has the letter.
    noService,     ///< There is no program for mail.
    cannotAttach,  ///< There is one, but it did not take the attachment.
};

/// What a view model may ask of the desktop around it. Main thread only. The toolkit's panels know
/// only names that are text, so what has a name that is not UTF-8 can't be chosen there.
///
/// A panel is modal, shows `message`, and opens where the last one with this message was closed, or
/// at first in `first`. What comes back is in standard form; nothing if the user dismisses it.
class Desktop : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application hands its desktop in.")

public:
    using QObject::QObject;
    using MailTold = std::function<void(MailOutcome)>;

    /// One folder; new ones may be made in the panel.
    virtual std::optional<ReelCore::URL> chooseFolder(const QString& message,
                                                      FirstPlace first = FirstPlace::home) = 0;

    /// One file that is there, of any type.
    virtual std::optional<ReelCore::URL> chooseFile(const QString& message,
                                                    FirstPlace first = FirstPlace::home) = 0;

    /// Files that are there, of any type, in the order that the panel gives; empty for none.
    virtual std::vector<ReelCore::URL> chooseFiles(const QString& message,
                                                   FirstPlace first = FirstPlace::home) = 0;

    /// Shows files or folders, selected, in the file manager.
    virtual void reveal(const std::vector<ReelCore::URL>& files) = 0;
    void reveal(const ReelCore::URL& file) { reveal(std::vector{file}); }

    /// What the user chose last, kept from one start to the next.
    virtual Preferences& preferences() = 0;

    /// Opens a file in the program that the user has for it.
    virtual void open(const ReelCore::URL& file) = 0;

    /// Opens a new letter in the user's mail program; the file must stay where it is. Comes back at
    /// once: `told` is called later, once, unless `asker` is gone by then.
    virtual void composeMail(const QString& subject, const ReelCore::URL& attachment,
                             QObject* asker, MailTold told) = 0;
};

}  // namespace keldo_app
