#include "keldo-app/Support/MailComposer.h"

#include <QFile>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <memory>
#include <utility>

#include <unistd.h>

namespace keldo_app {

namespace {

using namespace std::chrono_literals;
constexpr auto longEnough = 5s;

/// A program that is found on the search path. It is deleted when it has ended.
class Program : public QProcess {
public:
    Program(const QString& name, const QStringList& arguments) {
        setProgram(QStandardPaths::findExecutable(name));
        setArguments(arguments);
        setStandardInputFile(nullDevice());
        setStandardErrorFile(nullDevice());
        setChildProcessModifier([] { ::setsid(); });
    }

    /// `ended` gets the exit status, 127 if the program can't be started.
    void run(const std::function<void(int status)>& ended) {
        connect(this, &QProcess::finished, this, [this, ended](int status, ExitStatus how) {
            ended(how == NormalExit ? status : 128 + status);
            deleteLater();
        });
        connect(this, &QProcess::errorOccurred, this, [this, ended](ProcessError error) {
            if (error != FailedToStart) return;
            ended(127);
            deleteLater();
        });
        start();
    }
};

/// True if the desktop entry of that name is a web browser and no mail program.
bool isBrowser(const QString& entry) {
    QFile file(QStandardPaths::locate(QStandardPaths::ApplicationsLocation, entry));
    if (!file.open(QIODevice::ReadOnly)) return false;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (!line.startsWith("Categories=")) continue;
        return line.contains("WebBrowser") && !line.contains("Email");
    }
    return false;
}

MailOutcome outcomeOf(int status) {
    constexpr int toolMissing = 3;
    constexpr int notStarted = 127;
    if (status == 0) return MailOutcome::opened;
    if (status == toolMissing || status == notStarted) return MailOutcome::noService;
    return MailOutcome::cannotAttach;
}

void openLetter(const QString& subject, const ReelCore::URL& attachment,
                const Desktop::MailTold& tell) {
    // As part of a URL: a subject of its own is mangled by the shell wherever it holds a backslash.
    const QString letter = "mailto:?subject=" + QUrl::toPercentEncoding(subject);
    auto* mail = new Program("xdg-email",
                             {"--utf8", "--attach", QFile::decodeName(attachment.c_str()), letter});
    mail->setStandardOutputFile(QProcess::nullDevice());
    QTimer::singleShot(longEnough, mail, [tell] { tell(MailOutcome::opened); });
    mail->run([tell](int status) { tell(outcomeOf(status)); });
}

}  // namespace

void MailComposer::compose(const QString& subject, const ReelCore::URL& attachment, QObject* asker,
                           Desktop::MailTold told) {
    const auto tell = [asker = QPointer<QObject>(asker), told = std::move(told),
                       isTold = std::make_shared<bool>(false)](MailOutcome outcome) {
        if (std::exchange(*isTold, true) || !asker) return;
        QMetaObject::invokeMethod(
            asker, [told, outcome] { told(outcome); }, Qt::QueuedConnection);
    };
    // Without a mail program xdg-email would open a browser and call that a success.
    auto* question = new Program("xdg-mime", {"query", "default", "x-scheme-handler/mailto"});
    question->run([question, subject, attachment, tell](int status) {
        if (status != 0) return tell(MailOutcome::noService);
        const QString entry = QString::fromUtf8(question->readAllStandardOutput()).trimmed();
        const bool isChosenElsewhere = qEnvironmentVariableIsSet("MAILER");
        if (entry.isEmpty() && !isChosenElsewhere) return tell(MailOutcome::noService);
        if (isBrowser(entry) && !isChosenElsewhere) return tell(MailOutcome::cannotAttach);
        openLetter(subject, attachment, tell);
    });
}

}  // namespace keldo_app
