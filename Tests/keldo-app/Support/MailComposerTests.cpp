#include "keldo-app/Support/MailComposer.h"

#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <QElapsedTimer>
#include <QTest>
#include <QUrl>
#include <QUrlQuery>
#include <algorithm>
#include <cstdlib>
#include <optional>

#include <fcntl.h>
#include <gtest/gtest.h>

using keldo_app::MailComposer;
using keldo_app::MailOutcome;
using ReelCore::URL;
using TestSupport::EnvironmentVariable;

namespace {

const QString subject = "Storage Plan — Ünit \"two\" isn't C:\\new 100%";

bool waitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 30'000);
}

/// A desktop that knows one program for mail: a script, which notes down what it is given.
class MailComposerTests : public testing::Test {
protected:
    MailComposerTests() {
        TestSupport::writeFile(attachment_, "%PDF");
        setScript("");
        registerProgram("Network;Email;");
    }
    ~MailComposerTests() override { ::unsetenv("KELDO_TEST_MAIL"); }

    /// The process that ends begins anew, with a folder of its own: the first one names it.
    URL folder() const {
        ::setenv("KELDO_TEST_MAIL", own_.path().c_str(), 0);
        return std::getenv("KELDO_TEST_MAIL");
    }

    /// What the mail program does after it has noted down its arguments.
    void setScript(const std::string& script) {
        const std::string at = folder().native();
        TestSupport::writeFile(folder() / "bin" / "postman", "#!/bin/sh\ncd '" + at +
                                                                 "'\n"
                                                                 "printf '%s\\n' \"$@\" >>given\n" +
                                                                 script + "\n");
        std::filesystem::permissions(folder() / "bin" / "postman", std::filesystem::perms(0755));
    }

    void registerProgram(const std::string& categories) {
        TestSupport::writeTree(
            folder(),
            {{"data/applications/postman.desktop",
              "[Desktop Entry]\nType=Application\nName=Postman\nExec=" +
                  (folder() / "bin" / "postman").native() +
                  " %u\nMimeType=x-scheme-handler/mailto;\nCategories=" + categories + "\n"},
             {"config/mimeapps.list",
              "[Default Applications]\nx-scheme-handler/mailto=postman.desktop\n"}});
    }

    /// The outcome, once it is told.
    MailOutcome compose(const URL& attachment) {
        std::optional<MailOutcome> told;
        QObject asker;
        MailComposer::compose(subject, attachment, &asker,
                              [&](MailOutcome outcome) { told = outcome; });
        if (!waitFor([&] { return told.has_value(); })) throw std::runtime_error("not told");
        return *told;
    }

    std::string given() const {
        return std::filesystem::exists(folder() / "given")
                   ? TestSupport::readFile(folder() / "given")
                   : "";
    }

    TestSupport::TemporaryFolder own_;
    URL attachment_ = folder() / "plan ü & co" / "Storage Plan.pdf";
    EnvironmentVariable data_{"XDG_DATA_HOME", folder() / "data"};
    EnvironmentVariable systemData_{"XDG_DATA_DIRS", folder() / "none"};
    EnvironmentVariable config_{"XDG_CONFIG_HOME", folder() / "config"};
    EnvironmentVariable systemConfig_{"XDG_CONFIG_DIRS", folder() / "none"};
    EnvironmentVariable desktop_{"XDG_CURRENT_DESKTOP", "X-Generic"};
    EnvironmentVariable display_{"DISPLAY", ":4077"};
    EnvironmentVariable mailer_{"MAILER", std::nullopt};
    EnvironmentVariable browser_{"BROWSER", std::nullopt};
};

}  // namespace

TEST_F(MailComposerTests, MailProgram_GetsSubjectAndAttachment) {
    EXPECT_EQ(compose(attachment_), MailOutcome::opened);
    const QUrl letter(QString::fromStdString(given()).trimmed(), QUrl::StrictMode);
    ASSERT_TRUE(letter.isValid()) << given();
    const QUrlQuery fields(letter);
    EXPECT_EQ(letter.scheme(), "mailto");
    EXPECT_EQ(letter.path(), "");
    EXPECT_EQ(fields.queryItemValue("subject", QUrl::FullyDecoded), subject);
    EXPECT_EQ(fields.queryItemValue("attach", QUrl::FullyDecoded).toStdString(),
              attachment_.native());
}

TEST_F(MailComposerTests, LanguageWithoutUmlauts_LosesNone) {
    const EnvironmentVariable plain("LC_ALL", "C");
    EXPECT_EQ(compose(attachment_), MailOutcome::opened);
    const QUrlQuery fields(QUrl(QString::fromStdString(given()).trimmed()));
    EXPECT_EQ(fields.queryItemValue("subject", QUrl::FullyDecoded), subject);
    EXPECT_EQ(fields.queryItemValue("attach", QUrl::FullyDecoded).toStdString(),
              attachment_.native());
}

TEST_F(MailComposerTests, NoMailProgram_IsNoServiceAndOpensNoBrowser) {
    std::filesystem::remove_all(folder() / "config");
    std::filesystem::remove_all(folder() / "data");
    std::filesystem::rename(folder() / "bin" / "postman", folder() / "bin" / "x-www-browser");
    const EnvironmentVariable path("PATH", (folder() / "bin").native() + ":" + std::getenv("PATH"));
    EXPECT_EQ(compose(attachment_), MailOutcome::noService);
    EXPECT_EQ(given(), "");
}

TEST_F(MailComposerTests, NoTools_IsNoService) {
    const EnvironmentVariable path("PATH", folder() / "none");
    EXPECT_EQ(compose(attachment_), MailOutcome::noService);
}

TEST_F(MailComposerTests, Browser_CanNotAttachAndIsNotOpened) {
    registerProgram("Network;WebBrowser;");
    EXPECT_EQ(compose(attachment_), MailOutcome::cannotAttach);
    EXPECT_EQ(given(), "");
}

TEST_F(MailComposerTests, BrowserThatIsAMailProgramAsWell_IsOpened) {
    registerProgram("Network;WebBrowser;Email;");
    EXPECT_EQ(compose(attachment_), MailOutcome::opened);
}

TEST_F(MailComposerTests, MissingAttachment_CanNotBeAttached) {
    EXPECT_EQ(compose(folder() / "nothing.pdf"), MailOutcome::cannotAttach);
    EXPECT_EQ(given(), "");
}

TEST_F(MailComposerTests, MailProgramThatFails_DidNotAttach) {
    setScript("exit 1");
    EXPECT_EQ(compose(attachment_), MailOutcome::cannotAttach);
}

TEST_F(MailComposerTests, AskerThatIsGone_IsNotTold) {
    bool isTold = false;
    {
        QObject asker;
        MailComposer::compose(subject, attachment_, &asker, [&](MailOutcome) { isTold = true; });
    }
    EXPECT_EQ(compose(attachment_), MailOutcome::opened);
    ASSERT_TRUE(waitFor([&] { return std::ranges::count(given(), '\n') == 2; }));
    EXPECT_FALSE(isTold);
}

TEST_F(MailComposerTests, MailProgramThatStaysOpen_CountsAsOpenedAndOutlivesTheWindow) {
    setScript("while [ -e given -a ! -e close ]; do sleep 0.05; done; echo >closed");
    const auto composeAndEnd = [&] {
        // What the test's own process waits for must not be kept open by the mail program.
        for (int own = 3; own < 64; ++own) ::fcntl(own, F_SETFD, FD_CLOEXEC);
        QElapsedTimer clock;
        clock.start();
        QObject asker;
        MailComposer::compose(subject, attachment_, &asker, [&](MailOutcome outcome) {
            std::_Exit(outcome == MailOutcome::opened ? EXIT_SUCCESS : EXIT_FAILURE);
        });
        if (clock.elapsed() > 2'000) std::_Exit(2);
        waitFor([] { return false; });
        std::_Exit(3);
    };
    EXPECT_EXIT(composeAndEnd(), testing::ExitedWithCode(EXIT_SUCCESS), "");
    EXPECT_NE(given(), "");
    EXPECT_FALSE(std::filesystem::exists(folder() / "closed"));
    TestSupport::writeFile(folder() / "close", "");
    EXPECT_TRUE(waitFor([&] { return std::filesystem::exists(folder() / "closed"); }));
}
