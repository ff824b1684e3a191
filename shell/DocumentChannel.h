#pragma once

#include <QByteArrayList>
#include <QLockFile>
#include <QObject>

class QLocalServer;
class QLocalSocket;

// One running Twinly per session: a later launch hands its documents to the running one over a
// local socket and ends. A message is a 4-byte tag, a 4-byte big-endian length and the absolute
// paths as bytes, each ended by a NUL (which no path can hold); the receiver answers one byte.
// Both ends talk only to a process of the same user.
class DocumentChannel : public QObject
{
    Q_OBJECT
public:
    enum class Handover {
        Delivered, // the running Twinly confirmed the documents
        Unanswered, // something listens but did not confirm in time
        NoInstance, // nobody listens: this launch should become the running one
    };

    static constexpr qsizetype kMaxPayload = 1 << 20;
    // How long a launch waits for the running one, and the running one for a message.
    static constexpr int kAnswerMs = 1500;
    static constexpr int kReadMs = 2000;
    // Another launch deciding at the same moment holds the start-up lock at most this long
    // before it listens.
    static constexpr int kStartupLockMs = 2000;

    explicit DocumentChannel(const QString& serverName, QObject* parent = nullptr);
    ~DocumentChannel() override;

    // The socket of this user's session and display, in the runtime folder when that is ours
    // alone, else in a folder of our own under the temporary folder; empty when neither is.
    static QString sessionServerName();
    // Whether `folder` is a folder (not a link) that only this user can enter or write to.
    static bool isPrivateFolder(const QByteArray& folder);
    QString serverName() const { return name; }

    // Sends the absolute paths (possibly none) to the running Twinly. Takes the start-up lock
    // first and keeps it when nobody answers, so that two launches at once can't both listen.
    Handover forward(const QByteArrayList& paths, int timeoutMs = kAnswerMs);

    // Becomes the running Twinly: a socket file nobody answers on is replaced. False when
    // listening failed or another launch is starting up this very moment; the program then runs
    // on its own.
    bool listen();
    QString errorString() const { return error; }
    // Stops listening and removes the socket; also done on destruction.
    void close();

    static QByteArray encode(const QByteArrayList& paths);

signals:
    // Queued after the sender has been answered, so a slow read never holds up a launch.
    void documentsReceived(const QByteArrayList& paths);

private:
    void acceptConnections();
    void readMessage(QLocalSocket* socket);

    QString name;
    QLockFile startupLock;
    bool lockedOut = false;
    QLocalServer* server = nullptr;
    QString error;
};
