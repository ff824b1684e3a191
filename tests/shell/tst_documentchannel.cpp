#include "DocumentChannel.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QtEndian>

#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using Handover = DocumentChannel::Handover;
Q_DECLARE_METATYPE(Handover)

namespace {

// forward() blocks, so it runs on a thread of its own while this one serves the server.
Handover forwardBeside(const QString& name, const QStringList& paths)
{
    Handover result = Handover::Unanswered;
    std::unique_ptr<QThread> thread(
        QThread::create([&] { result = DocumentChannel(name).forward(paths); }));
    thread->start();
    while (!thread->wait(QDeadlineTimer(5)))
        QCoreApplication::processEvents();
    return result;
}

QByteArray frame(const char* tag, quint32 length, const QByteArray& payload)
{
    const quint32 big = qToBigEndian(length);
    return QByteArray(tag, 4) + QByteArray(reinterpret_cast<const char*>(&big), 4) + payload;
}

} // namespace

class TstDocumentChannel : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(dir.isValid());
        name = dir.filePath(QStringLiteral("s"));
    }
    void delivers_data();
    void delivers();
    void dropsGarbage_data();
    void dropsGarbage();
    void takesOverAnAbandonedSocket_data();
    void takesOverAnAbandonedSocket();
    void aLaunchStartingAtTheSameTimeDoesNotListen();
    void sessionNameFollowsTheDisplay();

private:
    QTemporaryDir dir;
    QString name;
};

void TstDocumentChannel::delivers_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<int>("pieces"); // 0: by forward(), else in that many writes
    const QStringList three{QStringLiteral("/tmp/a b.txt"), QStringLiteral("/home/zoë/日本語.txt"),
        QStringLiteral("/x")};
    QTest::newRow("none") << QStringList() << 0;
    QTest::newRow("one") << QStringList{QStringLiteral("/tmp/a.txt")} << 0;
    QTest::newRow("three, not ASCII") << three << 0;
    QTest::newRow("three, byte by byte") << three << int(DocumentChannel::encode(three).size());
    // More than a message holds: the first ones arrive, as only they are used.
    QTest::newRow("too many") << QStringList(600, QStringLiteral("/") + QString(3000, u'x')) << 0;
}

void TstDocumentChannel::delivers()
{
    QFETCH(QStringList, paths);
    QFETCH(int, pieces);
    DocumentChannel server(name);
    QVERIFY(server.listen());
    QSignalSpy received(&server, &DocumentChannel::documentsReceived);
    if (pieces == 0) {
        QCOMPARE(forwardBeside(name, paths), Handover::Delivered);
    } else {
        QLocalSocket client;
        client.connectToServer(name);
        QVERIFY(client.waitForConnected(1000));
        const QByteArray message = DocumentChannel::encode(paths);
        for (qsizetype at = 0, step = message.size() / pieces; at < message.size(); at += step) {
            client.write(message.mid(at, step));
            QVERIFY(client.waitForBytesWritten(1000));
            QTest::qWait(0); // lets the server see each piece alone
        }
        QTRY_VERIFY_WITH_TIMEOUT(client.bytesAvailable() > 0, 3000);
        QCOMPARE(client.readAll(), QByteArray("\x06"));
    }
    QTRY_VERIFY_WITH_TIMEOUT(!received.isEmpty(), 3000);
    const QStringList got = received.first().first().toStringList();
    if (paths.size() > 300) {
        QVERIFY(got.size() >= 2 && got.size() < paths.size());
        QCOMPARE(got, paths.first(got.size()));
    } else {
        QCOMPARE(got, paths);
    }
}

void TstDocumentChannel::dropsGarbage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray ok = DocumentChannel::encode({QStringLiteral("/tmp/a")});
    QTest::newRow("text") << QByteArray("open /tmp/a please\n");
    QTest::newRow("wrong tag") << "TWLY" + ok.mid(4);
    QTest::newRow("oversized") << frame("Twly", DocumentChannel::kMaxPayload + 1, "/");
    QTest::newRow("longer than said") << ok + "/tmp/b";
    QTest::newRow("stalls") << ok.chopped(2);
    QTest::newRow("relative path") << frame("Twly", 6, QByteArray("a.txt\0", 6));
    QTest::newRow("empty path") << frame("Twly", 1, QByteArray(1, '\0'));
    QTest::newRow("not UTF-8") << frame("Twly", 4, QByteArray("/\xff\xfe\0", 4));
    QTest::newRow("unterminated") << frame("Twly", 6, "/tmp/a");
}

void TstDocumentChannel::dropsGarbage()
{
    QFETCH(QByteArray, bytes);
    DocumentChannel server(name);
    QVERIFY(server.listen());
    QSignalSpy received(&server, &DocumentChannel::documentsReceived);
    QLocalSocket client;
    client.connectToServer(name);
    QVERIFY(client.waitForConnected(1000));
    client.write(bytes);
    QTRY_COMPARE_WITH_TIMEOUT(
        client.state(), QLocalSocket::UnconnectedState, DocumentChannel::kReadMs + 2000);
    QCOMPARE(client.readAll(), QByteArray());
    // Still serving.
    QCOMPARE(forwardBeside(name, {QStringLiteral("/tmp/c")}), Handover::Delivered);
    QTRY_VERIFY_WITH_TIMEOUT(!received.isEmpty(), 3000);
    QCOMPARE(received.size(), 1);
    QCOMPARE(received.first().first().toStringList(), QStringList{QStringLiteral("/tmp/c")});
}

void TstDocumentChannel::takesOverAnAbandonedSocket_data()
{
    QTest::addColumn<bool>("abandoned");
    QTest::newRow("no socket file") << false;
    QTest::newRow("socket file of a crashed run") << true;
}

void TstDocumentChannel::takesOverAnAbandonedSocket()
{
    QFETCH(bool, abandoned);
    if (abandoned) {
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, QFile::encodeName(name).constData(), sizeof address.sun_path);
        QCOMPARE(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ::close(fd);
        QVERIFY(QFileInfo::exists(name));
    }
    DocumentChannel launch(name);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(launch.forward({QStringLiteral("/tmp/a")}), Handover::NoInstance);
    QCOMPARE_LT(clock.elapsed(), 500);
    QVERIFY(launch.listen());
    QCOMPARE(forwardBeside(name, {}), Handover::Delivered);
    launch.close();
    QVERIFY(!QFileInfo::exists(name));
}

void TstDocumentChannel::aLaunchStartingAtTheSameTimeDoesNotListen()
{
    DocumentChannel first(name);
    QCOMPARE(first.forward({}), Handover::NoInstance);
    // The first has not listened yet when the second finds nobody.
    DocumentChannel second(name);
    QCOMPARE(second.forward({}), Handover::NoInstance);
    QVERIFY(!second.listen());
    QVERIFY(first.listen());
    QCOMPARE(forwardBeside(name, {}), Handover::Delivered);
}

void TstDocumentChannel::sessionNameFollowsTheDisplay()
{
    const auto restore = [](const char* variable) {
        return qScopeGuard(
            [variable, was = qgetenv(variable), set = qEnvironmentVariableIsSet(variable)] {
                set ? qputenv(variable, was) : qunsetenv(variable);
            });
    };
    const auto runtime = restore("XDG_RUNTIME_DIR");
    const auto display = restore("DISPLAY");
    const auto nameFor = [](const QString& runtimeDir, const char* x11) {
        qputenv("XDG_RUNTIME_DIR", runtimeDir.toUtf8());
        qputenv("DISPLAY", x11);
        return DocumentChannel::sessionServerName();
    };
    const QString own = nameFor(dir.path(), ":1");
    QVERIFY2(own.startsWith(dir.path() + QStringLiteral("/twinly-")), qPrintable(own));
    QCOMPARE(nameFor(dir.path(), ":1.0"), own);
    QVERIFY(nameFor(dir.path(), ":2") != own);
    // Not a folder at all.
    const QString fallback = nameFor(QCoreApplication::applicationFilePath(), ":1");
    QVERIFY2(!fallback.isEmpty() && !fallback.startsWith(QCoreApplication::applicationFilePath()),
        qPrintable(fallback));
}

QTEST_GUILESS_MAIN(TstDocumentChannel)
#include "tst_documentchannel.moc"
