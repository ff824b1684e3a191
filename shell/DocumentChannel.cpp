#include "DocumentChannel.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QStringDecoder>
#include <QTimer>
#include <QtEndian>

#include <optional>
#include <unistd.h>

namespace {

constexpr char kTag[4] = {'T', 'w', 'l', 'y'};
constexpr qsizetype kHeaderSize = 8;
constexpr char kAck = '\x06';

// Whatever the bytes, only a list of absolute, well-formed paths comes out.
std::optional<QStringList> decode(const QByteArray& payload)
{
    QStringList paths;
    if (!payload.isEmpty() && !payload.endsWith('\0'))
        return std::nullopt;
    for (qsizetype start = 0; start < payload.size();) {
        const qsizetype end = payload.indexOf('\0', start);
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        QString path = utf8(QByteArrayView(payload).sliced(start, end - start));
        if (utf8.hasError() || !path.startsWith(QLatin1Char('/')))
            return std::nullopt;
        paths << path;
        start = end + 1;
    }
    return paths;
}

// The display a launch will use belongs in the name: a Twinly running on another display, or
// offscreen, would take documents the user never sees.
QString displayKey()
{
    QStringList parts;
    for (const char* variable : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        QString value = qEnvironmentVariable(variable);
        if (qstrcmp(variable, "DISPLAY") == 0)
            value.remove(QRegularExpression(QStringLiteral("\\.\\d+$"))); // :0.0 is :0
        if (!value.isEmpty())
            parts << value.replace(
                QRegularExpression(QStringLiteral("[^A-Za-z0-9.]")), QStringLiteral("_"));
    }
    // A socket path has room for about a hundred bytes.
    return parts.join(QLatin1Char('-')).left(40);
}

} // namespace

DocumentChannel::DocumentChannel(const QString& serverName, QObject* parent)
    : QObject(parent)
    , name(serverName)
    , startupLock(serverName + QStringLiteral(".lock"))
{
}

DocumentChannel::~DocumentChannel()
{
    close();
}

QString DocumentChannel::sessionServerName()
{
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QFileInfo info(folder);
    if (folder.isEmpty() || !info.isAbsolute() || !info.isDir() || !info.isWritable()
        || info.ownerId() != ::geteuid())
        folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        return {};
    QString file = QStringLiteral("twinly-%1").arg(::geteuid());
    const QString key = displayKey();
    if (!key.isEmpty())
        file += QLatin1Char('-') + key;
    return folder + QLatin1Char('/') + file + QStringLiteral(".socket");
}

QByteArray DocumentChannel::encode(const QStringList& paths)
{
    QByteArray payload;
    for (const QString& path : paths) {
        const QByteArray entry = path.toUtf8() + '\0';
        // Only the first two of a batch are ever used, so a list this long loses nothing.
        if (payload.size() + entry.size() > kMaxPayload)
            break;
        payload += entry;
    }
    QByteArray message(kTag, sizeof kTag);
    const quint32 length = qToBigEndian(quint32(payload.size()));
    message.append(reinterpret_cast<const char*>(&length), sizeof length);
    return message + payload;
}

DocumentChannel::Handover DocumentChannel::forward(const QStringList& paths, int timeoutMs)
{
    if (name.isEmpty())
        return Handover::NoInstance;
    if (!startupLock.isLocked()) {
        lockedOut = !startupLock.tryLock(kStartupLockMs)
            && startupLock.error() == QLockFile::LockFailedError;
    }

    QDeadlineTimer deadline(timeoutMs);
    QLocalSocket socket;
    socket.connectToServer(name);
    if (!socket.waitForConnected(deadline.remainingTime()))
        return Handover::NoInstance;
    startupLock.unlock();

    socket.write(encode(paths));
    while (socket.bytesToWrite() > 0)
        if (!socket.waitForBytesWritten(deadline.remainingTime()))
            return Handover::Unanswered;
    while (socket.bytesAvailable() < 1)
        if (!socket.waitForReadyRead(deadline.remainingTime()))
            return Handover::Unanswered;
    char answer = 0;
    socket.getChar(&answer);
    return answer == kAck ? Handover::Delivered : Handover::Unanswered;
}

bool DocumentChannel::listen()
{
    error.clear();
    if (name.isEmpty()) {
        error = QStringLiteral("no runtime folder");
        return false;
    }
    if (lockedOut) {
        error = QStringLiteral("another Twinly is starting up");
        return false;
    }
    close();
    // Nobody answered on the socket file (forward() said so, under the lock): it was left by a
    // Twinly that crashed.
    QLocalServer::removeServer(name);
    server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(server, &QLocalServer::newConnection, this, &DocumentChannel::acceptConnections);
    const bool listening = server->listen(name);
    if (!listening) {
        error = server->errorString();
        delete server;
        server = nullptr;
    }
    startupLock.unlock();
    return listening;
}

void DocumentChannel::close()
{
    // The server removes its socket file.
    delete server;
    server = nullptr;
}

void DocumentChannel::acceptConnections()
{
    while (QLocalSocket* socket = server->nextPendingConnection()) {
        // Never more than one message and its header in memory; more than that is garbage.
        socket->setReadBufferSize(kHeaderSize + kMaxPayload + 1);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readMessage(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        // A sender that stalls is dropped.
        QTimer::singleShot(kReadMs, socket, [socket] { socket->abort(); });
    }
}

void DocumentChannel::readMessage(QLocalSocket* socket)
{
    if (socket->bytesAvailable() < kHeaderSize)
        return;
    const QByteArray header = socket->peek(kHeaderSize);
    const quint32 length = qFromBigEndian<quint32>(header.constData() + sizeof kTag);
    if (!header.startsWith(QByteArrayView(kTag, sizeof kTag)) || length > kMaxPayload
        || socket->bytesAvailable() > kHeaderSize + qsizetype(length)) {
        socket->abort();
        return;
    }
    if (socket->bytesAvailable() < kHeaderSize + qsizetype(length))
        return;
    socket->skip(kHeaderSize);
    const std::optional<QStringList> paths = decode(socket->read(length));
    if (!paths) {
        socket->abort();
        return;
    }
    // A sender that gave up waiting still gets its documents opened.
    if (socket->state() == QLocalSocket::ConnectedState) {
        socket->putChar(kAck);
        socket->disconnectFromServer();
    }
    QMetaObject::invokeMethod(
        this, [this, paths = *paths] { emit documentsReceived(paths); }, Qt::QueuedConnection);
}
