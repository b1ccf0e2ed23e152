#include "keldo-app/Support/SystemDesktop.h"

#include "Support/FolderTree.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QTimer>
#include <QUrl>

#include <gtest/gtest.h>

using keldo_app::SystemDesktop;
using ReelCore::URL;

namespace {

/// Takes the place of what the toolkit would start to show a folder.
class OpenedFolders : public QObject {
    Q_OBJECT

public:
    QList<QUrl> urls;

public slots:
    void open(const QUrl& url) { urls.append(url); }
};

class SystemDesktopTests : public testing::Test {
protected:
    void SetUp() override { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void TearDown() override { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false); }

    /// Opens the panel and lets `answer` deal with it as soon as it stands.
    std::optional<URL> chooseFolder(const std::function<void(QFileDialog&)>& answer) {
        QTimer looks;
        QObject::connect(&looks, &QTimer::timeout, &looks, [&] {
            auto* panel = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!panel || !panel->isVisible()) return;
            looks.stop();
            answer(*panel);
        });
        looks.start(1);
        return desktop_.chooseFolder("Add Backup Drive");
    }

    static std::function<void(QFileDialog&)> select(const URL& folder) {
        return [folder](QFileDialog& panel) {
            panel.selectFile(QString::fromStdString(folder.native()));
            static_cast<QDialog&>(panel).accept();
        };
    }

    TestSupport::TemporaryFolder folder_;
    SystemDesktop desktop_;
};

}  // namespace

TEST_F(SystemDesktopTests, Panel_AsksForOneFolder) {
    bool looked = false;
    chooseFolder([&](QFileDialog& panel) {
        looked = true;
        EXPECT_EQ(panel.windowTitle(), "Add Backup Drive");
        EXPECT_EQ(panel.labelText(QFileDialog::Accept), "Select");
        EXPECT_EQ(panel.fileMode(), QFileDialog::Directory);
        EXPECT_TRUE(panel.testOption(QFileDialog::ShowDirsOnly));
        EXPECT_FALSE(panel.testOption(QFileDialog::ReadOnly)) << "folders may be made there";
        EXPECT_TRUE(panel.isModal());
        panel.reject();
    });
    EXPECT_TRUE(looked);
}

TEST_F(SystemDesktopTests, Accepted_GivesTheFolderInItsStandardForm) {
    const URL drive = folder_.path() / "SHUTTLE 01 ü";
    std::filesystem::create_directories(drive);
    std::filesystem::create_directories(folder_.path() / "other");
    EXPECT_EQ(chooseFolder(select(drive)), drive);
    EXPECT_EQ(chooseFolder(select(folder_.path() / "other" / ".." / "SHUTTLE 01 ü")), drive);
}

TEST_F(SystemDesktopTests, Rejected_GivesNothing) {
    EXPECT_EQ(chooseFolder([](QFileDialog& panel) { panel.reject(); }), std::nullopt);
}

TEST_F(SystemDesktopTests, NextPanel_StandsWhereTheLastFolderLies) {
    const URL drive = folder_.path() / "SHUTTLE_01";
    std::filesystem::create_directories(drive);
    chooseFolder(select(drive));
    chooseFolder([&](QFileDialog& panel) {
        EXPECT_EQ(panel.directory().absolutePath().toStdString(), folder_.path().native());
        panel.reject();
    });
}

TEST_F(SystemDesktopTests, Reveal_WithoutASession_OpensTheFolder) {
    // Not the session of who runs the tests, and no file manager that could be started.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    OpenedFolders opened;
    QDesktopServices::setUrlHandler("file", &opened, "open");
    TestSupport::writeFile(folder_.path() / "report.pdf", "%PDF");
    desktop_.reveal(folder_.path() / "report.pdf");
    QDesktopServices::unsetUrlHandler("file");
    EXPECT_EQ(opened.urls,
              QList<QUrl>{QUrl::fromLocalFile(QString::fromStdString(folder_.path()) + "/")});
}

#include "SystemDesktopTests.moc"
