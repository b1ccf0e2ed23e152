#include "keldo-app/Support/SystemDesktop.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/MountTable.h"
#include "ReelCore/Platform/UserAccount.h"
#include "keldo-app/Support/Format.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
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

void openFolderOf(const QUrl& file) {
    QDesktopServices::openUrl(file.adjusted(QUrl::RemoveFilename));
}

}  // namespace

std::optional<ReelCore::URL> SystemDesktop::chooseFolder(const QString& message) {
    QFileDialog panel(nullptr, message);
    panel.setFileMode(QFileDialog::Directory);
    panel.setOption(QFileDialog::ShowDirsOnly);
    panel.setLabelText(QFileDialog::Accept, "Select");
    panel.setSidebarUrls(placesToShow());
    panel.setDirectory(lastFolder_.isEmpty() ? folderOfMounts() : lastFolder_);
    panel.winId();
    panel.windowHandle()->setTransientParent(QGuiApplication::focusWindow());
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty()) return std::nullopt;
    lastFolder_ = QFileInfo(panel.selectedFiles().constFirst()).absolutePath();
    const QByteArray path = QFile::encodeName(panel.selectedFiles().constFirst());
    return ReelCore::FileSystem::standardised(path.toStdString());
}

void SystemDesktop::reveal(const ReelCore::URL& file) {
    const QUrl url = QUrl::fromLocalFile(QFile::decodeName(file.c_str()));
    const QDBusConnection session = QDBusConnection::sessionBus();
    if (!session.isConnected()) return openFolderOf(url);
    QDBusMessage show = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                                       "/org/freedesktop/FileManager1",
                                                       "org.freedesktop.FileManager1", "ShowItems");
    show << QStringList{url.toString(QUrl::FullyEncoded)} << QString();
    // Starting a file manager can take long, so the answer is not waited for.
    auto* answer = new QDBusPendingCallWatcher(session.asyncCall(show), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [answer, url] {
        if (answer->isError()) openFolderOf(url);
        answer->deleteLater();
    });
}

}  // namespace keldo_app
