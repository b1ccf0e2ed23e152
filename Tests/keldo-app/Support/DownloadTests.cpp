#include "keldo-app/Support/Download.h"

#include "ReelCore/Platform/FileSystem.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"
#include "WebServer.h"

#include <QPointer>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

using keldo_app::Download;
using ReelCore::URL;
using WindowSupport::EncryptedServers;
using WindowSupport::head;
using WindowSupport::says;
using WindowSupport::sends;
using Server = WindowSupport::WebServer;

namespace {

bool waitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 30'000);
}

/// What a download tells, to its end.
struct Listener : QObject {
    explicit Listener(Download& download) {
        connect(&download, &Download::progressed, this, [this](qint64 at, qint64 of) {
            EXPECT_LT(received, at);
            received = at;
            total = of;
        });
        connect(&download, &Download::succeeded, this, [this] { hasSucceeded = hasEnded = true; });
        connect(&download, &Download::failed, this, [this](const QString& why) {
            failure = why.toStdString();
            hasEnded = true;
        });
    }

    qint64 received = 0;
    qint64 total = 0;
    bool hasSucceeded = false;
    bool hasEnded = false;
    std::string failure;
};

class DownloadTests : public testing::Test {
protected:
    /// Downloads and gives the failure's text, empty for a success.
    std::string failureOf(const QUrl& source, const URL& target) {
        Listener listener(Download::start(source, target));
        EXPECT_TRUE(waitFor([&] { return listener.hasEnded; }));
        EXPECT_EQ(listener.hasSucceeded, listener.failure.empty());
        return listener.failure;
    }
    std::string failureOf(const Server& server) { return failureOf(server.url("/model"), target_); }

    bool nothingIsThere() const {
        return ReelCore::FileSystem::names(target_.parent_path()).empty();
    }

    URL part() const { return target_.native() + ".part"; }

    TestSupport::TemporaryFolder folder_;
    URL target_ = folder_.path() / "ggml base ü.bin";
    const std::string body_ = TestSupport::noise(5'000'000);
};

}  // namespace

TEST_F(DownloadTests, WholeFile_StandsUnderItsNameAndNothingBesideIt) {
    const Server server(sends(body_));
    Listener listener(Download::start(server.url("/model"), target_));
    ASSERT_TRUE(waitFor([&] { return listener.hasEnded; }));
    EXPECT_TRUE(listener.hasSucceeded) << listener.failure;
    EXPECT_EQ(listener.received, 5'000'000);
    EXPECT_EQ(listener.total, 5'000'000);
    EXPECT_EQ(TestSupport::readTree(folder_.path()),
              (TestSupport::FolderTree{{"ggml base ü.bin", body_}}));
}

TEST_F(DownloadTests, EmptyFile_IsWhole) {
    const Server server(sends(""));
    EXPECT_EQ(failureOf(server), "");
    EXPECT_EQ(TestSupport::readTree(folder_.path()),
              (TestSupport::FolderTree{{"ggml base ü.bin", ""}}));
}

TEST_F(DownloadTests, OlderFile_IsReplacedByAWholeOneOnly) {
    TestSupport::writeFile(target_, "older");
    const Server failing(says(head("500 Internal Server Error", 4) + "oops"));
    EXPECT_EQ(failureOf(failing), "The server answered: 500 Internal Server Error");
    EXPECT_EQ(TestSupport::readFile(target_), "older");
    const Server server(sends("newer"));
    EXPECT_EQ(failureOf(server), "");
    EXPECT_EQ(TestSupport::readFile(target_), "newer");
}

TEST_F(DownloadTests, AnyOtherStatus_Fails) {
    for (const QByteArray status : {"404 Not Found", "206 Partial Content", "203 Made Up"}) {
        const Server server(says(head(status, 4) + "page"));
        EXPECT_EQ(failureOf(server), "The server answered: " + status.toStdString());
        EXPECT_TRUE(nothingIsThere());
    }
    const Server empty(says("HTTP/1.1 204 No Content\r\n\r\n"));
    EXPECT_EQ(failureOf(empty), "The server answered: 204 No Content");
    EXPECT_TRUE(nothingIsThere());
}

TEST_F(DownloadTests, ConnectionThatEndsEarly_LeavesNothing) {
    const QByteArray half(500'000, 'x');
    const Server closes(says(head("200 OK", 1'000'000) + half));
    EXPECT_NE(failureOf(closes), "");
    EXPECT_TRUE(nothingIsThere());
    const Server cuts([&](QTcpSocket& client, const QByteArray&) {
        client.write(head("200 OK", 1'000'000) + half);
        client.flush();
        QTimer::singleShot(50, &client, [&client] { client.abort(); });
    });
    EXPECT_NE(failureOf(cuts), "");
    EXPECT_TRUE(nothingIsThere());
}

TEST_F(DownloadTests, LengthThatIsNotTold_CanNotBeProvedWhole) {
    const Server server(says("HTTP/1.1 200 OK\r\n\r\nhow much more?"));
    EXPECT_EQ(failureOf(server), "The server does not say how long the file is.");
    EXPECT_TRUE(nothingIsThere());
}

TEST_F(DownloadTests, NobodyThere_Fails) {
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const QUrl url(QString("http://localhost:%1/").arg(closed.serverPort()));
    closed.close();
    EXPECT_NE(failureOf(url, target_).find("refused"), std::string::npos);
    EXPECT_TRUE(nothingIsThere());
}

TEST_F(DownloadTests, Redirection_IsFollowed) {
    const Server server([&](QTcpSocket& client, const QByteArray& path) {
        if (path == "/elsewhere") return sends(body_)(client, path);
        client.write("HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nContent-Length: 0\r\n\r\n");
    });
    EXPECT_EQ(failureOf(server), "");
    EXPECT_EQ(TestSupport::readFile(target_), body_);
}

TEST_F(DownloadTests, RedirectionOutOfEncryption_IsRefused) {
    const EncryptedServers encryption(folder_.path() / "keys");
    Server open(sends("open"));
    const QByteArray address = open.url("/open").toEncoded();
    const Server server(
        [&](QTcpSocket& client, const QByteArray& path) {
            if (path == "/safe") return sends("safe")(client, path);
            client.write("HTTP/1.1 302 Found\r\nLocation: " + address +
                         "\r\nContent-Length: 0\r\n\r\n");
        },
        encryption.make());
    target_ = folder_.path() / "models" / "base.bin";
    EXPECT_EQ(failureOf(server.url("/away", "https"), target_),
              "The server refers to an address that is not encrypted.");
    EXPECT_EQ(open.requests, 0);
    EXPECT_TRUE(nothingIsThere());
    EXPECT_EQ(failureOf(server.url("/safe", "https"), target_), "");
    EXPECT_EQ(TestSupport::readFile(target_), "safe");
}

TEST_F(DownloadTests, ListenerThatIsGone_LeavesItToItsEnd) {
    QPointer<QTcpSocket> client;
    Server server([&](QTcpSocket& asking, const QByteArray&) {
        asking.write(head("200 OK", 10) + "01234");
        client = &asking;
    });
    auto listener = std::make_unique<Listener>(Download::start(server.url("/model"), target_));
    ASSERT_TRUE(waitFor([&] { return listener->received == 5; }));
    EXPECT_FALSE(ReelCore::FileSystem::exists(target_)) << "it is not whole yet";
    EXPECT_TRUE(ReelCore::FileSystem::exists(part()));
    listener.reset();
    client->write("56789");
    ASSERT_TRUE(waitFor([&] { return ReelCore::FileSystem::exists(target_); }));
    EXPECT_EQ(TestSupport::readFile(target_), "0123456789");
}

TEST_F(DownloadTests, SameFileAskedForTwice_IsOneDownload) {
    QPointer<QTcpSocket> client;
    Server server([&](QTcpSocket& asking, const QByteArray&) { client = &asking; });
    Listener first(Download::start(server.url("/model"), target_));
    ASSERT_TRUE(waitFor([&] { return !client.isNull(); }));
    Listener second(Download::start(server.url("/model"), target_));
    client->write(head("200 OK", 4) + "body");
    ASSERT_TRUE(waitFor([&] { return first.hasEnded && second.hasEnded; }));
    EXPECT_TRUE(first.hasSucceeded && second.hasSucceeded);
    EXPECT_EQ(server.requests, 1);
}

TEST_F(DownloadTests, AnotherSourceForTheSameFile_IsRefusedMeanwhile) {
    QPointer<QTcpSocket> client;
    Server server([&](QTcpSocket& asking, const QByteArray&) { client = &asking; });
    Listener first(Download::start(server.url("/model"), target_));
    ASSERT_TRUE(waitFor([&] { return !client.isNull(); }));
    EXPECT_EQ(failureOf(server.url("/other"), target_),
              "Another download writes this file: " + part().native());
    client->write(head("200 OK", 4) + "body");
    ASSERT_TRUE(waitFor([&] { return first.hasEnded; }));
    EXPECT_EQ(TestSupport::readTree(folder_.path()),
              (TestSupport::FolderTree{{"ggml base ü.bin", "body"}}));
}

TEST_F(DownloadTests, PartThatAnotherProcessWrites_IsLeftAlone) {
    TestSupport::writeFile(part(), "theirs");
    const int theirs = ::open(part().c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(theirs, LOCK_EX), 0);
    const Server server(sends(body_));
    EXPECT_EQ(failureOf(server), "Another download writes this file: " + part().native());
    EXPECT_EQ(TestSupport::readFile(part()), "theirs");
    ::close(theirs);
}

TEST_F(DownloadTests, PartOfAProcessThatIsNoMore_IsWrittenOver) {
    TestSupport::writeFile(part(), TestSupport::noise(9'000'000, 2));
    const Server server(sends(body_));
    EXPECT_EQ(failureOf(server), "");
    EXPECT_EQ(TestSupport::readTree(folder_.path()),
              (TestSupport::FolderTree{{"ggml base ü.bin", body_}}));
}

TEST_F(DownloadTests, PartThatIsALink_IsNotFollowed) {
    TestSupport::writeFile(folder_.path() / "precious", "keep");
    std::filesystem::create_symlink(folder_.path() / "precious", part());
    const Server server(sends(body_));
    EXPECT_NE(failureOf(server), "");
    EXPECT_EQ(TestSupport::readFile(folder_.path() / "precious"), "keep");
}

TEST_F(DownloadTests, MissingFolder_IsMade) {
    target_ = folder_.path() / "Keldo" / "models" / "base.bin";
    const Server server(sends(body_));
    EXPECT_EQ(failureOf(server), "");
    EXPECT_EQ(TestSupport::readFile(target_), body_);
}

TEST_F(DownloadTests, FolderThatCanNotBe_Fails) {
    TestSupport::writeFile(folder_.path() / "models", "a file");
    const Server server(sends(body_));
    EXPECT_NE(failureOf(server.url("/model"), folder_.path() / "models" / "base.bin"), "");
}

TEST_F(DownloadTests, FolderUnderTheFilesName_StaysAndFails) {
    std::filesystem::create_directories(target_);
    const Server server(sends(body_));
    EXPECT_NE(failureOf(server), "");
    EXPECT_TRUE(ReelCore::FileSystem::isFolder(target_));
    EXPECT_FALSE(ReelCore::FileSystem::exists(part()));
}

TEST_F(DownloadTests, DriveThatCanNotBeWritten_Fails) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    TestSupport::LoopMount drive("ext4", 8);
    drive.makeReadOnly();
    const Server server(sends(body_));
    EXPECT_NE(failureOf(server.url("/model"), drive.path() / "base.bin").find("Read-only"),
              std::string::npos);
}

TEST_F(DownloadTests, DriveThatRunsFull_FailsAndIsLeftAsItWas) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const TestSupport::LoopMount drive("ext4", 8);
    const auto before = std::filesystem::space(drive.path()).available;
    const Server server(sends(TestSupport::noise(12'000'000)));
    target_ = drive.path() / "base.bin";
    EXPECT_EQ(failureOf(server.url("/model"), target_), "No space left on device");
    EXPECT_FALSE(ReelCore::FileSystem::exists(target_));
    EXPECT_FALSE(ReelCore::FileSystem::exists(part()));
    EXPECT_EQ(std::filesystem::space(drive.path()).available, before);
}
