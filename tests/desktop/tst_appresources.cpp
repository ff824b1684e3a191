// A program that links the static appresources library must see its resources: the linker
// keeps a static library's object files only when something refers to them, and nothing in a
// program refers to the resource registration by name.
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QtTest>

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList words(const QString& text)
{
    return text.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
}

} // namespace

class TestAppResources : public QObject
{
    Q_OBJECT
private slots:
    void aboutPicture();
    void lgplText();
    void icuNoticeAsDebianShipsIt();
};

void TestAppResources::aboutPicture()
{
    const QImage picture(QStringLiteral(":/Twinly_Icon9_128.png"));
    QVERIFY(!picture.isNull());
    QCOMPARE(picture.size(), QSize(128, 128));
}

void TestAppResources::lgplText()
{
    const QByteArray text = readAll(QStringLiteral(":/licences/LGPL-2.1.txt"));
    QVERIFY(text.contains("GNU LESSER GENERAL PUBLIC LICENSE"));
    QCOMPARE(text, readAll(QStringLiteral(TWINLY_COPYING_PATH)));
    // The text as published, where the system keeps a copy.
    const QByteArray published = readAll(QStringLiteral("/usr/share/common-licenses/LGPL-2.1"));
    if (!published.isEmpty())
        QCOMPARE(text, published);
}

void TestAppResources::icuNoticeAsDebianShipsIt()
{
    const QString ours = QString::fromUtf8(readAll(QStringLiteral(":/licences/ICU.txt")));
    QVERIFY(ours.startsWith(QStringLiteral("Copyright © 1991-2022 Unicode, Inc.\n")));

    const QString copyright
        = QString::fromUtf8(readAll(QStringLiteral("/usr/share/doc/libicu72/copyright")));
    if (copyright.isEmpty())
        QSKIP("libicu72's copyright file is not installed");
    // The stanza "Files: *" up to the next one; our copy is the same words, reflowed.
    const qsizetype start = copyright.indexOf(QStringLiteral("Files: *"));
    QVERIFY(start >= 0);
    qsizetype end = copyright.indexOf(QStringLiteral("\nFiles:"), start);
    if (end < 0)
        end = copyright.size();
    QStringList theirs = words(copyright.mid(start, end - start));
    theirs.removeAll(QStringLiteral("."));
    for (const char* field : {"Files:", "*", "Copyright:", "License:", "MIT"})
        theirs.removeOne(QString::fromLatin1(field));
    QCOMPARE(words(ours), theirs);
}

QTEST_GUILESS_MAIN(TestAppResources)
#include "tst_appresources.moc"
