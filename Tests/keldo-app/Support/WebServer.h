#pragma once

#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace WindowSupport {

/// Answers each request as the test says.
class WebServer {
public:
    using Answer = std::function<void(QTcpSocket& client, const QByteArray& path)>;

    explicit WebServer(Answer answer, std::unique_ptr<QTcpServer> server = nullptr)
        : answer_(std::move(answer)),
          server_(server ? std::move(server) : std::make_unique<QTcpServer>()) {
        QObject::connect(server_.get(), &QTcpServer::pendingConnectionAvailable,
                         [this] { serve(); });
        if (!server_->listen(QHostAddress::LocalHost)) throw std::runtime_error("no server");
    }

    QUrl url(const QString& path, const QString& scheme = "http") const {
        return {QString("%1://localhost:%2%3").arg(scheme).arg(server_->serverPort()).arg(path)};
    }

    int requests = 0;

private:
    void serve() {
        QTcpSocket* client = server_->nextPendingConnection();
        if (!client) return;
        QObject::connect(client, &QTcpSocket::readyRead, client,
                         [this, client, head = QByteArray()]() mutable {
                             head += client->readAll();
                             if (!head.contains("\r\n\r\n")) return;
                             ++requests;
                             const QByteArray path = head.split(' ').value(1);
                             head.clear();
                             answer_(*client, path);
                         });
    }

    Answer answer_;
    std::unique_ptr<QTcpServer> server_;
};

inline QByteArray head(const QByteArray& status, qsizetype length) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(length) + "\r\n\r\n";
}

/// Sends a whole body with status 200.
inline WebServer::Answer sends(const std::string& body) {
    return [body = QByteArray::fromStdString(body)](QTcpSocket& client, const QByteArray&) {
        client.write(head("200 OK", body.size()) + body);
    };
}

/// Sends an answer and closes the connection.
inline WebServer::Answer says(const QByteArray& answer) {
    return [answer](QTcpSocket& client, const QByteArray&) {
        client.write(answer);
        client.disconnectFromHost();
    };
}

/// Makes HTTPS servers that this process trusts as long as the object lives.
class EncryptedServers {
public:
    /// The folder is made, for the key and its certificate.
    explicit EncryptedServers(const ReelCore::URL& keys) {
        std::filesystem::create_directories(keys);
        TestSupport::outputOf(
            "openssl", {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                        "/CN=localhost", "-addext", "subjectAltName=DNS:localhost", "-keyout",
                        keys / "key", "-out", keys / "certificate"});
        const QByteArray key = QByteArray::fromStdString(TestSupport::readFile(keys / "key"));
        const auto certificates = QSslCertificate::fromPath((keys / "certificate").c_str());
        own_.setLocalCertificate(certificates.constFirst());
        own_.setPrivateKey(QSslKey(key, QSsl::Rsa));
        QSslConfiguration trusting = before_;
        trusting.addCaCertificates(certificates);
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    ~EncryptedServers() { QSslConfiguration::setDefaultConfiguration(before_); }
    EncryptedServers(const EncryptedServers&) = delete;
    EncryptedServers& operator=(const EncryptedServers&) = delete;

    std::unique_ptr<QTcpServer> make() const {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(own_);
        return server;
    }

private:
    const QSslConfiguration before_ = QSslConfiguration::defaultConfiguration();
    QSslConfiguration own_ = before_;
};

}  // namespace WindowSupport
