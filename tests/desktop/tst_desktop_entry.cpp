// The desktop entry offers Twinly for the files its file type table accepts, names only media
// types the system knows, and its icons are the sizes their folders say.
#include "FileTypes1.h"

#include <QFile>
#include <QImage>
#include <QMimeDatabase>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QStringList desktopEntryMimeTypes()
{
    QFile file(QStringLiteral(TWINLY_DESKTOP_FILE));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    bool inMainGroup = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(u'['))
            inMainGroup = line == QStringLiteral("[Desktop Entry]");
        else if (inMainGroup && line.startsWith(QStringLiteral("MimeType=")))
            return line.mid(9).split(u';', Qt::SkipEmptyParts);
    }
    return {};
}

// The listed types under their canonical names, so that an alias listed counts as its type.
QSet<QString> canonical(const QStringList& types)
{
    QMimeDatabase db;
    QSet<QString> names;
    for (const QString& type : types)
        names.insert(db.mimeTypeForName(type).name());
    return names;
}

} // namespace

class TestDesktopEntry : public QObject
{
    Q_OBJECT
private slots:
    void extensionCovered_data();
    void extensionCovered();
    void listedTypeKnown_data();
    void listedTypeKnown();
    void iconSize_data();
    void iconSize();
    void aboutPictureIsTheIcon();
};

void TestDesktopEntry::extensionCovered_data()
{
    QTest::addColumn<QString>("fileName");
    QVERIFY(!pAllFileTypes().empty());
    for (const toolkit::FileType& type : pAllFileTypes()) {
        // A folder document (.rtfd) has no media type here; declaring inode/directory would
        // offer Twinly for every folder.
        if (type.MacType == QStringLiteral("fold"))
            continue;
        for (const QString& extension : type.extensionList()) {
            const QString lower = QStringLiteral("sample") + extension;
            QTest::newRow(qPrintable(lower)) << lower;
            QTest::newRow(qPrintable(lower.toUpper())) << lower.toUpper();
        }
    }
}

void TestDesktopEntry::extensionCovered()
{
    QFETCH(QString, fileName);
    const QSet<QString> listed = canonical(desktopEntryMimeTypes());
    QVERIFY(!listed.isEmpty());

    QMimeDatabase db;
    QStringList types;
    for (const QMimeType& type : db.mimeTypesForFileName(fileName))
        types << type.name();
    if (types.isEmpty()) {
        // No glob for this name: the desktop goes by the content, which is text.
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QFile file(dir.filePath(fileName));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("first line\nsecond line\n");
        file.close();
        types << db.mimeTypeForFile(file.fileName()).name();
    }
    // Where globs of equal weight compete (".m"), the content decides: list every candidate.
    for (const QString& type : types)
        QVERIFY2(listed.contains(type), qPrintable(type + QStringLiteral(" is not listed")));
}

void TestDesktopEntry::listedTypeKnown_data()
{
    QTest::addColumn<QString>("type");
    const QStringList types = desktopEntryMimeTypes();
    QVERIFY(!types.isEmpty());
    for (const QString& type : types)
        QTest::newRow(qPrintable(type)) << type;
}

void TestDesktopEntry::listedTypeKnown()
{
    QFETCH(QString, type);
    QVERIFY(QMimeDatabase().mimeTypeForName(type).isValid());
}

void TestDesktopEntry::iconSize_data()
{
    QTest::addColumn<int>("size");
    for (int size : {16, 24, 32, 48, 64, 128, 256})
        QTest::newRow(qPrintable(QString::number(size))) << size;
}

void TestDesktopEntry::iconSize()
{
    QFETCH(int, size);
    const QImage icon(
        QStringLiteral(TWINLY_RESOURCES_DIR "/icons/hicolor/%1x%1/apps/twinly.png").arg(size));
    QVERIFY(!icon.isNull());
    QCOMPARE(icon.size(), QSize(size, size));
    QVERIFY(icon.hasAlphaChannel());
}

void TestDesktopEntry::aboutPictureIsTheIcon()
{
    const QImage about(QStringLiteral(TWINLY_RESOURCES_DIR "/Twinly_Icon9_128.png"));
    const QImage icon(
        QStringLiteral(TWINLY_RESOURCES_DIR "/icons/hicolor/128x128/apps/twinly.png"));
    QVERIFY(!about.isNull());
    QCOMPARE(about, icon);
}

QTEST_GUILESS_MAIN(TestDesktopEntry)
#include "tst_desktop_entry.moc"
