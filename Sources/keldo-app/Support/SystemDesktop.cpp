#include "keldo-app/Support/SystemDesktop.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/MountTable.h"
#include "ReelCore/Platform/UserAccount.h"
#include "keldo-app/Support/Format.h"
#include "keldo-app/Support/MailComposer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSplitter>
#include <QUrl>
#include <QWindow>

namespace keldo_app {

namespace {

/// Where this desktop mounts cards and drives; the user's folder where it does not say.
QString folderOfMounts() {
    const QString user = QString::fromStdString(ReelCore::UserAccount::loginName());
    for (const QString& folder : {"/run/media/" + user, "/media/" + user, QString("/Volumes")}) {
        if (QDir(folder).exists()) return folder;
    }
    return QDir::homePath();
}

/// The user's folder, then every card and drive that is mounted where desktops mount them. Nothing
/// is asked of the volumes themselves: one that does not answer would hold the window up.
QList<QUrl> placesToShow() {
    QList<QUrl> places{QUrl::fromLocalFile(QDir::homePath())};
    for (const ReelCore::Mount& mount : ReelCore::mountTable()) {
        const QString root = Format::path(mount.mountPoint);
        const bool removable = root.startsWith("/media/") || root.startsWith("/run/media/") ||
                               root.startsWith("/mnt/") || root.startsWith("/Volumes/");
        if (removable) places.append(QUrl::fromLocalFile(root));
    }
    return places;
}

/// For the toolkit's own panel, whose list of places would cut the names of cards.
void makeRoomy(QFileDialog& panel) {
    panel.resize(960, 600);
    if (auto* parts = panel.findChild<QSplitter*>()) parts->setSizes({220, 740});
}

/// By its bytes, whatever they are.
QUrl urlOf(const ReelCore::URL& file) {
    const QByteArray path = QByteArray::fromStdString(file.native());
    return QUrl::fromEncoded("file://" + path.toPercentEncoding("/!$&'()*+,;=:@"));
}

void openFoldersOf(const QList<QUrl>& files) {
    QList<QUrl> folders;
    for (const QUrl& file : files) {
        const QUrl folder = file.adjusted(QUrl::RemoveFilename);
        if (!folders.contains(folder)) folders.append(folder);
    }
    for (const QUrl& folder : folders) QDesktopServices::openUrl(folder);
}

std::optional<ReelCore::URL> firstOf(const std::vector<ReelCore::URL>& chosen) {
    if (chosen.empty()) return std::nullopt;
    return chosen.front();
}

}  // namespace

std::optional<ReelCore::URL> SystemDesktop::chooseFolder(const QString& message, FirstPlace first) {
    QFileDialog panel(nullptr, message);
    panel.setFileMode(QFileDialog::Directory);
    panel.setOption(QFileDialog::ShowDirsOnly);
    panel.setLabelText(QFileDialog::Accept, "Select");
    return firstOf(run(panel, first));
}

std::optional<ReelCore::URL> SystemDesktop::chooseFile(const QString& message, FirstPlace first) {
    QFileDialog panel(nullptr, message);
    panel.setFileMode(QFileDialog::ExistingFile);
    return firstOf(run(panel, first));
}

std::vector<ReelCore::URL> SystemDesktop::chooseFiles(const QString& message, FirstPlace first) {
    QFileDialog panel(nullptr, message);
    panel.setFileMode(QFileDialog::ExistingFiles);
    return run(panel, first);
}

std::vector<ReelCore::URL> SystemDesktop::run(QFileDialog& panel, FirstPlace first) {
    QString& place = lastPlaces_[panel.windowTitle()];
    if (place.isEmpty() || !QDir(place).exists()) {
        place = first == FirstPlace::home ? QDir::homePath() : folderOfMounts();
    }
    panel.setSidebarUrls(placesToShow());
    panel.setDirectory(place);
    makeRoomy(panel);
    panel.winId();
    panel.windowHandle()->setTransientParent(QGuiApplication::focusWindow());
    const bool isAccepted = panel.exec() == QDialog::Accepted;
    place = panel.directory().absolutePath();
    std::vector<ReelCore::URL> chosen;
    if (!isAccepted) return chosen;
    for (const QString& path : panel.selectedFiles()) {
        place = QFileInfo(path).absolutePath();
        chosen.push_back(ReelCore::FileSystem::standardised(QFile::encodeName(path).toStdString()));
    }
    return chosen;
}

void SystemDesktop::reveal(const std::vector<ReelCore::URL>& files) {
    QList<QUrl> urls;
    for (const ReelCore::URL& file : files) urls.append(urlOf(file));
    const QDBusConnection session = QDBusConnection::sessionBus();
    if (!session.isConnected()) return openFoldersOf(urls);
    QDBusMessage show = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                                       "/org/freedesktop/FileManager1",
                                                       "org.freedesktop.FileManager1", "ShowItems");
    show << QUrl::toStringList(urls, QUrl::FullyEncoded) << QString();
    // Starting a file manager can take long, so the answer is not waited for.
    auto* answer = new QDBusPendingCallWatcher(session.asyncCall(show), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [answer, urls] {
        if (answer->isError()) openFoldersOf(urls);
        answer->deleteLater();
    });
}

void SystemDesktop::open(const ReelCore::URL& file) {
    QDesktopServices::openUrl(urlOf(file));
}

void SystemDesktop::composeMail(const QString& subject, const ReelCore::URL& attachment,
                                QObject* asker, MailTold told) {
    MailComposer::compose(subject, attachment, asker, std::move(told));
}

}  // namespace keldo_app
