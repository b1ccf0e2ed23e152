#pragma once

#include "keldo-app/Support/Desktop.h"

namespace keldo_app {

/// As Desktop::composeMail, by xdg-email, which is looked for when it is needed. The mail program
/// is the user's: it goes on when this process ends. One that runs for five seconds counts as
/// opened. A web browser that stands in for a mail program takes no attachments.
struct MailComposer {
    static void compose(const QString& subject, const ReelCore::URL& attachment, QObject* asker,
                        Desktop::MailTold told);
};

}  // namespace keldo_app
