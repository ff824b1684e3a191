#include "DocumentChannel.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QtEndian>

#include <memory>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using Handover = DocumentChannel::Handover;
Q_DECLARE_METATYPE(Handover)

namespace {

// forward() blocks, so it runs on a thread of its own while this one serves the server.
Handover forwardBeside(const QString& name, const QByteArrayList& paths)
{
    Handover result = Handover::Unanswered;
    std::unique_ptr<QThread> thread(
        QThread::create([&] { result = DocumentChannel(name).forward(paths); }));
    thread->start();
    while (!thread->wait(QDeadlineTimer(5)))
        QCoreApplication::processEvents();
    return result;
}

// Writes the bytes in that many pieces, each seen by the server alone; the answer once the
// server has hung up.
QByteArray sendRaw(const QString& name, const QByteArray& bytes, int pieces)
{
    QLocalSocket client;
    client.connectToServer(name);
    client.waitForConnected(1000);
    for (qsizetype at = 0, step = bytes.size() / pieces + 1; at < bytes.size(); at += step) {
        client.write(bytes.mid(at, step));
        client.waitForBytesWritten(1000);
        QCoreApplication::processEvents();
    }
    const bool closed
        = QTest::qWaitFor([&] { return client.state() == QLocalSocket::UnconnectedState; },
            DocumentChannel::kReadMs + 2000);
    return closed ? client.readAll() : "still open";
}

QByteArray frame(quint32 length, const QByteArray& payload)
{
    const quint32 big = qToBigEndian(length);
    return "Twly" + QByteArray(reinterpret_cast<const char*>(&big), 4) + payload;
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
    void aLaunchStartingMeanwhileDoesNotListen();
    void theSocketFolderIsOursAlone_data();
    void theSocketFolderIsOursAlone();

private:
    QTemporaryDir dir;
    QString name;
};

void TstDocumentChannel::delivers_data()
{
    QTest::addColumn<QByteArrayList>("paths");
    QTest::addColumn<int>("pieces"); // 0: by forward()
    QTest::addColumn<int>("arriving"); // at least
    const QByteArrayList three{"/tmp/a b.txt", "/home/zoë/日本語.txt", "/x\xff\xfe"};
    QTest::newRow("none") << QByteArrayList() << 0 << 0;
    QTest::newRow("three, not ASCII, not UTF-8") << three << 0 << 3;
    QTest::newRow("three, byte by byte") << three << 100 << 3;
    // More than a message holds: the first ones arrive, as only they are used.
    QTest::newRow("too many") << QByteArrayList(600, "/" + QByteArray(3000, 'x')) << 0 << 2;
}

void TstDocumentChannel::delivers()
{
    QFETCH(QByteArrayList, paths);
    QFETCH(int, pieces);
    QFETCH(int, arriving);
    DocumentChannel server(name);
    QVERIFY(server.listen());
    QSignalSpy received(&server, &DocumentChannel::documentsReceived);
    if (pieces == 0)
        QCOMPARE(forwardBeside(name, paths), Handover::Delivered);
    else
        QCOMPARE(sendRaw(name, DocumentChannel::encode(paths), pieces), QByteArray("\x06"));
    QTRY_COMPARE_WITH_TIMEOUT(received.size(), 1, 3000);
    const auto got = received.first().first().value<QByteArrayList>();
    QVERIFY(got.size() >= arriving);
    QCOMPARE(got, paths.first(got.size()));
}

void TstDocumentChannel::dropsGarbage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray ok = DocumentChannel::encode({"/tmp/a"});
    QTest::newRow("wrong tag") << "TWLY" + ok.mid(4);
    QTest::newRow("oversized") << frame(DocumentChannel::kMaxPayload + 1, "/");
    QTest::newRow("longer than said") << ok + "/tmp/b";
    QTest::newRow("stalls") << ok.chopped(2);
    QTest::newRow("relative path") << frame(6, QByteArray("a.txt\0", 6));
    QTest::newRow("unterminated") << frame(6, "/tmp/a");
}

void TstDocumentChannel::dropsGarbage()
{
    QFETCH(QByteArray, bytes);
    DocumentChannel server(name);
    QVERIFY(server.listen());
    QSignalSpy received(&server, &DocumentChannel::documentsReceived);
    QCOMPARE(sendRaw(name, bytes, 1), QByteArray());
    // Still serving.
    QCOMPARE(forwardBeside(name, {"/tmp/c"}), Handover::Delivered);
    QTRY_COMPARE_WITH_TIMEOUT(received.size(), 1, 3000);
    QCOMPARE(received.first().first().value<QByteArrayList>(), QByteArrayList{"/tmp/c"});
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
    }
    DocumentChannel launch(name);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(launch.forward({"/tmp/a"}), Handover::NoInstance);
    QCOMPARE_LT(clock.elapsed(), 500);
    QVERIFY(launch.listen());
    QCOMPARE(forwardBeside(name, {}), Handover::Delivered);
    launch.close();
    QVERIFY(!QFileInfo::exists(name));
}

void TstDocumentChannel::aLaunchStartingMeanwhileDoesNotListen()
{
    DocumentChannel first(name), second(name);
    QCOMPARE(first.forward({}), Handover::NoInstance);
    // The first has found nobody either and is about to listen.
    QCOMPARE(second.forward({}), Handover::NoInstance);
    QVERIFY(!second.listen());
    QVERIFY(first.listen());
    QCOMPARE(forwardBeside(name, {}), Handover::Delivered);
}

void TstDocumentChannel::theSocketFolderIsOursAlone_data()
{
    QTest::addColumn<QString>("runtime"); // empty: not set
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("plantedMode"); // of a fallback folder made beforehand; 0: none
    QTest::addColumn<QString>("expected"); // the socket's folder; empty: no socket
    QTest::newRow("private runtime folder") << "rt" << 0700 << 0 << "rt";
    QTest::newRow("world-writable runtime folder") << "rt" << 0777 << 0 << "fallback";
    QTest::newRow("group-readable runtime folder") << "rt" << 0750 << 0 << "fallback";
    QTest::newRow("link to a private folder") << "link" << 0700 << 0 << "fallback";
    QTest::newRow("not set") << "" << 0700 << 0 << "fallback";
    QTest::newRow("not set, fallback there") << "" << 0700 << 0700 << "fallback";
    QTest::newRow("not set, fallback opened up") << "" << 0700 << 0777 << "";
}

void TstDocumentChannel::theSocketFolderIsOursAlone()
{
    QFETCH(QString, runtime);
    QFETCH(int, mode);
    QFETCH(int, plantedMode);
    QFETCH(QString, expected);
    QTemporaryDir base;
    const QByteArray root = QFile::encodeName(base.path());
    const QByteArray rt = root + "/rt", link = root + "/link", tmp = root + "/tmp";
    const QByteArray fallback = tmp + "/twinly-" + QByteArray::number(::geteuid());
    QVERIFY(::mkdir(rt.data(), 0700) == 0 && ::chmod(rt.data(), mode_t(mode)) == 0);
    QVERIFY(::symlink(rt.data(), link.data()) == 0 && ::mkdir(tmp.data(), 0700) == 0);
    if (plantedMode)
        QVERIFY(::mkdir(fallback.data(), 0700) == 0
            && ::chmod(fallback.data(), mode_t(plantedMode)) == 0);
    const QByteArray savedRuntime = qgetenv("XDG_RUNTIME_DIR"), savedTemp = qgetenv("TMPDIR");
    qputenv("TMPDIR", tmp);
    if (runtime.isEmpty())
        qunsetenv("XDG_RUNTIME_DIR");
    else
        qputenv("XDG_RUNTIME_DIR", root + '/' + runtime.toUtf8());
    const QString socket = DocumentChannel::sessionServerName();
    qputenv("XDG_RUNTIME_DIR", savedRuntime);
    qputenv("TMPDIR", savedTemp);
    const QByteArray folder = expected == "rt" ? rt : expected.isEmpty() ? "" : fallback;
    QCOMPARE(socket.isEmpty() ? QByteArray() : QFile::encodeName(QFileInfo(socket).path()), folder);
    if (!folder.isEmpty())
        QVERIFY(DocumentChannel::isPrivateFolder(folder));
}

QTEST_GUILESS_MAIN(TstDocumentChannel)
#include "tst_documentchannel.moc"
