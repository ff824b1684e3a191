#include "ToolRun.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

class TestDecodeTool : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void eachRow_data();
    void eachRow();
    void rejects_data();
    void rejects();

private:
    QTemporaryDir dir;
};

void TestDecodeTool::initTestCase()
{
    QVERIFY(dir.isValid() && QDir::setCurrent(dir.path()));
    QVERIFY(QFileInfo(QStringLiteral(TWINLY_DECODE_PATH)).isExecutable());
    QVERIFY(makeTroublePaths());
}

void TestDecodeTool::eachRow_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("perlName");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const char* row, const char* perlName,
                         const QString& text) { QTest::newRow(name) << row << perlName << text; };
    const QString japanese = "日本語のテキスト、ｶﾀｶﾅ\r\nline 2\n";
    row("UTF-8", "0", "UTF-8", japanese + "😀\uFEFF");
    row("ShiftJIS", "1", "cp932", japanese + "①");
    row("Japanese MacOS", "2", "MacJapanese", japanese + "①");
    row("Japanese EUC", "3", "euc-jp", japanese);
    row("ShiftJIS-X0212", "4", "jis0212-raw", "丂丄丅˘");
    row("empty file", "1", "cp932", "");
}

// A file saved by Perl in the row's encoding prints as the text saved.
void TestDecodeTool::eachRow()
{
    QFETCH(QString, row);
    QFETCH(QString, perlName);
    QFETCH(QString, text);
    const Run encoded = run("perl",
        {"-MEncode", "-e", "my $e = shift; local $/; print encode($e, decode('UTF-8', <STDIN>), 1)",
            perlName},
        text.toUtf8());
    QVERIFY2(encoded.exitCode == 0, encoded.err.constData());
    const Run decoded = run(TWINLY_DECODE_PATH, {row, write("file", encoded.out)});
    QCOMPARE(decoded.err, QByteArray());
    QCOMPARE(decoded.exitCode, 0);
    QCOMPARE(QString::fromUtf8(decoded.out), text);
}

void TestDecodeTool::rejects_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("problem");
    QTest::newRow("no arguments") << QStringList{} << "expected a row and a file";
    QTest::newRow("row only") << QStringList{"0"} << "expected a row and a file";
    QTest::newRow("row 5") << QStringList{"5", "plain.txt"} << "'5' is not one of 0 to 4";
    QTest::newRow("row 1.0") << QStringList{"1.0", "plain.txt"} << "'1.0' is not";
    QTest::newRow("row with a newline") << QStringList{"-1\n", "plain.txt"} << "'-1?' is not";
    QTest::newRow("missing file") << QStringList{"0", "missing.txt"} << "No such file";
    QTest::newRow("folder") << QStringList{"1", "sub"} << "a folder";
    QTest::newRow("FIFO") << QStringList{"2", "fifo"} << "FIFO";
    QTest::newRow("device") << QStringList{"3", "/dev/zero"} << "device";
    QTest::newRow("unreadable") << QStringList{"4", "locked.txt"} << "Permission denied";
}

void TestDecodeTool::rejects()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, problem);
    if (arguments.contains("locked.txt") && ::geteuid() == 0)
        QSKIP("root reads every file");
    const Run failed = run(TWINLY_DECODE_PATH, arguments);
    QCOMPARE(failed.exitCode, 2);
    QCOMPARE(failed.out, QByteArray());
    const QString message = QString::fromUtf8(failed.err);
    QVERIFY2(message.count('\n') == 1 && message.endsWith('\n'), qPrintable(message));
    QVERIFY2(message.contains(problem), qPrintable(message));
}

QTEST_APPLESS_MAIN(TestDecodeTool)
#include "tst_decode_tool.moc"
