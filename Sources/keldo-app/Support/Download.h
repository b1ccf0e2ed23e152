#pragma once

#include "ReelCore/Platform/URL.h"
#include "keldo-app/Support/Jobs.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <cstdint>

namespace keldo_app {

/// One file on its way from a server. It belongs to the application, goes on whoever stops looking
/// at it, and is deleted once it has told its end. Main thread only.
///
/// The file grows as `target` with ".part" at its end, in a folder that is made if it is missing,
/// and is given its name, in place of any older file, when it is whole and safe on the drive.
/// Otherwise the older file stays and no part is left behind; one that a power cut left is written
/// over. A window that closes ends the download.
class Download : public QObject {
    Q_OBJECT

public:
    /// The download from `source` (HTTP or HTTPS) to `target` that is under way, or else a new one.
    /// It tells nothing before the event loop runs again. One from elsewhere to the same target
    /// fails, also where another process has it.
    static Download& start(const QUrl& source, const ReelCore::URL& target);

signals:
    /// In bytes.
    void progressed(qint64 received, qint64 total);
    void succeeded();

    /// `why` is a text for people. Anything but an answer with status 200 and its length is a
    /// failure; redirections are followed unless they lead from HTTPS to HTTP.
    void failed(const QString& why);

private:
    struct Event {
        std::int64_t received = 0;
        std::int64_t total = 0;
        bool isEnd = false;
        QString failure = {};
    };

    Download(const QUrl& source, const ReelCore::URL& target);
    void consume(const Event& event);

    const QUrl source_;
    const ReelCore::URL target_;
    Job<Event> job_;
};

}  // namespace keldo_app
