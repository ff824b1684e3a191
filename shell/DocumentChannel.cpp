#include "DocumentChannel.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QTimer>
#include <QtEndian>

#include <cerrno>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char kTag[4] = {'T', 'w', 'l', 'y'};
constexpr qsizetype kHeaderSize = 8;
constexpr char kAck = '\x06';

// Whatever the bytes, only a list of absolute paths comes out.
std::optional<QByteArrayList> decode(const QByteArray& payload)
{
    QByteArrayList paths;
    if (!payload.isEmpty() && !payload.endsWith('\0'))
        return std::nullopt;
    for (qsizetype start = 0; start < payload.size();) {
        const qsizetype end = payload.indexOf('\0', start);
        QByteArray path = payload.sliced(start, end - start);
        if (!path.startsWith('/'))
            return std::nullopt;
        paths << path;
        start = end + 1;
    }
    return paths;
}

// The user at the other end of a connected socket; -1 when it can't be told.
qint64 peerUid(const QLocalSocket& socket)
{
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (::getsockopt(int(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &credentials, &size)
        != 0)
        return -1;
    return credentials.uid;
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

bool DocumentChannel::isPrivateFolder(const QByteArray& folder)
{
    struct stat info;
    return folder.startsWith('/') && ::lstat(folder.constData(), &info) == 0
        && S_ISDIR(info.st_mode) && info.st_uid == ::geteuid() && (info.st_mode & 077) == 0;
}

QString DocumentChannel::sessionServerName()
{
    // Another user who can write to the folder could put a socket of their own in our place,
    // and take the files we open or hand us theirs.
    QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    if (!isPrivateFolder(folder)) {
        QByteArray temporary = qgetenv("TMPDIR");
        if (!temporary.startsWith('/'))
            temporary = "/tmp";
        folder = temporary + "/twinly-" + QByteArray::number(::geteuid());
        // Made only by us and only for us; one that is there already must be so too.
        if (::mkdir(folder.constData(), 0700) != 0 && errno != EEXIST)
            return {};
        if (!isPrivateFolder(folder))
            return {};
    }
    QString file = QStringLiteral("twinly-%1").arg(::geteuid());
    const QString key = displayKey();
    if (!key.isEmpty())
        file += QLatin1Char('-') + key;
    return QFile::decodeName(folder) + QLatin1Char('/') + file + QStringLiteral(".socket");
}

QByteArray DocumentChannel::encode(const QByteArrayList& paths)
{
    QByteArray payload;
    for (const QByteArray& path : paths) {
        const QByteArray entry = path + '\0';
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

DocumentChannel::Handover DocumentChannel::forward(const QByteArrayList& paths, int timeoutMs)
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
    // Not ours: our files go to nobody else, and we don't listen in its place either.
    if (peerUid(socket) != ::geteuid())
        return Handover::Unanswered;
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
        if (peerUid(*socket) != ::geteuid()) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
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
    const std::optional<QByteArrayList> paths = decode(socket->read(length));
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
