#include "App.h"
#include "BevelButton.h"
#include "DiffWin.h"
#include "FolderItem.h"
#include "KeptBytes.h"
#include "Label.h"
#include "NoticeBar.h"
#include "PlainIntake.h"
#include "Rectangle.h"
#include "Style.h"
#include "TextArea.h"
#include "TextEncoding.h"
#include "Timer.h"
#include "globals.h"

#include <QAbstractButton>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMimeData>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QToolTip>
#include <QUrl>

#include <algorithm>
#include <cstdio>
#include <sys/stat.h>

namespace {
int argc = 1;
char arg0[] = "tst_documents";
char* argv[] = {arg0, nullptr};

// "日本語テキスト" and a line break, in the bytes of each popup row that can hold it.
const QByteArray kShiftJis = QByteArray::fromHex("93fa967b8cea8365834c83588367") + "\n";
const QByteArray kEucJp = QByteArray::fromHex("c6fccbdcb8eca5c6a5ada5b9a5c8") + "\n";
const QString kJapanese = QStringLiteral("日本語テキスト\n");

class Files
{
public:
    QString write(const QString& name, const QByteArray& bytes)
    {
        const QString path = dir.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
            qFatal("cannot write a test file");
        return path;
    }
    QString folder(const QString& name)
    {
        QDir().mkpath(dir.filePath(name));
        return dir.filePath(name);
    }
    QString path(const QString& name) const { return dir.filePath(name); }

private:
    QTemporaryDir dir;
};

DiffWin* window()
{
    auto* w = &toolkit::implicitInstance<DiffWin>();
    w->Show();
    return w;
}

void load(DiffWin* w, const QString& path, int index = 0)
{
    w->setTextBox(toolkit::FolderItem(path), index, w->txtBox[index], w->titleBox[index]);
}

QMimeData* filesData(const QStringList& paths)
{
    auto* data = new QMimeData;
    QList<QUrl> urls;
    for (const QString& p : paths)
        urls << QUrl::fromLocalFile(p);
    data->setUrls(urls);
    return data;
}

// A drag that enters `target`, and then either leaves or drops there.
void drag(QWidget* target, const QStringList& paths, bool dropIt)
{
    std::unique_ptr<QMimeData> data(filesData(paths));
    const QPoint at = target->rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    if (!dropIt) {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(target, &leave);
        return;
    }
    QDropEvent drop(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &drop);
    // The files are read once the drop has been answered.
    QCoreApplication::processEvents();
}

QWidget* dropTarget(DiffWin* w, int target)
{
    return target < 0 ? static_cast<QWidget*>(w->WinBack) : w->txtBox[target]->viewport();
}

void pressEsc(bool release)
{
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(qApp, &press);
    if (release) {
        QKeyEvent up(QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(qApp, &up);
    }
}

} // namespace

class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl& url) { urls << url; }
};

class TstDocuments : public QObject
{
    Q_OBJECT
private slots:
    void cleanup();
    void readingByKind_data();
    void readingByKind();
    void theTitleShowsTheFolders_data();
    void theTitleShowsTheFolders();
    void escStopsTheRead_data();
    void escStopsTheRead();
    void aFileChangingWhileReadEnds_data();
    void aFileChangingWhileReadEnds();
    void encodings();
    void keptBytesAreTheFilesBytes_data();
    void keptBytesAreTheFilesBytes();
    void styledTextHidesThePopupUntilAPlainFile();
    void clearAll();
    void dragFeedback_data();
    void dragFeedback();
    void dropsShareFilesOut_data();
    void dropsShareFilesOut();
    void draggedTextIsTheEditors();
    void openedDocumentsComeInBatches();
    void aFileChangedOnDiskIsOfferedForReload_data();
    void aFileChangedOnDiskIsOfferedForReload();
    void theFileMenuReadsAsADrop();
};

void TstDocuments::cleanup()
{
    toolkit::Application::deleteWindows();
    globals::fCount = 0;
}

void TstDocuments::readingByKind_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("textRead");
    QTest::addColumn<bool>("titled");
    QTest::addColumn<QString>("notice"); // the reason told, after the file's name

    QTest::newRow("text") << "a.txt"
                          << "file" << true << true << QString();
    QTest::newRow("double ending") << "a.pdf.txt"
                                   << "file" << true << true << QString();
    QTest::newRow("ends in a dot") << "a."
                                   << "file" << true << true << QString();
    QTest::newRow("no ending") << "README"
                               << "file" << true << true << QString();
    QTest::newRow("binary with NUL") << "b.bin"
                                     << "binary" << true << true << QString();
    QTest::newRow("empty") << "e.txt"
                           << "empty" << true << true << QString();
    QTest::newRow("pdf") << "a.pdf"
                         << "file" << false << false << globals::kNoticeRefusedKind();
    QTest::newRow("PDF in capitals") << "a.PDF"
                                     << "file" << false << false << globals::kNoticeRefusedKind();
    QTest::newRow("named zip") << "zip"
                               << "file" << false << false << globals::kNoticeRefusedKind();
    QTest::newRow("missing") << "gone.txt"
                             << "missing" << false << false << globals::kNoticeMissing();
    QTest::newRow("folder") << "f.txt"
                            << "folder" << false << false << globals::kNoticeFolder();
    QTest::newRow("link loop") << "loop.txt"
                               << "loop" << false << false << globals::kNoticeMissing();
    QTest::newRow("link to a file") << "link.txt"
                                    << "link" << true << true << QString();
    // Unreadable: the title changes, the text stays.
    QTest::newRow("FIFO") << "p.txt"
                          << "fifo" << false << true << globals::kNoticeSpecial();
    QTest::newRow("no permission") << "secret.txt"
                                   << "locked" << false << true << globals::kNoticePermission();
    QTest::newRow("too large") << "huge.txt"
                               << "sparse" << false << true << globals::kNoticeTooLarge();
    QTest::newRow("device") << "/dev/null"
                            << "system" << false << true << globals::kNoticeSpecial();
    // The name's bytes reach open() as they are and show escaped.
    QTest::newRow("name not UTF-8") << "a\xff.txt"
                                    << "bytes" << true << true << QString();
    QTest::newRow("name with a line break") << "two\nlines.txt"
                                            << "file" << true << true << QString();
    QTest::newRow("name with a direction override and NEL") << "a\u202Eb\u0085.txt"
                                                            << "file" << true << true << QString();
}

// Each kind of path: whether the pane takes its text and whether the title shows its name.
void TstDocuments::readingByKind()
{
    QFETCH(QString, name);
    QFETCH(QString, kind);
    QFETCH(bool, textRead);
    QFETCH(bool, titled);
    QFETCH(QString, notice);
    Files files;
    QByteArray bytes = "first\nsecond\n";
    QString path = kind == "system" ? name : files.path(name);
    QByteArray nativePath = path.toUtf8();
    if (kind == "bytes") {
        // A name that no QString can hold; a file with the lossy name is there to be missed.
        nativePath = QFile::encodeName(files.path("a")) + "\xff.txt";
        QFile wrong(files.write("a\uFFFD.txt", "wrong file"));
        QFile exact;
        QVERIFY(exact.open(std::fopen(nativePath.constData(), "w"), QIODevice::WriteOnly,
            QFileDevice::AutoCloseHandle));
        QVERIFY(exact.write(bytes) == bytes.size());
    }
    if (kind == "file" || kind == "locked")
        files.write(name, bytes);
    if (kind == "binary")
        files.write(name, bytes = QByteArray("a\0b\0\xff\n", 7));
    if (kind == "empty")
        files.write(name, bytes = {});
    if (kind == "folder")
        files.folder(name);
    if (kind == "loop")
        QFile::link(path, path);
    if (kind == "link")
        QFile::link(files.write("target.txt", bytes), path);
    if (kind == "sparse") {
        // Holes: no disk is spent, and the size is past what a pane can count.
        QFile huge(files.write(name, {}));
        QVERIFY(huge.resize(qint64(3) << 30));
    }
    if (kind == "fifo")
        QVERIFY(::mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
    if (kind == "locked") {
        QFile::setPermissions(path, {});
        if (QFile(path).open(QIODevice::ReadOnly))
            QSKIP("running with the right to read any file");
    }

    DiffWin* w = window();
    const QString before = w->txtBox[0]->Text();
    const QString other = w->txtBox[1]->Text();
    w->dirty = false;
    w->setTextBox(toolkit::FolderItem(nativePath), 0, w->txtBox[0], w->titleBox[0]);
    if (kind == "system") {
        QCOMPARE(w->txtBox[0]->Text() != before, textRead);
        QCOMPARE(w->txtBox[0]->Text().startsWith("Name:"), textRead);
    } else {
        QCOMPARE(w->txtBox[0]->Text(), textRead ? QString::fromUtf8(bytes) : before);
        QCOMPARE(w->textClone[0].bytes() == bytes.toStdString(), textRead);
    }
    const QString title = kind == "link" ? QStringLiteral("target.txt")
        : kind == "bytes"                ? QStringLiteral("a\\xff.txt")
                                         : QFileInfo(name)
                                .fileName()
                                .replace('\n', "\\n")
                                .replace(QChar(0x202E), "\\u{202e}")
                                .replace(QChar(0x85), "\\x85");
    QCOMPARE(w->titleBox[0]->Caption(), titled ? title : globals::kBoxLeft());
    QCOMPARE(w->dirty, titled);
    QCOMPARE(w->txtBox[1]->Text(), other);
    const QString told = w->noticeBar && w->noticeBar->isVisible() ? w->noticeBar->text() : "";
    // The buttons below the panes stay within reach while a notice shows.
    if (!told.isEmpty())
        QVERIFY(!w->noticeBar->geometry().intersects(toolkit::windowRect(w->BtnsBack)));
    const QString shownName = toolkit::FolderItem(nativePath).DisplayName();
    QCOMPARE(told, notice.isEmpty() ? notice : globals::kNoticeNotRead().arg(shownName, notice));
}

void TstDocuments::theTitleShowsTheFolders_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<QStringList>("rows"); // choosing the first opens `opened`
    QTest::addColumn<QString>("opened");
    QTest::newRow("nested") << QByteArray("/usr/share/doc/file.txt") << "/usr/share/doc/file.txt"
                            << QStringList{"doc", "share", "usr", "/"} << "file:///usr/share/doc";
    QTest::newRow("in the root") << QByteArray("/file.txt") << "/file.txt" << QStringList{"/"}
                                 << "file:///";
    QTest::newRow("ampersands, reserved in URLs")
        << QByteArray("/tmp/R&D 50% #1?/a&b.txt") << "/tmp/R&D 50% #1?/a&b.txt"
        << QStringList{"R&D 50% #1?", "tmp", "/"} << "file:///tmp/R%26D%2050%25%20%231%3F";
    QTest::newRow("not UTF-8") << QByteArray("/tmp/caf\xe9/x.txt") << "/tmp/caf\\xe9/x.txt"
                               << QStringList{"caf\\xe9", "tmp", "/"} << "file:///tmp/caf%E9";
    const QByteArray longName
        = "/tmp/minutes of the quarterly planning meeting, northern region.txt";
    QTest::newRow("long name") << longName << QString(longName) << QStringList{"tmp", "/"}
                               << "file:///tmp";
}

// Names show as written ("&&" is how Qt shows one "&"), a long one loses its middle, the path
// is the tip, and a row opens its folder in the file manager.
void TstDocuments::theTitleShowsTheFolders()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, tip);
    QFETCH(QStringList, rows);
    QFETCH(QString, opened);
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &catcher, "open");
    const auto unset = qScopeGuard([] { QDesktopServices::unsetUrlHandler("file"); });
    toolkit::BevelButton* title = window()->titleBox[1];
    window()->MakeTitlePopup(title, toolkit::FolderItem(path));
    const QString name = tip.mid(tip.lastIndexOf('/') + 1), shown = title->text();
    QCOMPARE(title->Caption(), name);
    if (title->fontMetrics().horizontalAdvance(name) < title->width() - 30)
        QCOMPARE(shown, QString(name).replace('&', "&&"));
    else
        QVERIFY(shown.contains(u'…') && shown.startsWith(name.left(4)) && shown.endsWith(".txt"));
    QCOMPARE(title->toolTip(), tip);
    QStringList shownRows;
    for (QAction* row : title->menu()->actions()) {
        QVERIFY(!row->isCheckable() && row->isEnabled());
        shownRows << row->text();
    }
    QCOMPARE(shownRows, rows.replaceInStrings("&", "&&"));
    title->menu()->actions().at(0)->trigger();
    QCOMPARE(catcher.urls.size(), 1);
    QCOMPARE(QString::fromLatin1(catcher.urls.at(0).toEncoded()), opened);
    QCOMPARE(title->MenuValue(), -1);
}

void TstDocuments::escStopsTheRead_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("escAfterChunks"); // 0: held down before the read
    QTest::addColumn<int>("expected"); // -1: some chunks, not all
    QTest::newRow("held down: one chunk still comes in") << 5000 << 0 << 1024;
    // Long enough to be under way when the key comes.
    // A gigabyte of holes: far longer to read than the key takes to come, with no disk used.
    QTest::newRow("pressed during the read") << (1 << 30) << 1 << -1;
    QTest::newRow("never pressed, 1024 bytes") << 1024 << -1 << 1024;
    QTest::newRow("never pressed, 1025 bytes") << 1025 << -1 << 1025;
}

void TstDocuments::escStopsTheRead()
{
    QFETCH(int, size);
    QFETCH(int, escAfterChunks);
    QFETCH(int, expected);
    Files files;
    const QString path = files.write("big.txt", QByteArray(std::min(size, 5000), 'x'));
    QFile(path).resize(size);
    DiffWin* w = window();
    QString caption;
    int chunks = 0;
    // Runs between chunks, as every event does during a read.
    QTimer spy;
    connect(&spy, &QTimer::timeout, [&] {
        caption = w->titleBox[0]->Caption();
        if (++chunks == escAfterChunks)
            pressEsc(true);
    });
    spy.start(0);
    if (escAfterChunks == 0)
        pressEsc(false);
    load(w, path);
    spy.stop();
    QKeyEvent up(QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(qApp, &up);
    const int got = int(w->textClone[0].bytes().size());
    if (expected < 0)
        QVERIFY(got > 0 && got < size && got % 1024 == 0);
    else
        QCOMPARE(got, expected);
    QCOMPARE(w->txtBox[0]->Text().size(), got);
    QVERIFY(caption.startsWith(QStringLiteral("読込み中（Escキーで中断可）")));
    QCOMPARE(w->titleBox[0]->Caption(), QStringLiteral("big.txt"));
}

void TstDocuments::aFileChangingWhileReadEnds_data()
{
    QTest::addColumn<int>("newSize");
    QTest::addColumn<int>("least"); // the read may pass a cut before it comes
    // Taken up to its size at opening, so a file being written to still ends; one that was cut
    // is shown as far as it goes, and the user is told.
    QTest::newRow("grows") << 50000 << 5000;
    QTest::newRow("shrinks") << 2000 << 2000;
}

void TstDocuments::aFileChangingWhileReadEnds()
{
    QFETCH(int, newSize);
    QFETCH(int, least);
    Files files;
    const QString path = files.write("changing.txt", QByteArray(5000, 'x'));
    DiffWin* w = window();
    QTimer between;
    connect(&between, &QTimer::timeout, [&] {
        between.stop();
        QFile f(path);
        if (newSize > 5000 && f.open(QIODevice::Append))
            f.write(QByteArray(newSize - 5000, 'y'));
        else
            f.resize(newSize);
    });
    between.start(0);
    load(w, path);
    const std::string got = w->textClone[0].bytes();
    QVERIFY(got.size() >= std::size_t(least) && got.size() <= 5000);
    QCOMPARE(got, std::string(got.size(), 'x'));
    const QString cut = got.size() < 5000
        ? QStringLiteral("changing.txt became shorter while it was read: only the part that was "
                         "there is shown.")
        : QString();
    QCOMPARE(w->noticeBar && !w->noticeBar->isHidden() ? w->noticeBar->text() : QString(), cut);
    // The next good read takes the notice away.
    load(w, files.write("good.txt", "good"));
    QVERIFY(!w->noticeBar || w->noticeBar->isHidden());
}

// A pane's row decides how its bytes are read, for this file and the next; the same text in
// Shift_JIS and in EUC-JP compares as the same.
void TstDocuments::encodings()
{
    Files files;
    DiffWin* w = window();
    QStringList rows;
    for (int i = 0; i < w->TEBMenu[0]->ListCount(); ++i)
        rows << w->TEBMenu[0]->List(i);
    QCOMPARE(rows,
        QStringList({"UTF-8", "ShiftJIS", "Japanese MacOS", "Japanese EUC", "ShiftJIS-X0212"}));

    // Under UTF-8 the bytes show U+FFFD; the bar offers the row that reads them all.
    load(w, files.write("sjis.txt", kShiftJis), 0);
    QVERIFY(w->txtBox[0]->Text().contains(QChar::ReplacementCharacter));
    QCOMPARE(w->noticeBar->text(), globals::kNoticeHint().arg("sjis.txt", "UTF-8", "ShiftJIS"));
    // Another row picked in the pop-up: the offer is made anew for it, in place of the last.
    w->TEBMenu[0]->setMenuValue(3);
    emit w->TEBMenu[0]->Action();
    QCOMPARE(
        w->noticeBar->text(), globals::kNoticeHint().arg("sjis.txt", "Japanese EUC", "ShiftJIS"));
    auto* offer = w->noticeBar->findChild<QAbstractButton*>("encoding0");
    QVERIFY(offer);
    QCOMPARE(offer->text(), globals::kNoticeUseEncoding().arg("ShiftJIS"));
    offer->click();
    QCOMPARE(w->txtBox[0]->Text(), kJapanese);
    QCOMPARE(w->TEBMenu[0]->Caption(), QStringLiteral("ShiftJIS"));
    QCOMPARE(w->encodingMode[0], 1);
    QVERIFY(!w->noticeBar->isVisible());
    load(w, files.write("sjis-again.txt", kShiftJis), 0);
    QVERIFY(!w->noticeBar->isVisible()); // read cleanly: nothing to offer
    // Another row replaces the edits as one step of the pane's undo, which a comparison follows.
    QTest::keyClicks(w->txtBox[0]->focusProxy(), "typed ");
    w->TEBMenu[0]->setMenuValue(0);
    emit w->TEBMenu[0]->Action();
    w->dirty = false;
    QTest::keyClick(w->txtBox[0]->focusProxy(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(w->txtBox[0]->Text(), "typed " + kJapanese);
    QVERIFY(w->dirty);
    QCOMPARE(w->TEBMenu[0]->Caption(), QStringLiteral("ShiftJIS")); // the row it was read under
    w->TEBMenu[0]->setMenuValue(1);
    emit w->TEBMenu[0]->Action();

    w->TEBMenu[1]->setMenuValue(3);
    emit w->TEBMenu[1]->Action();
    load(w, files.write("euc.txt", kEucJp), 1);
    QCOMPARE(w->txtBox[1]->Text(), kJapanese);
    QVERIFY(w->SameFilm->isVisibleTo(w));
    emit w->Timer2->Action();
    emit w->Timer1->Action();
    QTRY_VERIFY_WITH_TIMEOUT(w->resultIsCurrent(), 5000);
    QVERIFY(w->diffs.empty());
    QVERIFY(w->SameFilm->isVisibleTo(w));

    // The choice stays for the next file of that pane.
    load(w, files.write("sjis2.txt", kShiftJis), 0);
    QCOMPARE(w->txtBox[0]->Text(), kJapanese);
    // Well-formed UTF-8 read under another row, then read as UTF-8, keeps no second copy.
    load(w, files.write("utf8-first.txt", kJapanese.toUtf8()), 0);
    QVERIFY(!w->textClone[0].utf8Text());
    w->TEBMenu[0]->setMenuValue(0);
    emit w->TEBMenu[0]->Action();
    QCOMPARE(w->txtBox[0]->Text(), kJapanese);
    QVERIFY(w->textClone[0].utf8Text());
    QCOMPARE(w->textClone[0].bytes(), kJapanese.toUtf8().toStdString());

    // A file read as UTF-8 is read again from its own bytes, whatever was typed since.
    load(w, files.write("utf8.txt", kJapanese.toUtf8()), 0);
    w->txtBox[0]->setText(QStringLiteral("edited"));
    for (const int row : {1, 0}) {
        w->TEBMenu[0]->setMenuValue(row);
        emit w->TEBMenu[0]->Action();
    }
    QCOMPARE(w->txtBox[0]->Text(), kJapanese);
}

void TstDocuments::keptBytesAreTheFilesBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("decoded"); // the bytes themselves are kept otherwise
    const QByteArray pair = "\xF0\x9F\x98\x80"; // U+1F600
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "a\r\nb")
                                     << true;
    QTest::newRow("breaks and NUL") << QByteArray("a\rb\r\n\r\nc\n\0d", 11) << true;
    QTest::newRow("Latin-1 range") << QByteArray("caf\xC3\xA9\r\n\xC2\xA0") << true;
    QTest::newRow("widened part way") << QByteArray(3000, 'a') + "\xC3\xA9\n\xE6\x97\xA5" << true;
    QTest::newRow("U+FFFD in the file") << QByteArray("x\xEF\xBF\xBDy\n") << true;
    QTest::newRow("pairs across pieces") << QByteArray(1021, 'a') + pair + pair + "\n" << true;
    QTest::newRow("pair after 64K units")
        << QByteArray(65535, 'a') + pair + QByteArray(9, 'b') << true;
    QTest::newRow("invalid byte") << QByteArray("ab\xFF"
                                                "cd")
                                  << false;
    QTest::newRow("surrogate") << QByteArray("a\xED\xA0\x80") << false;
    QTest::newRow("overlong") << QByteArray("\xC0\xAF") << false;
    QTest::newRow("cut at the end") << QByteArray("abc\xE3\x81") << false;
    QTest::newRow("invalid far in") << QByteArray(70000, 'a') + pair + "\x80z" << false;
}

void TstDocuments::keptBytesAreTheFilesBytes()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, decoded);
    const std::string_view all(bytes.constData(), std::size_t(bytes.size()));
    const std::u16string expected = documents::decode(documents::TextEncoding::UTF8, all);
    for (const std::size_t piece : {std::size_t(1), std::size_t(3), std::size_t(1024)}) {
        PlainIntake intake(true, all.size());
        for (std::size_t at = 0; at < all.size(); at += piece)
            intake.take(all.substr(at, piece));
        intake.finish();
        QCOMPARE(intake.decoded(), decoded);
        QCOMPARE(intake.taken(), all.size());
        const toolkit::LineStore lines = intake.lines();
        const KeptBytes kept = decoded ? KeptBytes(lines) : KeptBytes(intake.bytes());
        if (decoded)
            QVERIFY(lines.text() == QStringView(expected.data(), qsizetype(expected.size())));
        QCOMPARE(kept.bytes(), std::string(all));
    }
    // Bytes under another encoding are kept as they come.
    PlainIntake other(false, 0);
    other.take(all);
    other.finish();
    QVERIFY(!other.decoded() && other.bytes() == all);
}

void TstDocuments::styledTextHidesThePopupUntilAPlainFile()
{
    Files files;
    DiffWin* w = window();
    w->TEBMenu[1]->setMenuValue(1);
    emit w->TEBMenu[1]->Action();
    // Red and large: none of it may reach the plain file that follows.
    load(w,
        files.write("doc.rtf",
            "{\\rtf1\\ansi{\\colortbl;\\red255\\green0\\blue0;}\\cf1\\fs48 {\\b Bold} text\\par}"),
        1);
    QCOMPARE(w->txtBox[1]->Text(), QStringLiteral("Bold text\n"));
    QCOMPARE(w->TELabel[1]->text(), QStringLiteral("RichText(RTF)"));
    QVERIFY(w->TEBMenu[1]->isHidden());

    const QString folder = files.folder("pack.rtfd");
    files.write("pack.rtfd/TXT.rtf", "{\\rtf1\\ansi In a package}");
    load(w, folder, 0);
    QCOMPARE(w->txtBox[0]->Text(), QStringLiteral("In a package"));
    QCOMPARE(w->TELabel[0]->text(), QStringLiteral("RichText(RTFD)"));
    // A package whose text leads outside it is refused, and said so even for a drop.
    const QString escaping = files.folder("escaping.rtfd");
    QVERIFY(QFile::link(files.path("doc.rtf"), escaping + "/TXT.rtf"));
    load(w, escaping, 0);
    QCOMPARE(w->txtBox[0]->Text(), QString());
    QCOMPARE(w->noticeBar->text(),
        QStringLiteral("escaping.rtfd was not read: its text lies outside the package."));

    // A plain file brings the popup back at UTF-8, whatever it said before.
    load(w, files.write("plain.txt", "café\n"), 1);
    QVERIFY(!w->TEBMenu[1]->isHidden());
    QCOMPARE(w->TELabel[1]->text(), QStringLiteral("Text encoding:"));
    QCOMPARE(w->encodingMode[1], 0);
    QCOMPARE(w->txtBox[1]->Text(), QStringLiteral("café\n"));
    QCOMPARE(w->txtBox[1]->LineHeight(), QFontMetrics(toolkit::systemFont()).lineSpacing());
    const QImage shown = w->txtBox[1]->grab().toImage();
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            const QColor c = shown.pixelColor(x, y);
            QVERIFY2(
                c.red() < 2 * c.green() + 60, qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }

    // Every break a styled text shows ends a compared line, a line break as well as a paragraph.
    load(w, files.write("lines.rtf", "{\\rtf1\\ansi one\\line two\\par three}"), 0);
    QCOMPARE(w->txtBox[0]->Lines(), (QStringList{"one", "two", "three"}));
    QCOMPARE(w->txtBox[0]->CharacterPosition(2), 9);
}

void TstDocuments::clearAll()
{
    Files files;
    DiffWin* w = window();
    load(w, files.write("a.txt", kShiftJis), 0);
    load(w, files.write("b.rtf", "{\\rtf1 styled}"), 1);
    w->TEBMenu[0]->setMenuValue(1);
    emit w->TEBMenu[0]->Action();
    emit w->ClearButton->Action();
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(w->txtBox[i]->Text(), QString());
        QCOMPARE(w->titleBox[i]->ListCount(), 0);
        QVERIFY(!w->TEBMenu[i]->isHidden());
        QCOMPARE(w->TEBMenu[i]->MenuValue(), 0);
        QCOMPARE(w->encodingMode[i], 0);
    }
    QCOMPARE(w->titleBox[0]->Caption(), globals::kBoxLeft());
    QCOMPARE(w->titleBox[1]->Caption(), globals::kBoxRight());
    // Undo brings a plain pane's text back with its title and row; Redo empties it again.
    QTest::keyClick(w->txtBox[0]->focusProxy(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(w->txtBox[0]->Text(), kJapanese);
    QCOMPARE(w->titleBox[0]->Caption(), QStringLiteral("a.txt"));
    QCOMPARE(w->encodingMode[0], 1);
    QTest::keyClick(w->txtBox[0]->focusProxy(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(w->txtBox[0]->Text(), QString());
    QCOMPARE(w->titleBox[0]->Caption(), globals::kBoxLeft());
    // A styled pane's text comes back too, with its styles, after the typing since.
    QTest::keyClicks(w->txtBox[1]->focusProxy(), "ab");
    QTest::keyClick(w->txtBox[1]->focusProxy(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(w->txtBox[1]->Text(), QString());
    QTest::keyClick(w->txtBox[1]->focusProxy(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(w->txtBox[1]->Text(), QStringLiteral("styled"));
    QVERIFY(qobject_cast<QTextEdit*>(w->txtBox[1]->focusProxy()));
    QVERIFY(w->TEBMenu[1]->isHidden());
    // The bytes last read are kept: a row picked now shows them again.
    w->TEBMenu[0]->setMenuValue(1);
    emit w->TEBMenu[0]->Action();
    QCOMPARE(w->txtBox[0]->Text(), kJapanese);
}

void TstDocuments::dragFeedback_data()
{
    QTest::addColumn<int>("target"); // -1: the background
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QList<bool>>("frames");
    QTest::newRow("one file on the background") << -1 << QStringList{"a.txt"} << QList{true, false};
    QTest::newRow("two files on the background")
        << -1 << QStringList{"a.txt", "b.txt"} << QList{true, true};
    QTest::newRow("two files on the right pane")
        << 1 << QStringList{"a.txt", "b.txt"} << QList{false, true};
    QTest::newRow("movie on the background") << -1 << QStringList{"m.mov"} << QList{false, false};
    QTest::newRow("movie on a pane") << 0 << QStringList{"m.mov"} << QList{true, false};
    QTest::newRow("picture on a pane") << 0 << QStringList{"p.png"} << QList{false, false};
    QTest::newRow("folder") << -1 << QStringList{"dir"} << QList{false, false};
    QTest::newRow("rich text package") << -1 << QStringList{"pack.rtfd"} << QList{true, false};
}

// Frames show while a drag is over a target and go when it leaves.
void TstDocuments::dragFeedback()
{
    QFETCH(int, target);
    QFETCH(QStringList, names);
    QFETCH(QList<bool>, frames);
    Files files;
    QStringList paths;
    for (const QString& n : names)
        paths << (n.contains('.') && !n.endsWith("rtfd") ? files.write(n, "x") : files.folder(n));
    DiffWin* w = window();
    std::unique_ptr<QMimeData> data(filesData(paths));
    QWidget* on = dropTarget(w, target);
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(on, &enter);
    QVERIFY(enter.isAccepted());
    QCOMPARE(QList<bool>({!w->txtBack[0]->isHidden(), !w->txtBack[1]->isHidden()}), frames);
    // The tip shows at once with a frame, since a drag brings no hover of its own.
    const bool framed = frames.contains(true);
    QCOMPARE(QToolTip::isVisible(), framed);
    if (framed)
        QCOMPARE(QToolTip::text(), globals::kDropHTag().replace('\r', '\n'));
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(on, &leave);
    QVERIFY(w->txtBack[0]->isHidden() && w->txtBack[1]->isHidden());
    QTRY_VERIFY(!QToolTip::isVisible());
}

void TstDocuments::dropsShareFilesOut_data()
{
    QTest::addColumn<int>("target");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("titles");
    const QString l = "Left Box", r = "Right Box";
    QTest::newRow("one on the background") << -1 << QStringList{"a.txt"} << QStringList{"a.txt", r};
    QTest::newRow("one on the right pane") << 1 << QStringList{"a.txt"} << QStringList{l, "a.txt"};
    QTest::newRow("two on the left pane")
        << 0 << QStringList{"a.txt", "b.txt"} << QStringList{"a.txt", "b.txt"};
    QTest::newRow("two on the right pane")
        << 1 << QStringList{"a.txt", "b.txt"} << QStringList{"b.txt", "a.txt"};
    QTest::newRow("three: the third is ignored")
        << -1 << QStringList{"a.txt", "b.txt", "c.txt"} << QStringList{"a.txt", "b.txt"};
    QTest::newRow("first refused, second still read")
        << -1 << QStringList{"a.zip", "b.txt"} << QStringList{l, "b.txt"};
    QTest::newRow("excluded only") << 0 << QStringList{"a.pdf"} << QStringList{l, r};
}

void TstDocuments::dropsShareFilesOut()
{
    QFETCH(int, target);
    QFETCH(QStringList, names);
    QFETCH(QStringList, titles);
    Files files;
    QStringList paths;
    for (const QString& n : names)
        paths << files.write(n, n.toUtf8());
    DiffWin* w = window();
    w->onlyFirst = false;
    drag(dropTarget(w, target), paths, true);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(w->titleBox[i]->Caption(), titles[i]);
        if (titles[i].endsWith(".txt"))
            QCOMPARE(w->txtBox[i]->Text(), titles[i]);
        QVERIFY(w->txtBack[i]->isHidden());
    }
    QVERIFY(w->onlyFirst);
}

// Text dragged from elsewhere goes into the pane at the drop, as in any editor.
void TstDocuments::draggedTextIsTheEditors()
{
    DiffWin* w = window();
    w->txtBox[0]->setText(QString());
    QMimeData data;
    data.setText(QStringLiteral("dropped words"));
    QWidget* on = w->txtBox[0]->viewport();
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(on, &enter);
    QVERIFY(w->txtBack[0]->isHidden());
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(on, &drop);
    QCOMPARE(w->txtBox[0]->Text(), QStringLiteral("dropped words"));
}

void TstDocuments::openedDocumentsComeInBatches()
{
    Files files;
    DiffWin* w = window();
    const QStringList paths{files.write("1.txt", "1"), files.write("2.zip", "2"),
        files.write("3.txt", "3"), files.write("4.txt", "4")};
    auto& app = App::instance();
    w->curDiffNum = 3;
    w->onlyFirst = false;
    // A refused document still takes its pane; past two, the batch ignores the rest.
    app.openDocuments({paths[0].toUtf8(), paths[1].toUtf8(), paths[2].toUtf8()});
    QCOMPARE(w->titleBox[0]->Caption(), QStringLiteral("1.txt"));
    QCOMPARE(w->noticeBar->text(), "2.zip was not read: files of this kind are never read.");
    QCOMPARE(w->titleBox[1]->Caption(), globals::kBoxRight());
    QCOMPARE(globals::fCount, 2);
    QCOMPARE(w->Timer3->Mode(), 1);
    // As after a drop of two files, the first difference of the new texts becomes current.
    QVERIFY(w->onlyFirst);
    emit w->Timer2->Action();
    emit w->Timer1->Action();
    QTRY_VERIFY_WITH_TIMEOUT(w->resultIsCurrent() && !w->onlyFirst, 5000);
    QCOMPARE(w->curDiffNum, 0);
    QCOMPARE(w->curLine, int(w->topsA.at(0)));

    emit w->Timer3->Action();
    app.openDocuments({paths[3].toUtf8()});
    QCOMPARE(w->titleBox[0]->Caption(), QStringLiteral("4.txt"));
    QCOMPARE(globals::fCount, 1);
}

void TstDocuments::aFileChangedOnDiskIsOfferedForReload_data()
{
    QTest::addColumn<bool>("byRename");
    QTest::addColumn<bool>("edited");
    QTest::newRow("written in place") << false << false;
    QTest::newRow("replaced by a rename") << true << false;
    QTest::newRow("edited pane") << false << true;
}

void TstDocuments::aFileChangedOnDiskIsOfferedForReload()
{
    QFETCH(bool, byRename);
    QFETCH(bool, edited);
    const bool wasEdited = edited;
    Files files;
    DiffWin* w = window();
    const QString path = files.write("w.txt", "one\n");
    load(w, path, 1);
    if (edited)
        w->txtBox[1]->setText(QStringLiteral("my edit"));
    const auto change = [&](const QByteArray& bytes) {
        if (!byRename)
            return void(files.write("w.txt", bytes));
        const QString fresh = files.write("w.new", bytes);
        QCOMPARE(
            std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(path).constData()),
            0);
    };
    const auto offered = [w] {
        return w->noticeBar && w->noticeBar->isVisible()
            ? w->noticeBar->findChild<QAbstractButton*>("reload")
            : nullptr;
    };
    // Twice: the watch holds after a reload and after a rename.
    QString shown = w->txtBox[1]->Text();
    for (const QByteArray& version : {QByteArray("second version\n"), QByteArray("third\n")}) {
        change(version);
        QTRY_VERIFY_WITH_TIMEOUT(offered(), 5000);
        QCOMPARE(w->noticeBar->text(),
            (edited ? globals::kNoticeChangedEdited() : globals::kNoticeChanged()).arg("w.txt"));
        QCOMPARE(w->txtBox[1]->Text(), shown);
        offered()->click();
        shown = QString::fromUtf8(version);
        QCOMPARE(w->txtBox[1]->Text(), shown);
        edited = false;
    }
    // Each reload was a step of its own, back to the edits.
    w->txtBox[1]->focusProxy()->setFocus();
    QTest::keyClick(w->txtBox[1]->focusProxy(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(w->txtBox[1]->Text(), "second version\n");
    QTest::keyClick(w->txtBox[1]->focusProxy(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(w->txtBox[1]->Text(), wasEdited ? QStringLiteral("my edit") : "one\n");
}

// The file chosen goes where a drop on that pane would put it; a cancel reads nothing.
void TstDocuments::theFileMenuReadsAsADrop()
{
    Files files;
    DiffWin* w = window();
    const QByteArray path = QFile::encodeName(files.write("chosen.txt", "chosen\n"));
    QList<int> asked;
    w->askForFile = [&](int index) { return asked << index, asked.size() == 1 ? path : ""; };
    const QString left = w->txtBox[0]->Text();
    w->onlyFirst = false;
    QVERIFY(w->handleMenu("FileOpenRight"));
    QVERIFY(w->handleMenu("FileOpenLeft"));
    QCOMPARE(asked, (QList<int>{1, 0}));
    QCOMPARE(w->txtBox[1]->Text(), QStringLiteral("chosen\n"));
    QCOMPARE(w->txtBox[0]->Text(), left);
    QVERIFY(w->onlyFirst);
}

int main(int, char**)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    App app(argc, argv);
    TstDocuments test;
    return QTest::qExec(&test);
}

#include "tst_documents.moc"
