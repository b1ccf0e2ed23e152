#include "keldo-app/Support/Download.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/ProcessCleanup.h"
#include "ReelCore/Platform/SystemError.h"
#include "keldo-app/Support/Format.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <functional>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

namespace keldo_app {

namespace {

using ReelCore::FileSystem;
using ReelCore::SystemError;

constexpr int patience = 60'000;  // milliseconds without a byte
constexpr qint64 buffered = 1 << 20;

/// The file beside its target that is not whole yet. Of several who want it one has it.
class PartFile {
public:
    explicit PartFile(const ReelCore::URL& target)
        : target_(target), path_(target.native() + ".part"), file_(open(path_)) {
        if (::flock(file_.descriptor(), LOCK_EX | LOCK_NB) != 0 || !isStillThere()) {
            throw std::runtime_error("Another download writes this file: " + path_.native());
        }
        if (::ftruncate(file_.descriptor(), 0) != 0) ReelCore::throwSystemError(path_);
        ReelCore::ProcessCleanup::shared().addPath(path_);
    }

    ~PartFile() {
        if (isStillThere()) ::unlink(path_.c_str());
        ReelCore::ProcessCleanup::shared().removePath(path_);
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    void write(const QByteArray& bytes) { file_.write(std::as_bytes(std::span(bytes))); }

    void becomeTarget() {
        file_.flush();
        if (!isStillThere()) throw SystemError(ENOENT, path_);
        if (::rename(path_.c_str(), target_.c_str()) != 0) ReelCore::throwSystemError(target_);
        FileSystem::flushFolder(target_.parent_path());
    }

private:
    static ReelCore::File open(const ReelCore::URL& path) {
        if (auto file = ReelCore::File::createExclusively(path)) return std::move(*file);
        return ReelCore::File::openForUpdating(path);
    }

    bool isStillThere() const {
        return FileSystem::identity(path_) == FileSystem::identity(file_.descriptor());
    }

    ReelCore::URL target_;
    ReelCore::URL path_;
    ReelCore::File file_;
};

std::string complaint(const QNetworkReply& reply) {
    switch (reply.error()) {
        case QNetworkReply::OperationCanceledError:
            return "The server has stopped answering.";
        case QNetworkReply::InsecureRedirectError:
            return "The server refers to an address that is not encrypted.";
        default:
            return reply.errorString().toStdString();
    }
}

/// The length of the file that the server sends; throws if it sends something else.
std::int64_t lengthOf(const QNetworkReply& reply) {
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (reply.error() == QNetworkReply::InsecureRedirectError || !status.isValid()) {
        throw std::runtime_error(complaint(reply));
    }
    if (status.toInt() != 200) {
        const QString reason =
            reply.attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
        throw std::runtime_error(
            fmt::format("The server answered: {} {}", status.toInt(), reason.toStdString()));
    }
    bool isKnown = false;
    const auto length =
        reply.header(QNetworkRequest::ContentLengthHeader).toString().toLongLong(&isKnown);
    if (!isKnown) throw std::runtime_error("The server does not say how long the file is.");
    return length;
}

using Progress = std::function<void(std::int64_t received, std::int64_t total)>;

void receive(QNetworkReply& reply, PartFile& part, const Progress& progress) {
    QEventLoop loop;
    QObject::connect(&reply, &QNetworkReply::readyRead, &loop, &QEventLoop::quit);
    QObject::connect(&reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    std::int64_t received = 0;
    while (!reply.isFinished() || reply.bytesAvailable() > 0) {
        if (reply.bytesAvailable() == 0) loop.exec();
        const QByteArray bytes = reply.readAll();
        if (bytes.isEmpty()) continue;
        const std::int64_t total = lengthOf(reply);
        part.write(bytes);
        received += bytes.size();
        progress(received, total);
    }
    const std::int64_t total = lengthOf(reply);
    if (reply.error() != QNetworkReply::NoError) throw std::runtime_error(complaint(reply));
    if (received != total) throw std::runtime_error("The server has sent only a part of the file.");
}

void fetch(const QUrl& source, const ReelCore::URL& target, const Progress& progress) {
    FileSystem::createFolders(target.parent_path());
    PartFile part(target);
    QNetworkRequest request(source);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    // Otherwise the length told would be that of what is packed.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setTransferTimeout(patience);
    QNetworkAccessManager network;
    const std::unique_ptr<QNetworkReply> reply(network.get(request));
    reply->setReadBufferSize(buffered);
    receive(*reply, part, progress);
    part.becomeTarget();
}

}  // namespace

Download& Download::start(const QUrl& source, const ReelCore::URL& target) {
    for (Download* download : qApp->findChildren<Download*>()) {
        if (download->source_ == source && download->target_ == target) return *download;
    }
    return *new Download(source, target);
}

Download::Download(const QUrl& source, const ReelCore::URL& target)
    : QObject(qApp),
      source_(source),
      target_(target),
      job_({.run =
                [source, target](const auto& send) {
                    fetch(source, target, [&](std::int64_t received, std::int64_t total) {
                        send({received, total});
                    });
                    send({.isEnd = true});
                },
            .consume = [this](const Event& event) { consume(event); },
            .failed =
                [](const std::exception& error) {
                    return Event{.isEnd = true, .failure = Format::text(error.what())};
                },
            .isPassing = [](const Event& event) { return !event.isEnd; }}) {}

void Download::consume(const Event& event) {
    if (!event.isEnd) {
        emit progressed(event.received, event.total);
        return;
    }
    // Whoever starts it anew in answer to its end gets another.
    setParent(nullptr);
    deleteLater();
    if (event.failure.isEmpty()) {
        emit succeeded();
    } else {
        emit failed(event.failure);
    }
}

}  // namespace keldo_app
