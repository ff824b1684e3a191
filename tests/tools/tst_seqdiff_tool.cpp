#include "ToolRun.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

Run runTool(const QStringList& arguments, int timeoutMs = 60000)
{
    return run(QStringLiteral(TWINLY_SEQDIFF_PATH), arguments, {}, timeoutMs);
}

} // namespace

class TestSeqDiffTool : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void rejects_data();
    void rejects();
    void succeeds_data();
    void succeeds();

private:
    QTemporaryDir dir;
};

void TestSeqDiffTool::initTestCase()
{
    // Tests and tool work in the test folder, so rows name its files as they are.
    QVERIFY(dir.isValid() && QDir::setCurrent(dir.path()));
    QVERIFY(QFileInfo(QStringLiteral(TWINLY_SEQDIFF_PATH)).isExecutable());
    QVERIFY(makeTroublePaths());
}

void TestSeqDiffTool::rejects_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("named");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char* name, const QStringList& files, const char* named,
                         const char* problem) { QTest::newRow(name) << files << named << problem; };
    row("no arguments", {}, "", "expected two files");
    row("one file", {"plain.txt"}, "", "expected two files");
    row("three files", {"plain.txt", "plain.txt", "plain.txt"}, "", "expected two files");
    row("unknown option", {"--frobnicate"}, "--frobnicate", "unknown option");
    row("missing left", {"missing.txt", "plain.txt"}, "missing.txt", "No such file");
    row("missing right", {"plain.txt", "missing.txt"}, "missing.txt", "No such file");
    row("folder", {"sub", "plain.txt"}, "sub", "a folder");
    row("FIFO", {"plain.txt", "fifo"}, "fifo", "FIFO");
    row("device", {"/dev/null", "plain.txt"}, "/dev/null", "device");
    // Regular files that cannot be read; at offset 0 of /proc/self/mem nothing is mapped.
    row("read error", {"plain.txt", "/proc/self/mem"}, "/proc/self/mem", "cannot read");
    row("unreadable", {"plain.txt", "locked.txt"}, "locked.txt", "Permission denied");
}

void TestSeqDiffTool::rejects()
{
    QFETCH(QStringList, files);
    QFETCH(QString, named);
    QFETCH(QString, problem);
    if (named == "locked.txt" && ::geteuid() == 0)
        QSKIP("root reads every file");
    // A FIFO without a writer would block an open or a read for good: bound the wait.
    const Run run = runTool(files, 10000);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QByteArray());
    const QString message = QString::fromLocal8Bit(run.err);
    QVERIFY2(message.count('\n') == 1 && message.endsWith('\n'), qPrintable(message));
    QVERIFY2(message.contains(problem) && message.contains(named), qPrintable(message));
}

void TestSeqDiffTool::succeeds_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("expected"); // null: any records, only their form is checked
    int files = 0;
    const auto row = [&](const char* name, const QByteArray& left, const QByteArray& right,
                         const QByteArray& expected) {
        const QString n = QString::number(++files);
        QTest::newRow(name) << QStringList{write(n + 'l', left), write(n + 'r', right)} << expected;
    };
    QTest::newRow("self-test") << QStringList{"--self-test"}
                               << QByteArray("SeqDiff: SelfTest passed\n");
    // Lines are numbered from 0; an end of -1 marks an empty side, its start says where.
    row("identical", "a\nb\n", "a\nb\n", "");
    row("stretches in order", "a\nb\nc\nd\ne", "x\nb\nc\nd\ny\nz", "0 0 0 0\n4 4 4 5\n");
    row("trailing newline is a line", "a\nb", "a\nb\n", "2 -1 2 2\n");
    row("CR LF and CR against LF", "a\r\nb\r\r\nc", "a\nb\n\nc", "");
    row("U+2028 and U+2029 stay inside", "a\xE2\x80\xA8z\xE2\x80\xA9y", "a\nz\ny", "0 0 0 2\n");
    // Ill-formed bytes compare as the U+FFFD a pane shows for them.
    row("different bad bytes", "x\xFFy\n", "x\xFEy\n", "");
    row("NUL compared", QByteArray("a\0b\nc", 5), QByteArray("a\0c\nc", 5), "0 0 0 0\n");
    // Files of /proc report size 0 and still have text; this one holds the tool's name.
    const QByteArray name = QFile::encodeName(QFileInfo(TWINLY_SEQDIFF_PATH).fileName()).left(15);
    QTest::newRow("file of size 0 with text")
        << QStringList{"/proc/self/comm", write("comm", name + '\n')} << QByteArray("");
    // The line ends in a bad byte, so all of it goes through the repair.
    const QByteArray line = QByteArray(50'000'000 - 1, 'a') + '\xFF';
    row("50 MB line", line, QByteArray(line).replace(25'000'000, 1, "#"), "0 0 0 0\n");
    // All lines alike: the common head takes all it can, so the extra line is the last one.
    row("a million empty lines and one more", QByteArray(1'000'000, '\n'),
        QByteArray(1'000'001, '\n'), "1000001 -1 1000001 1000001\n");
    // Each line unique and every other one changed: one record per odd line, and far more
    // output than a pipe holds.
    QByteArray left, right, expected;
    for (int i = 0; i < 200'000; ++i) {
        const QByteArray n = QByteArray::number(i);
        left += "line " + n + '\n';
        right += (i % 2 ? "other " : "line ") + n + '\n';
        expected += i % 2 ? n + ' ' + n + ' ' + n + ' ' + n + '\n' : QByteArray();
    }
    row("many records", left, right, expected);
    QByteArray binary(1 << 20, Qt::Uninitialized);
    QRandomGenerator(3).fillRange(reinterpret_cast<quint32*>(binary.data()), binary.size() / 4);
    row("binary", binary, QByteArray(binary).replace(500'000, 8, "changed\n"), QByteArray());
}

void TestSeqDiffTool::succeeds()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, expected);
    const Run run = runTool(arguments);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.exitCode, 0);
    static const QRegularExpression records("^(\\d+ -?\\d+ \\d+ -?\\d+\n)+$");
    if (expected.isNull())
        QVERIFY2(records.match(QString::fromLatin1(run.out)).hasMatch(), run.out.left(80).data());
    else
        QCOMPARE(run.out, expected);
}

QTEST_APPLESS_MAIN(TestSeqDiffTool)
#include "tst_seqdiff_tool.moc"
