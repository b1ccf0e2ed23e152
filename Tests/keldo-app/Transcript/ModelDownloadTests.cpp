#include "../Support/WebServer.h"
#include "../ViewModelFixture.h"
#include "ReelCore/Platform/FileSystem.h"
#include "Support/LoopMount.h"
#include "TranscriptTools.h"
#include "keldo-app/Transcript/TranscriptViewModel.h"

#include <QPointer>
#include <memory>
#include <optional>

using keldo_app::TranscriptViewModel;
using ReelCore::URL;
using WindowSupport::head;
using WindowSupport::says;
using WindowSupport::sends;
using WindowSupport::TranscriptTools;
using WindowSupport::WebServer;

namespace {

class ModelDownloadTests : protected TranscriptTools, public ViewModelFixture<TranscriptViewModel> {
protected:
    /// From now on models come encrypted from a server that answers so.
    void serve(WebServer::Answer answer) {
        server_.emplace(std::move(answer), encryption_.make());
        model_.modelSource = server_->url("/whisper.cpp/resolve/main/ggml-", "https").toString();
    }

    void download(const QString& name) {
        model_.downloadModel(name);
        EXPECT_EQ(model_.downloadingModel(), name);
        ASSERT_TRUE(waitFor([&] { return model_.downloadingModel().isEmpty(); }));
    }

    void expectNothingChanged() {
        EXPECT_EQ(model_.models(), QStringList("tiny.en"));
        EXPECT_EQ(model_.selectedModel(), models() / "ggml-tiny.en.bin");
        EXPECT_EQ(model_.errorMessage(), "");
    }

    /// Sends half of a model and keeps the rest for later.
    WebServer::Answer sendsHalf() {
        return [this](QTcpSocket& client, const QByteArray&) {
            client.write(head("200 OK", 10) + "01234");
            client_ = &client;
        };
    }

    const std::string body_ = TestSupport::noise(3'000'000);
    const URL base_ = models() / "ggml-base.en.bin";
    WindowSupport::EncryptedServers encryption_{folder_.path() / "keys"};
    std::optional<WebServer> server_;
    QPointer<QTcpSocket> client_;
};

}  // namespace

TEST_F(ModelDownloadTests, Done_IsListedAndSelected) {
    QByteArray asked;
    serve([&](QTcpSocket& client, const QByteArray& path) {
        asked = path;
        sends(body_)(client, path);
    });
    download("base.en");
    EXPECT_EQ(asked, "/whisper.cpp/resolve/main/ggml-base.en.bin");
    EXPECT_EQ(TestSupport::readFile(base_), body_);
    EXPECT_EQ(model_.models(), (QStringList{"base.en", "tiny.en"}));
    EXPECT_EQ(model_.selectedModel(), base_);
    EXPECT_EQ(model_.modelIndex(), 0);
}

TEST_F(ModelDownloadTests, FirstModel_MakesTheFolder) {
    std::filesystem::remove_all(models());
    serve(sends(body_));
    download("base.en");
    EXPECT_EQ(TestSupport::readFile(base_), body_);
    EXPECT_TRUE(TranscriptViewModel().whisperReady);
}

TEST_F(ModelDownloadTests, NotFound_ChangesNothingAndSaysNothing) {
    serve(says(head("404 Not Found", 4) + "none"));
    download("base.en");
    expectNothingChanged();
    EXPECT_FALSE(ReelCore::FileSystem::exists(base_));
}

TEST_F(ModelDownloadTests, BrokenOffHalfWay_LeavesTheOldModelWhole) {
    TestSupport::writeFile(base_, "older");
    serve(says(head("200 OK", 1'000'000) + QByteArray(500'000, 'x')));
    download("base.en");
    EXPECT_EQ(TestSupport::readFile(base_), "older");
    EXPECT_EQ(TestSupport::readTree(models()).size(), 4U) << "no part is left";
    EXPECT_EQ(model_.selectedModel(), models() / "ggml-tiny.en.bin");
}

TEST_F(ModelDownloadTests, OldModel_StaysWholeUntilTheNewOneIs) {
    TestSupport::writeFile(base_, "older");
    serve(sendsHalf());
    model_.downloadModel("base.en");
    ASSERT_TRUE(waitFor([&] { return !client_.isNull(); }));
    EXPECT_TRUE(ReelCore::FileSystem::exists(base_.native() + ".part"));
    EXPECT_EQ(TestSupport::readFile(base_), "older");
    client_->write("56789");
    ASSERT_TRUE(waitFor([&] { return model_.downloadingModel().isEmpty(); }));
    EXPECT_EQ(TestSupport::readFile(base_), "0123456789");
}

TEST_F(ModelDownloadTests, DiskThatRunsFull_KeepsWhatIsThere) {
    if (!TestSupport::LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const TestSupport::LoopMount drive("ext4", 8);
    const TestSupport::EnvironmentVariable data("XDG_DATA_HOME", drive.path().native());
    const URL small = drive.path() / "keldobay/models/ggml-base.en.bin";
    TestSupport::writeFile(small, "older");
    serve(sends(TestSupport::noise(12'000'000)));
    download("base.en");
    EXPECT_EQ(TestSupport::readFile(small), "older");
    EXPECT_EQ(TestSupport::readTree(small.parent_path()).size(), 1U);
    EXPECT_EQ(model_.models(), QStringList("base.en"));
}

TEST_F(ModelDownloadTests, SecondWhileOneRuns_IsIgnored) {
    serve(sendsHalf());
    model_.downloadModel("base.en");
    ASSERT_TRUE(waitFor([&] { return !client_.isNull(); }));
    model_.downloadModel("small.en");
    EXPECT_EQ(model_.downloadingModel(), "base.en");
    client_->write("56789");
    ASSERT_TRUE(waitFor([&] { return model_.downloadingModel().isEmpty(); }));
    EXPECT_EQ(server_->requests, 1);
    EXPECT_FALSE(ReelCore::FileSystem::exists(models() / "ggml-small.en.bin"));
}

TEST_F(ModelDownloadTests, ScreenThatIsGone_LeavesItToItsEndAndTheNextJoinsIt) {
    serve(sendsHalf());
    auto gone = std::make_unique<TranscriptViewModel>();
    gone->modelSource = model_.modelSource;
    gone->downloadModel("base.en");
    ASSERT_TRUE(waitFor([&] { return !client_.isNull(); }));
    gone.reset();
    model_.downloadModel("base.en");
    client_->write("56789");
    ASSERT_TRUE(waitFor([&] { return model_.downloadingModel().isEmpty(); }));
    EXPECT_EQ(server_->requests, 1);
    EXPECT_EQ(model_.selectedModel(), base_);
    EXPECT_EQ(TestSupport::readFile(base_), "0123456789");
}

TEST_F(ModelDownloadTests, Folder_IsShownAsItIs) {
    std::filesystem::remove_all(models());
    model_.revealModelsFolder();
    EXPECT_EQ(desktop_.revealed, std::vector<URL>{models()});
    EXPECT_FALSE(ReelCore::FileSystem::exists(models()));
}
