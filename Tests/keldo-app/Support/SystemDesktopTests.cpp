#include "keldo-app/Support/SystemDesktop.h"

#include "ReelCore/Platform/UserAccount.h"
#include "Support/FolderTree.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLineEdit>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <csignal>

#include <gtest/gtest.h>
#include <sys/prctl.h>

using keldo_app::FirstPlace;
using keldo_app::SystemDesktop;
using ReelCore::URL;

namespace {

/// Takes the place of what the toolkit would start to show a folder or a file.
class OpenedUrls : public QObject {
    Q_OBJECT

public:
    OpenedUrls() { QDesktopServices::setUrlHandler("file", this, "open"); }
    ~OpenedUrls() override { QDesktopServices::unsetUrlHandler("file"); }

    QList<QUrl> urls;

public slots:
    void open(const QUrl& url) { urls.append(url); }
};

/// A file manager that prints what it is to show, and ends the process.
class FileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public slots:
    void ShowItems(const QStringList& files, const QString&) {
        fprintf(stderr, "%s\n", qPrintable(files.join(' ')));
        std::_Exit(EXIT_SUCCESS);
    }
};

/// Reveals two files in a session of its own. Ends with a failure where nobody shows them.
[[noreturn]] void revealInASession() {
    QProcess bus;
    bus.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    bus.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    bus.waitForReadyRead();
    const QByteArray address = bus.readLine().trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    QDBusConnection served = QDBusConnection::connectToBus(QString(address), "file manager");
    FileManager manager;
    served.registerObject("/org/freedesktop/FileManager1", &manager,
                          QDBusConnection::ExportAllSlots);
    served.registerService("org.freedesktop.FileManager1");
    SystemDesktop desktop;
    desktop.reveal(std::vector<URL>{"/edit/Day 1 ü&.fcpxml", "/edit/\xFF.ale"});
    QTest::qWait(30'000);
    std::_Exit(EXIT_FAILURE);
}

class SystemDesktopTests : public testing::Test {
protected:
    void SetUp() override { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void TearDown() override { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs, false); }

    using Answer = std::function<void(QFileDialog&)>;

    /// Lets `answer` deal with the panel that `open` opens as soon as it stands.
    static auto answered(const Answer& answer, const auto& open) {
        QTimer looks;
        QObject::connect(&looks, &QTimer::timeout, &looks, [&] {
            auto* panel = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!panel || !panel->isVisible()) return;
            looks.stop();
            answer(*panel);
        });
        looks.start(1);
        return open();
    }

    std::optional<URL> chooseFolder(const Answer& answer,
                                    const QString& message = "Add Backup Drive",
                                    FirstPlace first = FirstPlace::home) {
        return answered(answer, [&] { return desktop_.chooseFolder(message, first); });
    }

    std::optional<URL> chooseFile(const Answer& answer) {
        return answered(
            answer, [&] { return desktop_.chooseFile("Choose a .cube LUT", FirstPlace::home); });
    }

    std::vector<URL> chooseFiles(const Answer& answer) {
        return answered(answer, [&] {
            return desktop_.chooseFiles("Add clips to transcode", FirstPlace::home);
        });
    }

    static Answer select(const URL& path) {
        return [path](QFileDialog& panel) {
            panel.selectFile(QString::fromStdString(path.native()));
            static_cast<QDialog&>(panel).accept();
        };
    }

    /// Where a panel stands, which is then dismissed.
    static Answer look(std::string& place) {
        return [&place](QFileDialog& panel) {
            place = panel.directory().absolutePath().toStdString();
            panel.reject();
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
    std::string place;
    chooseFolder(look(place));
    EXPECT_EQ(place, folder_.path().native());
}

TEST_F(SystemDesktopTests, PanelsOfEachMessage_HaveAPlaceOfTheirOwn) {
    const URL drive = folder_.path() / "SHUTTLE_01";
    std::filesystem::create_directories(drive);
    chooseFolder(select(drive), "Add Backup Drive");
    std::string place;
    chooseFolder(look(place), "Choose output folder");
    EXPECT_EQ(place, QDir::homePath().toStdString());
    chooseFolder(look(place), "Add Backup Drive");
    EXPECT_EQ(place, folder_.path().native());
}

TEST_F(SystemDesktopTests, DismissedPanel_LeavesItsPlaceToTheNext) {
    chooseFolder([&](QFileDialog& panel) {
        panel.setDirectory(folder_.path().c_str());
        panel.reject();
    });
    std::string place;
    chooseFolder(look(place));
    EXPECT_EQ(place, folder_.path().native());
}

TEST_F(SystemDesktopTests, PlaceThatIsGone_GivesWayToTheFirst) {
    const URL card = folder_.path() / "CARD";
    std::filesystem::create_directories(card / "DCIM");
    chooseFolder(select(card / "DCIM"));
    std::filesystem::remove_all(card);
    std::string place;
    chooseFolder(look(place));
    EXPECT_EQ(place, QDir::homePath().toStdString());
}

TEST_F(SystemDesktopTests, FirstPanelForACard_StandsWhereCardsAreMounted) {
    const std::string login = ReelCore::UserAccount::loginName();
    std::string expected = QDir::homePath().toStdString();
    for (const std::string& mounts :
         {std::string("/Volumes"), "/media/" + login, "/run/media/" + login}) {
        if (QDir(mounts.c_str()).exists()) expected = mounts;
    }
    std::string place;
    chooseFolder(look(place), "Choose Camera Card / Source", FirstPlace::removableMedia);
    EXPECT_EQ(place, expected);
}

TEST_F(SystemDesktopTests, FilePanel_AsksForOneFileOfAnyType) {
    TestSupport::writeTree(folder_.path(), {{"a.mov", ""}, {"look 1.cube", ""}});
    bool looked = false;
    const auto chosen = chooseFile([&](QFileDialog& panel) {
        looked = true;
        EXPECT_EQ(panel.windowTitle(), "Choose a .cube LUT");
        EXPECT_EQ(panel.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(panel.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(panel.nameFilters(), QStringList{"All Files (*)"});
        EXPECT_FALSE(panel.testOption(QFileDialog::ShowDirsOnly));
        select(folder_.path() / "look 1.cube")(panel);
    });
    EXPECT_TRUE(looked);
    EXPECT_EQ(chosen, folder_.path() / "look 1.cube");
}

TEST_F(SystemDesktopTests, FilePanel_TakesNoFolder) {
    std::filesystem::create_directories(folder_.path() / "clips");
    bool isStillOpen = false;
    const auto chosen = chooseFile([&](QFileDialog& panel) {
        select(folder_.path() / "clips")(panel);
        isStillOpen = panel.isVisible();
        panel.reject();
    });
    EXPECT_TRUE(isStillOpen);
    EXPECT_EQ(chosen, std::nullopt);
}

TEST_F(SystemDesktopTests, PanelForFiles_GivesAllThatAreSelected) {
    TestSupport::writeTree(folder_.path(),
                           {{"A001.mov", ""}, {"A002 ü.mov", ""}, {"A003.mov", ""}});
    auto chosen = chooseFiles([&](QFileDialog& panel) {
        EXPECT_EQ(panel.fileMode(), QFileDialog::ExistingFiles);
        EXPECT_EQ(panel.nameFilters(), QStringList{"All Files (*)"});
        panel.setDirectory(folder_.path().c_str());
        panel.findChild<QLineEdit*>("fileNameEdit")->setText("\"A001.mov\" \"A002 ü.mov\"");
        static_cast<QDialog&>(panel).accept();
    });
    std::ranges::sort(chosen);
    EXPECT_EQ(chosen,
              (std::vector<URL>{folder_.path() / "A001.mov", folder_.path() / "A002 ü.mov"}));
    EXPECT_EQ(chooseFiles([](QFileDialog& panel) { panel.reject(); }), std::vector<URL>{});
}

TEST_F(SystemDesktopTests, Panels_LeaveTheDesktopItsOwn) {
    for (const bool isFolder : {true, false}) {
        const auto answer = [](QFileDialog& panel) {
            EXPECT_FALSE(panel.testOption(QFileDialog::DontUseNativeDialog));
            panel.reject();
        };
        if (isFolder) chooseFolder(answer);
        if (!isFolder) chooseFile(answer);
    }
}

TEST_F(SystemDesktopTests, Reveal_WithoutASession_OpensTheFolder) {
    // Not the session of who runs the tests, and no file manager that could be started.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    const OpenedUrls opened;
    TestSupport::writeFile(folder_.path() / "report.pdf", "%PDF");
    desktop_.reveal(folder_.path() / "report.pdf");
    const QUrl folder = QUrl::fromLocalFile(QString::fromStdString(folder_.path()) + "/");
    EXPECT_EQ(opened.urls, QList<QUrl>{folder});
}

TEST_F(SystemDesktopTests, RevealOfSeveralFiles_WithoutASession_OpensEachFolderOnce) {
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    const OpenedUrls opened;
    desktop_.reveal(std::vector<URL>{"/edit/day.fcpxml", "/edit/day.ale", "/other/day.ale"});
    EXPECT_EQ(opened.urls,
              (QList<QUrl>{QUrl::fromLocalFile("/edit/"), QUrl::fromLocalFile("/other/")}));
}

TEST_F(SystemDesktopTests, Reveal_ShowsAllFilesByOneCall) {
    EXPECT_EXIT(revealInASession(), testing::ExitedWithCode(0),
                "^file:///edit/Day%201%20%C3%BC&.fcpxml file:///edit/%FF.ale\n$");
}

TEST_F(SystemDesktopTests, Open_TakesAFileByItsBytes) {
    const OpenedUrls opened;
    desktop_.open("/reports/Day 1 + \xFF.docx");
    ASSERT_EQ(opened.urls.size(), 1);
    EXPECT_EQ(opened.urls.front().toEncoded(), "file:///reports/Day%201%20+%20%FF.docx");
}

#include "SystemDesktopTests.moc"
