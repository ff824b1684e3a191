#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <random>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

struct Run
{
    bool finished = false;
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// Runs the tool; a run that outlasts `timeoutMs` is killed and reported as not finished.
Run runTool(const QStringList& arguments, int timeoutMs = 60000)
{
    QProcess process;
    process.start(QStringLiteral(TWINLY_SEQDIFF_PATH), arguments);
    Run run;
    if (!process.waitForStarted())
        return run;
    run.finished = process.waitForFinished(timeoutMs);
    if (!run.finished) {
        process.kill();
        process.waitForFinished();
    }
    run.finished = run.finished && process.exitStatus() == QProcess::NormalExit;
    run.exitCode = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

QByteArray records(std::initializer_list<std::array<qint64, 4>> list)
{
    QByteArray text;
    for (const auto& r : list)
        text += QByteArray::number(r[0]) + ' ' + QByteArray::number(r[1]) + ' '
            + QByteArray::number(r[2]) + ' ' + QByteArray::number(r[3]) + '\n';
    return text;
}

} // namespace

class TestSeqDiffTool : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void options_data();
    void options();
    void rejects_data();
    void rejects();
    void rejectsUnreadableFile();

    void compares_data();
    void compares();
    void binaryFiles();
    void fileOfSizeZeroWithText();
    void manyRecords();
    void longSingleLine_data();
    void longSingleLine();
    void millionEmptyLines_data();
    void millionEmptyLines();

private:
    QString path(const QString& name) const { return dir.filePath(name); }
    QString write(const QString& name, const QByteArray& bytes) const;
    void checkCompare(const QString& left, const QString& right, const QByteArray& expected);

    QTemporaryDir dir;
};

QString TestSeqDiffTool::write(const QString& name, const QByteArray& bytes) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

// Runs a comparison that must succeed with exactly `expected` on stdout.
void TestSeqDiffTool::checkCompare(
    const QString& left, const QString& right, const QByteArray& expected)
{
    const Run run = runTool({left, right});
    QVERIFY(run.finished);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, expected);
}

void TestSeqDiffTool::initTestCase()
{
    QVERIFY(dir.isValid());
    QVERIFY(QFileInfo(QStringLiteral(TWINLY_SEQDIFF_PATH)).isExecutable());
    write("plain.txt", "a\n");
    QVERIFY(QDir(path("folder")).mkpath("."));
    QCOMPARE(::mkfifo(QFile::encodeName(path("fifo")).constData(), 0600), 0);

    const QByteArray socketPath = QFile::encodeName(path("socket"));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    QVERIFY(std::size_t(socketPath.size()) < sizeof address.sun_path);
    std::memcpy(address.sun_path, socketPath.constData(), std::size_t(socketPath.size()));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QVERIFY(fd >= 0);
    const int bound = ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::close(fd);
    QCOMPARE(bound, 0);
}

void TestSeqDiffTool::options_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("expectedOut");
    QTest::newRow("self-test") << "--self-test"
                               << "^SeqDiff: SelfTest passed\n$";
    QTest::newRow("help") << "--help"
                          << "^usage: twinly-seqdiff LEFT RIGHT";
}

void TestSeqDiffTool::options()
{
    QFETCH(QString, option);
    QFETCH(QString, expectedOut);
    const Run run = runTool({option});
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY2(QRegularExpression(expectedOut).match(QString::fromUtf8(run.out)).hasMatch(),
        run.out.constData());
}

void TestSeqDiffTool::rejects_data()
{
    // Names are files in the test folder; "plain.txt" is a good one.
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("named");
    QTest::addColumn<QString>("problem");
    QTest::newRow("no arguments") << QStringList() << ""
                                  << "expected two files";
    QTest::newRow("one file") << QStringList{"plain.txt"} << ""
                              << "expected two files";
    QTest::newRow("three files") << QStringList{"plain.txt", "plain.txt", "plain.txt"} << ""
                                 << "expected two files";
    QTest::newRow("unknown option") << QStringList{"--frobnicate"} << "--frobnicate"
                                    << "unknown option";
    QTest::newRow("missing left") << QStringList{"missing.txt", "plain.txt"} << "missing.txt"
                                  << "No such file";
    QTest::newRow("missing right") << QStringList{"plain.txt", "missing.txt"} << "missing.txt"
                                   << "No such file";
    QTest::newRow("folder") << QStringList{"folder", "plain.txt"} << "folder"
                            << "folder";
    QTest::newRow("FIFO") << QStringList{"plain.txt", "fifo"} << "fifo"
                          << "FIFO";
    QTest::newRow("socket") << QStringList{"socket", "plain.txt"} << "socket"
                            << "socket";
    QTest::newRow("device") << QStringList{"/dev/null", "plain.txt"} << "/dev/null"
                            << "device";
    // A regular file whose reading fails: at offset 0 nothing is mapped.
    QTest::newRow("read error") << QStringList{"plain.txt", "/proc/self/mem"} << "/proc/self/mem"
                                << "cannot read";
}

void TestSeqDiffTool::rejects()
{
    QFETCH(QStringList, files);
    QFETCH(QString, named);
    QFETCH(QString, problem);
    if (files.contains("/proc/self/mem") && !QFile::exists("/proc/self/mem"))
        QSKIP("no /proc");
    QStringList arguments;
    for (const QString& file : files)
        arguments << (file.startsWith('/') || file.startsWith('-') ? file : path(file));

    // A FIFO without a writer would block an open or a read for good: bound the wait.
    const Run run = runTool(arguments, 10000);
    QVERIFY2(run.finished, "did not finish");
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QByteArray());
    QVERIFY2(run.err.endsWith('\n') && run.err.count('\n') == 1, run.err.constData());
    const QString message = QString::fromLocal8Bit(run.err);
    QVERIFY2(message.contains(problem), qPrintable(message));
    QVERIFY2(message.contains(named), qPrintable(message));
}

void TestSeqDiffTool::rejectsUnreadableFile()
{
    if (::geteuid() == 0)
        QSKIP("root reads every file");
    const QString locked = write("locked.txt", "secret\n");
    QVERIFY(QFile::setPermissions(locked, QFileDevice::Permissions()));
    const Run run = runTool({path("plain.txt"), locked});
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QByteArray());
    QVERIFY2(run.err.contains("Permission denied") && run.err.contains("locked.txt"),
        run.err.constData());
}

void TestSeqDiffTool::compares_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<QByteArray>("expected");
    const auto row
        = [](const char* name, const QByteArray& left, const QByteArray& right,
              const QByteArray& expected) { QTest::newRow(name) << left << right << expected; };
    // Lines are numbered from 0; an end of -1 marks an empty side, its start says where.
    row("identical", "a\nb\n", "a\nb\n", "");
    row("both empty", "", "", "");
    row("line changed", "a\nb\nc\n", "a\nx\nc\n", records({{1, 1, 1, 1}}));
    row("line added", "a\nc\n", "a\nb\nc\n", records({{1, -1, 1, 1}}));
    row("line deleted", "a\nb\nc\n", "a\nc\n", records({{1, 1, 1, -1}}));
    row("stretches in order", "a\nb\nc\nd\ne", "x\nb\nc\nd\ny\nz",
        records({{0, 0, 0, 0}, {4, 4, 4, 5}}));
    row("trailing newline is a line", "a\nb", "a\nb\n", records({{2, -1, 2, 2}}));
    row("empty against a newline", "", "\n", records({{1, -1, 1, 1}}));

    row("CR LF against LF", "a\r\nb\r\n\r\nc\r\n", "a\nb\n\nc\n", "");
    row("CR against LF", "a\rb\r\rc", "a\nb\n\nc", "");
    row("U+2029 against LF", "a\xE2\x80\xA9z", "a\nz", "");
    row("U+2028 stays inside", "a\xE2\x80\xA8z", "a\nz", records({{0, 0, 0, 1}}));

    // Ill-formed bytes compare as the U+FFFD a pane shows for them.
    row("different bad bytes", "x\xFFy\n", "x\xFEy\n", "");
    row("bad byte against U+FFFD", "\xC0\n", "\xEF\xBF\xBD\n", "");
    row("one subpart against two", "a\xE2\x82\n", "a\xFF\xFF\n", records({{0, 0, 0, 0}}));
    row("cut sequence keeps its newline", "\xE2\x82\nb", "\xFF\nb", "");
    row("cut sequence before U+2029", "a\xE2\x80\xE2\x80\xA9z", "a\xFF\nz", "");
    row("byte-order mark is text",
        "\xEF\xBB\xBF"
        "a\nb",
        "a\nb", records({{0, 0, 0, 0}}));

    row("NUL compared", QByteArray("a\0b\nc", 5), QByteArray("a\0c\nc", 5),
        records({{0, 0, 0, 0}}));
    row("NUL alike", QByteArray("a\0b\n\0", 5), QByteArray("a\0b\n\0", 5), "");
    row("NUL ends nothing", QByteArray("a\0b", 3), "a", records({{0, 0, 0, 0}}));
}

void TestSeqDiffTool::compares()
{
    QFETCH(QByteArray, left);
    QFETCH(QByteArray, right);
    QFETCH(QByteArray, expected);
    checkCompare(write("left", left), write("right", right), expected);
}

void TestSeqDiffTool::binaryFiles()
{
    std::mt19937 rng(3);
    QByteArray bytes(1 << 20, '\0');
    for (char& c : bytes)
        c = char(rng());
    const QString left = write("binary-left", bytes);
    checkCompare(left, left, "");

    for (int i = 0; i < 5; ++i)
        bytes[qsizetype(rng() % std::uint32_t(bytes.size()))] ^= 0x55;
    const Run run = runTool({left, write("binary-right", bytes)});
    QVERIFY(run.finished);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY(!run.out.isEmpty());
    const QRegularExpression record("^(\\d+ -?\\d+ \\d+ -?\\d+\n)+$");
    QVERIFY2(record.match(QString::fromLatin1(run.out)).hasMatch(), run.out.left(200).constData());
}

void TestSeqDiffTool::fileOfSizeZeroWithText()
{
    // /proc files report size 0; this one holds the tool's own command line.
    if (!QFile::exists("/proc/self/cmdline"))
        QSKIP("no /proc");
    const QString copy = path("cmdline");
    const QByteArray expected = QFile::encodeName(TWINLY_SEQDIFF_PATH) + '\0' + "/proc/self/cmdline"
        + '\0' + QFile::encodeName(copy) + '\0';
    write("cmdline", expected);
    checkCompare("/proc/self/cmdline", copy, "");
    checkCompare("/proc/self/cmdline", write("other", "x"), records({{0, 0, 0, 0}}));
}

void TestSeqDiffTool::manyRecords()
{
    // Every other line differs and each line is unique, so the records are exactly the
    // odd lines, one record each; the output is far larger than a pipe's buffer.
    constexpr int kLines = 200000;
    QByteArray left, right, expected;
    for (int i = 0; i < kLines; ++i) {
        const QByteArray n = QByteArray::number(i);
        left += "line " + n + '\n';
        right += (i % 2 ? "other " : "line ") + n + '\n';
        if (i % 2)
            expected += n + ' ' + n + ' ' + n + ' ' + n + '\n';
    }
    checkCompare(write("many-left", left), write("many-right", right), expected);
}

void TestSeqDiffTool::longSingleLine_data()
{
    QTest::addColumn<int>("changeAt");
    QTest::addColumn<char>("lastByte");
    QTest::addColumn<QByteArray>("expected");
    // The line ends in an ill-formed byte, so the whole line is repaired, not passed through.
    QTest::newRow("one byte changed") << 25000000 << '\xFF' << records({{0, 0, 0, 0}});
    QTest::newRow("same after decoding") << -1 << '\xFE' << QByteArray();
}

void TestSeqDiffTool::longSingleLine()
{
    QFETCH(int, changeAt);
    QFETCH(char, lastByte);
    QFETCH(QByteArray, expected);
    constexpr qsizetype kSize = 50'000'000;
    QByteArray line(kSize, '\0');
    for (qsizetype i = 0; i < kSize; ++i)
        line[i] = char('a' + i % 26);
    line.back() = '\xFF';
    const QString left = write("long-left", line);
    if (changeAt >= 0)
        line[changeAt] = '#';
    line.back() = lastByte;
    checkCompare(left, write("long-right", line), expected);
}

void TestSeqDiffTool::millionEmptyLines_data()
{
    QTest::addColumn<int>("leftNewlines");
    QTest::addColumn<int>("rightNewlines");
    QTest::addColumn<QByteArray>("expected");
    // n newlines make n + 1 lines, all alike: the common head takes all it can, so the extra
    // line is the last one.
    QTest::newRow("one more on the right")
        << 1000000 << 1000001 << records({{1000001, -1, 1000001, 1000001}});
    QTest::newRow("one more on the left")
        << 1000001 << 1000000 << records({{1000001, 1000001, 1000001, -1}});
    QTest::newRow("as many") << 1000000 << 1000000 << QByteArray();
}

void TestSeqDiffTool::millionEmptyLines()
{
    QFETCH(int, leftNewlines);
    QFETCH(int, rightNewlines);
    QFETCH(QByteArray, expected);
    checkCompare(write("empty-left", QByteArray(leftNewlines, '\n')),
        write("empty-right", QByteArray(rightNewlines, '\n')), expected);
}

QTEST_APPLESS_MAIN(TestSeqDiffTool)
#include "tst_seqdiff_tool.moc"
