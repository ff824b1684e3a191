#include "BevelButton.h"
#include "Geometry.h"
#include "Graphics.h"
#include "LineStore.h"
#include "Lines.h"
#include "MenuBar.h"
#include "NoticeBar.h"
#include "PlainPane.h"
#include "TextArea.h"
#include "Timer.h"

#include <QAccessible>
#include <QInputMethodEvent>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextLayout>

#include <random>

using toolkit::Locks;

namespace {
// A pane of 200 × 150 with lines "line 0", "line 1" … ended by CR, on screen.
// Every pixel row of a line shown whole answers that line's position at x = 4, and rows grow
// downward.
bool rowsAnswerTheirLines(const toolkit::TextArea& pane)
{
    const int bottom = pane.TextTop() + pane.TextHeight();
    int previous = 0;
    for (int y = 0; y < bottom; ++y) {
        const int at = pane.CharacterPosition(4.0, double(y));
        if (at < previous)
            return false;
        previous = at;
    }
    for (int line = pane.VerticalScrollPosition(); line < pane.LineCount(); ++line) {
        const QRect r = pane.lineRect(line);
        if (r.bottom() >= bottom)
            break;
        for (int y = std::max(r.top(), 0); y <= r.bottom(); ++y) {
            if (pane.CharacterPosition(4.0, double(y)) != pane.CharacterPosition(line)) {
                qWarning("row %d of line %d", y, line);
                return false;
            }
        }
    }
    return true;
}

bool showText(toolkit::TextArea& pane, const QString& text, QSize size = {200, 100})
{
    pane.resize(size);
    pane.setText(text);
    pane.show();
    return QTest::qWaitForWindowExposed(&pane);
}

// Typed, with <key sequences> between.
void typeKeys(QWidget* editor, const QString& keys)
{
    for (qsizetype i = 0; i < keys.size();) {
        if (keys.at(i) == u'<') {
            const qsizetype end = keys.indexOf(u'>', i);
            const QKeyCombination k = QKeySequence::fromString(keys.mid(i + 1, end - i - 1))[0];
            QTest::keyClick(editor, k.key(), k.keyboardModifiers());
            i = end + 1;
        } else {
            QTest::keyClick(editor, keys.at(i).toLatin1());
            ++i;
        }
    }
}

bool showLines(toolkit::TextArea& pane, int count)
{
    pane.resize(200, 150);
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << QStringLiteral("line %1").arg(i);
    pane.setText(lines.join(u'\r'));
    pane.show();
    return QTest::qWaitForWindowExposed(&pane);
}
} // namespace

class TstToolkit : public QObject
{
    Q_OBJECT
private slots:
    void locksFollowTheParent_data();
    void locksFollowTheParent();
    void nestedControlsMoveWithTheirParent();
    void menuValueFromCodeIsSilent();
    void paneLinesAreTheTextsLines_data();
    void paneLinesAreTheTextsLines();
    void storeFollowsTheSplitRule_data();
    void storeFollowsTheSplitRule();
    void editingByKeys_data();
    void editingByKeys();
    void marksFollowEdits_data();
    void marksFollowEdits();
    void movingTextIsOneStep_data();
    void movingTextIsOneStep();
    void mouseSelects();
    void inputMethodComposesInPlace_data();
    void inputMethodComposesInPlace();
    void screenReaderReadsAndEdits();
    void scrollPositionCountsLinesAndStops();
    void characterPositionsShareOneScale();
    void characterPositionsFollowThePane_data();
    void characterPositionsFollowThePane();
    void selectingKeepsTheView();
    void graphicsColoursAreExact_data();
    void graphicsColoursAreExact();
    void timerModes();
    void styledParagraphsKeepTheirAlignment();
    void longTextsFillInSlices_data();
    void longTextsFillInSlices();
    void shortcutLiterals_data();
    void shortcutLiterals();
    void noticeBarShowsEveryLine();
    void wholeTextStepsAreBounded();
};

void TstToolkit::locksFollowTheParent_data()
{
    QTest::addColumn<QString>("locks");
    QTest::addColumn<QRect>("after"); // parent grows from 200x100 to 260x140
    QTest::newRow("none stays") << "----" << QRect(10, 20, 30, 40);
    QTest::newRow("left and top stay") << "LT--" << QRect(10, 20, 30, 40);
    QTest::newRow("right moves") << "--R-" << QRect(70, 20, 30, 40);
    QTest::newRow("bottom moves") << "---B" << QRect(10, 60, 30, 40);
    QTest::newRow("right and bottom move") << "--RB" << QRect(70, 60, 30, 40);
    QTest::newRow("left and right stretch") << "L-R-" << QRect(10, 20, 90, 40);
    QTest::newRow("top and bottom stretch") << "LT-B" << QRect(10, 20, 30, 80);
    QTest::newRow("all four stretch") << "LTRB" << QRect(10, 20, 90, 80);
}

void TstToolkit::locksFollowTheParent()
{
    QFETCH(QString, locks);
    QFETCH(QRect, after);
    QWidget surface;
    toolkit::makeSurface(&surface);
    surface.resize(400, 400);
    QWidget parent, child;
    toolkit::place(&parent, &surface, {5, 5, 200, 100}, Locks::from("LT--"));
    toolkit::place(&child, &parent, {15, 25, 30, 40}, Locks::from(locks.toLatin1().constData()));
    toolkit::setWindowRect(&parent, {5, 5, 260, 140});
    QCOMPARE(toolkit::windowRect(&child), after.translated(5, 5));
    // Shrinking back restores the design.
    toolkit::setWindowRect(&parent, {5, 5, 200, 100});
    QCOMPARE(toolkit::windowRect(&child), QRect(15, 25, 30, 40));
}

void TstToolkit::nestedControlsMoveWithTheirParent()
{
    QWidget surface;
    toolkit::makeSurface(&surface);
    surface.resize(300, 200);
    QWidget back, inner, grandchild;
    toolkit::place(&back, &surface, {2, 2, 296, 196}, Locks::from("LTRB"));
    toolkit::place(&inner, &back, {100, 150, 80, 30}, Locks::from("---B"));
    toolkit::place(&grandchild, &inner, {110, 155, 20, 10}, Locks::from("---B"));
    QCOMPARE(toolkit::windowRect(&grandchild), QRect(110, 155, 20, 10));

    toolkit::setLeft(&inner, 140); // children go with their parent
    QCOMPARE(toolkit::windowRect(&grandchild), QRect(150, 155, 20, 10));

    const QSize before = surface.size();
    surface.resize(300, 260);
    toolkit::applyLocks(&surface, before);
    QCOMPARE(toolkit::windowRect(&back), QRect(2, 2, 296, 256));
    QCOMPARE(toolkit::windowRect(&inner), QRect(140, 210, 80, 30));
    QCOMPARE(toolkit::windowRect(&grandchild), QRect(150, 215, 20, 10));
}

void TstToolkit::menuValueFromCodeIsSilent()
{
    toolkit::BevelButton b;
    b.setMenuStyle(1);
    for (const char* row : {"UTF-8", "ShiftJIS", "Japanese EUC"})
        b.AddRow(QString::fromLatin1(row));
    QSignalSpy action(&b, &toolkit::BevelButton::Action);

    b.setMenuValue(2);
    QCOMPARE(b.MenuValue(), 2);
    b.setMenuValue(7);
    QCOMPARE(b.MenuValue(), -1);
    QCOMPARE(action.count(), 0);

    b.menu()->actions().at(1)->trigger(); // what a user's choice does
    QCOMPARE(action.count(), 1);
    QCOMPARE(b.MenuValue(), 1);
    QVERIFY(b.menu()->actions().at(1)->isChecked());
    QVERIFY(!b.menu()->actions().at(0)->isChecked());

    b.RemoveRow(0);
    QCOMPARE(b.MenuValue(), 0);
    QCOMPARE(b.List(0), QStringLiteral("ShiftJIS"));
    b.DeleteAllRows();
    QCOMPARE(b.MenuValue(), -1);
    QCOMPARE(b.ListCount(), 0);
    QCOMPARE(action.count(), 1);
}

void TstToolkit::paneLinesAreTheTextsLines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("CR") << "one\rtwo\r" << QStringList{"one", "two", ""};
    QTest::newRow("CR LF counts once") << "one\r\ntwo" << QStringList{"one", "two"};
    QTest::newRow("LF and blank") << "one\n\ntwo" << QStringList{"one", "", "two"};
    QTest::newRow("paragraph separator stays inside")
        << QString::fromUtf16(u"one\u2029two") << QStringList{QString::fromUtf16(u"one\u2029two")};
    QTest::newRow("line separator stays inside")
        << QString::fromUtf16(u"one\u2028two") << QStringList{QString::fromUtf16(u"one\u2028two")};
    QTest::newRow("empty text is one empty line") << "" << QStringList{""};
    QTest::newRow("non-breaking space kept")
        << QString::fromUtf16(u"a\u00A0b") << QStringList{QString::fromUtf16(u"a\u00A0b")};
    QTest::newRow("frame marks stay inside")
        << QString::fromUtf16(u"a\uFDD0b\rc\uFDD1")
        << QStringList{QString::fromUtf16(u"a\uFDD0b"), QString::fromUtf16(u"c\uFDD1")};
    QTest::newRow("NUL and byte order mark stay") << QString::fromUtf16(
        u"\uFEFFa\0b\n", 5) << QStringList{QString::fromUtf16(u"\uFEFFa\0b", 4), ""};
}

void TstToolkit::paneLinesAreTheTextsLines()
{
    QFETCH(QString, text);
    QFETCH(QStringList, lines);
    toolkit::TextArea pane;
    QSignalSpy change(&pane, &toolkit::TextArea::TextChange);
    pane.setText(text);
    QVERIFY(change.count() >= 1);
    QCOMPARE(pane.Lines(), lines);
    QCOMPARE(pane.LineCount(), lines.size());
    QCOMPARE(pane.Text(), text);
    const auto snapshot = pane.snapshot();
    QCOMPARE(snapshot->lineCount(), std::size_t(lines.size()));
    for (qsizetype i = 0; i < lines.size(); ++i)
        QVERIFY(snapshot->line(std::size_t(i))
            == std::u16string_view(
                reinterpret_cast<const char16_t*>(lines[i].utf16()), std::size_t(lines[i].size())));

    // A text prepared elsewhere comes in the same, and says so.
    pane.setText(QStringLiteral("other"));
    change.clear();
    pane.setText(toolkit::TextArea::prepare(text));
    QVERIFY(change.count() >= 1);
    QCOMPARE(pane.Lines(), lines);
}

void TstToolkit::storeFollowsTheSplitRule_data()
{
    QTest::addColumn<int>("seed");
    QTest::addColumn<int>("length"); // of the first text
    QTest::addColumn<int>("pieceLength"); // most characters an edit takes away or puts in
    QTest::addColumn<bool>("narrow"); // the first text held one byte a character
    QTest::newRow("short texts, small edits") << 1 << 40 << 4 << false;
    QTest::newRow("many blocks, small edits") << 2 << 120'000 << 6 << false;
    QTest::newRow("many blocks, large edits") << 3 << 90'000 << 40'000 << false;
    QTest::newRow("from empty") << 4 << 0 << 30 << false;
    QTest::newRow("narrow, small edits") << 5 << 120'000 << 6 << true;
    QTest::newRow("narrow, large edits") << 6 << 90'000 << 40'000 << true;
    QTest::newRow("narrow, from empty") << 7 << 0 << 30 << true;
}

// After any edits the store's lines, hashes and positions are those of the text cut afresh.
void TstToolkit::storeFollowsTheSplitRule()
{
    QFETCH(int, seed);
    QFETCH(int, length);
    QFETCH(int, pieceLength);
    QFETCH(bool, narrow);
    std::mt19937 random{unsigned(seed)};
    // Every line end and the characters that must stay inside a line.
    const std::u16string alphabet = u"ab\r\n\r\n\u2028\uFDD0\uFDD1\uFEFF";
    const auto piece = [&](int n) {
        QString s;
        for (int i = 0; i < n; ++i)
            s.append(QChar(alphabet[random() % alphabet.size()]));
        s.replace(QChar(u'\uFEFF'), QChar(random() % 2 ? u'\0' : u'\uFEFF'));
        return s;
    };
    QString text = piece(length);
    if (narrow)
        text.replace(
            QRegularExpression(QStringLiteral("[^\\x{0}-\\x{ff}]")), QStringLiteral("\u00E9"));
    toolkit::LineStore store
        = narrow ? toolkit::LineStore::fromLatin1(text.toLatin1()) : toolkit::LineStore(text);
    // A copy taken now and then, as a snapshot is, must never change.
    toolkit::LineStore held = store;
    QString heldText = text;
    for (int edit = 0; edit < 300; ++edit) {
        if (edit % 7 == 0) {
            QCOMPARE(held.text(), heldText);
            QCOMPARE(held.sameText(store), heldText == text);
            held = store;
            heldText = text;
        }
        const auto from = qsizetype(random() % (text.size() + 1));
        const auto to = std::min(text.size(), from + qsizetype(random() % (pieceLength + 1)));
        const QString with = piece(int(random() % (pieceLength + 1)));
        text.replace(from, to - from, with);
        store.replace(from, to, with);

        const auto expected = SeqDiff::splitLines(std::u16string_view(
            reinterpret_cast<const char16_t*>(text.utf16()), std::size_t(text.size())));
        QCOMPARE(store.lineCount(), qsizetype(expected.size()));
        QCOMPARE(store.size(), text.size());
        // Sampled lines: every line of every round costs too much on the large texts.
        for (std::size_t i = 0; i < expected.size(); i += 1 + expected.size() / 200) {
            const auto at = qsizetype(i);
            QVERIFY(store.line(at) == expected[i]);
            QVERIFY(store.lineText(at)
                == (SeqDiff::LineText{expected[i].data(), expected[i].size(), false}));
            QCOMPARE(store.lineHash(at), SeqDiff::lineHash(expected[i]));
            const qsizetype start
                = expected[i].data() - reinterpret_cast<const char16_t*>(text.utf16());
            QCOMPARE(store.lineStart(at), start);
            QCOMPARE(store.lineEnd(at), start + qsizetype(expected[i].size()));
            QCOMPARE(store.lineAt(start), at);
        }
    }
    QCOMPARE(store.text(), text);
    QCOMPARE(held.text(), heldText);
    // Cut into other blocks, the same text is the same; one character apart, it is not.
    QVERIFY(store.sameText(toolkit::LineStore(text)));
    if (!text.isEmpty()) {
        QChar& c = text[text.size() / 2];
        c = c == u'a' ? u'b' : u'a';
        QVERIFY(!store.sameText(toolkit::LineStore(text)));
    }
}

void TstToolkit::editingByKeys_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("caret");
    QTest::addColumn<QString>("keys"); // typed, with <key sequences> between
    QTest::addColumn<QString>("after");
    QTest::addColumn<QList<int>>("selection"); // start, length
    QTest::newRow("typing") << "ab\ncd" << 1 << "XY"
                            << "aXYb\ncd" << QList{3, 0};
    QTest::newRow("backspace joins lines") << "ab\ncd" << 3 << "<Backspace>"
                                           << "abcd" << QList{2, 0};
    QTest::newRow("backspace takes CR LF whole") << "ab\r\ncd" << 4 << "<Backspace>"
                                                 << "abcd" << QList{2, 0};
    QTest::newRow("delete takes CR LF whole") << "ab\r\ncd" << 2 << "<Del>"
                                              << "abcd" << QList{2, 0};
    QTest::newRow("right steps over CR LF") << "ab\r\ncd" << 2 << "<Right>x"
                                            << "ab\r\nxcd" << QList{5, 0};
    QTest::newRow("enter breaks with LF") << "ab" << 1 << "<Return>"
                                          << "a\nb" << QList{2, 0};
    QTest::newRow("typing is one undo step") << "ab" << 2 << "xyz<Ctrl+Z>"
                                             << "ab" << QList{2, 0};
    QTest::newRow("redo") << "ab" << 2 << "x y<Ctrl+Z><Ctrl+Shift+Z>"
                          << "abx y" << QList{5, 0};
    QTest::newRow("undo a deletion") << "abc" << 0 << "<Shift+Right><Del><Ctrl+Z>"
                                     << "abc" << QList{0, 1};
    QTest::newRow("shift and arrows select") << "abc\nabc" << 1 << "<Shift+Right><Shift+Down>"
                                             << "abc\nabc" << QList{1, 5};
    QTest::newRow("typing replaces the selection") << "abc\nd" << 0 << "<Shift+End>x"
                                                   << "x\nd" << QList{1, 0};
    QTest::newRow("words") << "one two three" << 0 << "<Ctrl+Right><Ctrl+Right><Ctrl+Shift+Right>"
                           << "one two three" << QList{8, 5};
    QTest::newRow("word back") << "one two" << 7 << "<Ctrl+Shift+Left>"
                               << "one two" << QList{4, 3};
    QTest::newRow("start and end") << "ab\ncd" << 4 << "<Ctrl+End><Home><Ctrl+Shift+Home>"
                                   << "ab\ncd" << QList{0, 3};
    QTest::newRow("cut and paste") << "abc" << 0 << "<Shift+Right><Ctrl+X><End><Ctrl+V>"
                                   << "bca" << QList{3, 0};
    QTest::newRow("select all and type") << "a\nb" << 0 << "<Ctrl+A>z"
                                         << "z" << QList{1, 0};
}

void TstToolkit::marksFollowEdits_data()
{
    QTest::addColumn<QList<int>>("marked"); // first line, count
    QTest::addColumn<int>("caret");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QList<int>>("after");
    // On "a\nb\nc\nd": line 1 starts at 2, line 3 at 6.
    QTest::newRow("a line above: down") << QList{2, 1} << 0 << "<Return>" << QList{3, 1};
    QTest::newRow("a break above taken: up") << QList{2, 1} << 2 << "<Backspace>" << QList{1, 1};
    QTest::newRow("a line within: longer") << QList{1, 2} << 2 << "<Return>" << QList{1, 3};
    QTest::newRow("a line below: stays") << QList{0, 1} << 6 << "<Return>" << QList{0, 1};
    QTest::newRow("typing in a line: stays") << QList{1, 1} << 0 << "xy" << QList{1, 1};
    QTest::newRow("missing lines' place: down") << QList{2, 0} << 0 << "<Return>" << QList{3, 0};
    QTest::newRow("joined into the line above") << QList{1, 2} << 1 << "<Del>" << QList{0, 2};
}

void TstToolkit::marksFollowEdits()
{
    QFETCH(QList<int>, marked);
    QFETCH(int, caret);
    QFETCH(QString, keys);
    QFETCH(QList<int>, after);
    toolkit::TextArea pane;
    QVERIFY(showText(pane, QStringLiteral("a\nb\nc\nd")));
    pane.setHighlight(marked[0], marked[1]);
    pane.setSpans({{1, 0, 1}});
    pane.select(caret, 0);
    typeKeys(pane.focusProxy(), keys);
    QCOMPARE((QList{pane.highlightFirst(), pane.highlightCount()}), after);
    // The caret and selection are the user's alone.
    QCOMPARE(pane.SelectionLength(), 0);
    pane.setText(QStringLiteral("new"));
    QCOMPARE((QList{pane.highlightFirst(), pane.highlightCount()}), (QList{-1, 0}));
    QVERIFY(pane.spans().empty());
}

void TstToolkit::editingByKeys()
{
    QFETCH(QString, text);
    QFETCH(int, caret);
    QFETCH(QString, keys);
    QFETCH(QString, after);
    QFETCH(QList<int>, selection);
    toolkit::TextArea pane;
    QVERIFY(showText(pane, text));
    pane.select(caret, 0);
    typeKeys(pane.focusProxy(), keys);
    QCOMPARE(pane.Text(), after);
    QCOMPARE((QList{pane.SelectionStart(), pane.SelectionLength()}), selection);
    QCOMPARE(pane.snapshot()->lineCount(),
        std::size_t(after.split(QRegularExpression("\r\n|\r|\n")).size()));
}

void TstToolkit::movingTextIsOneStep_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("selection"); // start, length
    QTest::addColumn<int>("at");
    QTest::addColumn<QString>("after");
    QTest::newRow("forward") << "ab cd ef" << QList{0, 3} << 6 << "cd ab ef";
    QTest::newRow("back, across lines") << "one\ntwo" << QList{4, 3} << 0 << "twoone\n";
    QTest::newRow("onto itself") << "abc" << QList{0, 2} << 1 << "abc";
}

// Text dragged to another place in its pane comes back with one undo, and goes again with one
// redo.
void TstToolkit::movingTextIsOneStep()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, selection);
    QFETCH(int, at);
    QFETCH(QString, after);
    toolkit::TextArea pane;
    QVERIFY(showText(pane, text));
    auto* editor = qobject_cast<toolkit::PlainPane*>(pane.focusProxy());
    QVERIFY(editor);
    pane.select(selection[0], selection[1]);
    editor->moveSelection(at);
    QCOMPARE(pane.Text(), after);
    if (after == text) {
        QVERIFY(!editor->canUndo());
        return;
    }
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(pane.Text(), text);
    QVERIFY(!editor->canUndo());
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(pane.Text(), after);
    QVERIFY(!editor->canRedo());
}

// A double click takes a word, a shift click stretches the selection, a drag selects.
void TstToolkit::mouseSelects()
{
    toolkit::TextArea pane;
    QVERIFY(showText(pane, QStringLiteral("one two three\nfour"), {300, 100}));
    QWidget* v = pane.viewport();
    const QFontMetrics fm(pane.font());
    const int y = pane.lineRect(0).center().y() - pane.TextTop();
    const auto at = [&](const char* before) {
        return QPoint(4 + fm.horizontalAdvance(QLatin1String(before)), y);
    };
    QTest::mouseDClick(v, Qt::LeftButton, {}, at("one t"));
    QCOMPARE((QList{pane.SelectionStart(), pane.SelectionLength()}), (QList{4, 3}));
    QTest::mouseClick(v, Qt::LeftButton, {}, at("o"));
    QTest::mouseClick(v, Qt::LeftButton, Qt::ShiftModifier, at("one two th"));
    QCOMPARE((QList{pane.SelectionStart(), pane.SelectionLength()}), (QList{1, 9}));
    QTest::mousePress(v, Qt::LeftButton, {}, at("one two thre"));
    QTest::mouseMove(
        v, QPoint(4 + fm.horizontalAdvance(QLatin1String("fo")), y + pane.LineHeight()));
    QTest::mouseRelease(v, Qt::LeftButton, {},
        QPoint(4 + fm.horizontalAdvance(QLatin1String("fo")), y + pane.LineHeight()));
    QCOMPARE((QList{pane.SelectionStart(), pane.SelectionLength()}), (QList{12, 4}));
}

// Text being composed shows in the pane but is not yet in it; the committed text is.
void TstToolkit::inputMethodComposesInPlace_data()
{
    QTest::addColumn<QString>("tail"); // of the line, after the caret
    QTest::newRow("short line") << QStringLiteral("b");
    QTest::newRow("line too long to lay out again") << QStringLiteral("bcd") + QString(5000, u'x');
}

void TstToolkit::inputMethodComposesInPlace()
{
    QFETCH(QString, tail);
    const QString text = QStringLiteral("a") + tail;
    const QString composed = QString::fromUtf16(u"\u306B\u307B");
    toolkit::TextArea pane;
    QVERIFY(showText(pane, text));
    pane.select(1, 0);
    QWidget* editor = pane.focusProxy();
    const QImage before = pane.grab().toImage();
    QInputMethodEvent composing(composed, {});
    QApplication::sendEvent(editor, &composing);
    QCOMPARE(pane.Text(), text);
    QVERIFY(pane.grab().toImage() != before);
    // A long line is handed over in part.
    const QString around = editor->inputMethodQuery(Qt::ImSurroundingText).toString();
    QVERIFY(around.size() >= 2 && text.startsWith(around));
    QCOMPARE(editor->inputMethodQuery(Qt::ImCursorPosition).toInt(), 1);
    // What follows the composed text stands where it will once the text is in.
    toolkit::TextArea typed;
    QVERIFY(showText(typed, QStringLiteral("a") + composed + tail));
    const QFontMetrics fm(pane.font());
    const int after = 4 + fm.horizontalAdvance(QStringLiteral("a") + composed) + 2;
    const QRect rest(after, 0, pane.viewport()->width() - after, pane.LineHeight());
    QCOMPARE(pane.viewport()->grab(rest).toImage(), typed.viewport()->grab(rest).toImage());

    QInputMethodEvent done;
    done.setCommitString(QString::fromUtf16(u"\u65E5\u672C"));
    QApplication::sendEvent(editor, &done);
    QCOMPARE(pane.Text(), QString::fromUtf16(u"a\u65E5\u672C") + tail);
    QCOMPARE(pane.SelectionStart(), 3);

    pane.setReadOnly(true);
    QApplication::sendEvent(editor, &done);
    QTest::keyClick(editor, Qt::Key_X);
    QCOMPARE(pane.Text(), QString::fromUtf16(u"a\u65E5\u672C") + tail);
}

void TstToolkit::screenReaderReadsAndEdits()
{
    toolkit::TextArea pane;
    QVERIFY(showText(pane, QStringLiteral("one\r\ntwo words")));
    QAccessibleInterface* a = QAccessible::queryAccessibleInterface(pane.focusProxy());
    QVERIFY(a && a->textInterface() && a->editableTextInterface());
    QAccessibleTextInterface* t = a->textInterface();
    QCOMPARE(t->characterCount(), 14);
    QCOMPARE(t->text(3, 6), QStringLiteral("\r\nt"));
    int start = 0, end = 0;
    QCOMPARE(
        t->textAtOffset(1, QAccessible::LineBoundary, &start, &end), QStringLiteral("one\r\n"));
    QCOMPARE(t->textAfterOffset(1, QAccessible::LineBoundary, &start, &end),
        QStringLiteral("two words"));
    QCOMPARE((QList{start, end}), (QList{5, 14}));
    QCOMPARE(t->textAtOffset(11, QAccessible::WordBoundary, &start, &end), QStringLiteral("words"));
    pane.select(5, 3);
    t->selection(0, &start, &end);
    QCOMPARE((QList{start, end, t->cursorPosition()}), (QList{5, 8, 8}));
    QCOMPARE(t->offsetAtPoint(t->characterRect(6).center()), 6);
    a->editableTextInterface()->replaceText(5, 8, QStringLiteral("2"));
    QCOMPARE(pane.Text(), QStringLiteral("one\r\n2 words"));
}

void TstToolkit::scrollPositionCountsLinesAndStops()
{
    toolkit::TextArea pane;
    QVERIFY(showLines(pane, 500));

    pane.setVerticalScrollPosition(120);
    QCOMPARE(pane.VerticalScrollPosition(), 120);
    QCOMPARE(pane.CharacterPosition(5.0, pane.TextTop() + 5.0), pane.CharacterPosition(120));
    pane.setVerticalScrollPosition(-3);
    QCOMPARE(pane.VerticalScrollPosition(), 0);
    pane.setVerticalScrollPosition(1'000'000);
    const int last = pane.VerticalScrollPosition();
    QVERIFY(last > 400 && last < 500);
    // The last line stands whole at the bottom, and no further line would fit.
    const int bottom = pane.TextTop() + pane.TextHeight();
    QVERIFY(pane.lineRect(499).bottom() < bottom);
    QVERIFY(pane.lineRect(499).bottom() + pane.LineHeight() >= bottom);

    // The horizontal range is that of the widest line before it comes into view, and stays.
    QStringList lines(500, QStringLiteral("short"));
    lines[300] = QString(400, u'w');
    pane.setText(lines.join(u'\n'));
    const QScrollBar* across
        = qobject_cast<QAbstractScrollArea*>(pane.focusProxy())->horizontalScrollBar();
    const int range = across->maximum();
    QVERIFY(range > QFontMetrics(pane.font()).horizontalAdvance(QString(300, u'w')));
    pane.setVerticalScrollPosition(295);
    QApplication::processEvents();
    QCOMPARE(across->maximum(), range);
}

void TstToolkit::characterPositionsShareOneScale()
{
    toolkit::TextArea pane;
    pane.resize(240, 200);
    pane.setText(QStringLiteral(
        "alpha\rbeta\r\rgamma delta\repsilon\rzeta\reta\rtheta\riota\rkappa\rlambda\rmu"));
    pane.show();
    QVERIFY(QTest::qWaitForWindowExposed(&pane));

    QCOMPARE(pane.CharacterPosition(0), 1);
    QCOMPARE(
        pane.CharacterPosition(1), 7); // "alpha" and its break, one above SelectionStart's scale
    QCOMPARE(pane.Text().mid(pane.CharacterPosition(3) - 1, 11), QStringLiteral("gamma delta"));
    QVERIFY(rowsAnswerTheirLines(pane));
    QCOMPARE(pane.CharacterPosition(99), pane.TextLength() + 2);
}

// Positions are kept between calls; whatever moves the text must be seen at once. The reference
// is Qt's own hit test, taken at the same moment.
void TstToolkit::characterPositionsFollowThePane_data()
{
    QTest::addColumn<QString>("change");
    for (const char* change :
        {"none", "scrolled", "edited above the view", "resized", "bigger font", "sideways",
            "page down key", "ctrl end key", "down arrow past the view"})
        QTest::newRow(change) << QString::fromLatin1(change);
}

void TstToolkit::characterPositionsFollowThePane()
{
    QFETCH(QString, change);
    toolkit::TextArea pane;
    pane.resize(240, 200);
    QStringList lines;
    for (int i = 0; i < 80; ++i)
        lines << QStringLiteral("line %1 ").arg(i).repeated(i % 7 + 1);
    pane.setText(lines.join(u'\n'));
    pane.show();
    QVERIFY(QTest::qWaitForWindowExposed(&pane));
    pane.setVerticalScrollPosition(10);
    QVERIFY(pane.CharacterPosition(4.0, 50.0) > 1);

    if (change == QLatin1String("scrolled"))
        pane.setVerticalScrollPosition(13);
    else if (change == QLatin1String("edited above the view"))
        pane.select(0, 0), QTest::keyClick(pane.focusProxy(), Qt::Key_Return);
    else if (change == QLatin1String("resized"))
        pane.resize(240, 150);
    else if (change == QLatin1String("bigger font"))
        pane.setFont(QFont(pane.font().family(), 2 * pane.font().pointSize()));
    else if (change == QLatin1String("sideways"))
        pane.select(pane.CharacterPosition(76) - 1, 0),
            QTest::keyClick(pane.focusProxy(), Qt::Key_End);
    else if (change == QLatin1String("page down key"))
        QTest::keyClick(pane.focusProxy(), Qt::Key_PageDown);
    else if (change == QLatin1String("ctrl end key"))
        QTest::keyClick(pane.focusProxy(), Qt::Key_End, Qt::ControlModifier);
    else if (change == QLatin1String("down arrow past the view"))
        for (int i = 0; i < 30; ++i)
            QTest::keyClick(pane.focusProxy(), Qt::Key_Down);
    const bool keyed
        = change.endsWith(QLatin1String("key")) || change.startsWith(QLatin1String("down"));
    if (keyed)
        QVERIFY(pane.VerticalScrollPosition() > 10);
    QVERIFY(rowsAnswerTheirLines(pane));

    // Below the text, rows answer what a line past the end answers.
    pane.setText(QStringLiteral("one\ntwo"));
    const int pastEnd = pane.TextLength() + 2;
    QCOMPARE(pane.CharacterPosition(2), pastEnd);
    QCOMPARE(pane.CharacterPosition(4.0, double(pane.height() - 10)), pastEnd);
}

void TstToolkit::selectingKeepsTheView()
{
    toolkit::TextArea pane;
    QVERIFY(showLines(pane, 500));
    pane.setVerticalScrollPosition(200);
    const quint64 revision = pane.contentRevision();

    const int start = pane.CharacterPosition(5) - 1;
    pane.select(start, 14);
    QCoreApplication::processEvents();
    QCOMPARE(pane.VerticalScrollPosition(), 200);
    QCOMPARE(pane.SelectionStart(), start);
    QCOMPARE(pane.SelectionLength(), 14);
    pane.setSelectionLength(0);
    QCOMPARE(pane.SelectionStart(), start);
    QCOMPARE(pane.SelectionLength(), 0);
    QCOMPARE(pane.contentRevision(), revision);

    QTest::keyClick(pane.focusProxy(), Qt::Key_X);
    QVERIFY(pane.contentRevision() > revision);
}

void TstToolkit::graphicsColoursAreExact_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::newRow("1") << 1.0;
    QTest::newRow("1.5") << 1.5;
    QTest::newRow("2") << 2.0;
}

void TstToolkit::graphicsColoursAreExact()
{
    QFETCH(qreal, ratio);
    toolkit::Picture picture(54, 100, ratio);
    QCOMPARE(picture.image.width(), qRound(54 * ratio));
    {
        toolkit::Graphics g(picture);
        QCOMPARE(g.Width(), 54.0);
        g.setForeColor(0x99CCFF);
        g.FillRect(0, 0, g.Width(), g.Height());
        g.setForeColor(0xFFCC00);
        const int band[] = {0, 0, 20, 0, 40, 54, 60, 54, 40};
        g.FillPolygon(band);
        g.setDrawingColor(0x000000);
        g.setFontSize(14);
        g.DrawText(QStringLiteral("8"), 22, 95);
    }
    const auto at = [&](int x, int y) {
        return picture.image.pixelColor(int(x * ratio), int(y * ratio)).rgb() & 0xFFFFFF;
    };
    QCOMPARE(at(27, 40), 0xFFCC00u);
    QCOMPARE(at(2, 22), 0xFFCC00u);
    QCOMPARE(at(27, 10), 0x99CCFFu);
    QCOMPARE(at(27, 65), 0x99CCFFu);
    int dark = 0;
    for (int y = 80; y < 96; ++y)
        for (int x = 22; x < 34; ++x)
            dark += qGray(at(x, y)) < 64;
    QVERIFY(dark > 0);
}

void TstToolkit::timerModes()
{
    toolkit::Timer t;
    t.setPeriod(10);
    QSignalSpy fired(&t, &toolkit::Timer::Action);
    t.setMode(1);
    QVERIFY(fired.wait(2000));
    QCOMPARE(t.Mode(), 0);
    QTest::qWait(60);
    QCOMPARE(fired.count(), 1);

    t.setMode(2);
    QTRY_VERIFY_WITH_TIMEOUT(fired.count() >= 4, 2000);
    QCOMPARE(t.Mode(), 2);
    t.setMode(0);
    const int stopped = fired.count();
    QTest::qWait(60);
    QCOMPARE(fired.count(), stopped);
}

void TstToolkit::shortcutLiterals_data()
{
    QTest::addColumn<QString>("literal");
    QTest::addColumn<QKeySequence>("primary");
    QTest::addColumn<int>("atLeast");
    QTest::newRow("doubled modifier") << "Cmd+Cmd+Q" << QKeySequence(Qt::CTRL | Qt::Key_Q) << 1;
    QTest::newRow("undo") << "Cmd+Z" << QKeySequence(Qt::CTRL | Qt::Key_Z) << 1;
    QTest::newRow("redo brings its other keys")
        << "Cmd+Shift+Z" << QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z) << 2;
    QTest::newRow("select all") << "Cmd+A" << QKeySequence(Qt::CTRL | Qt::Key_A) << 1;
    QTest::newRow("none") << "" << QKeySequence() << 0;
    QTest::newRow("two keys") << "Cmd+R, F5" << QKeySequence(Qt::CTRL | Qt::Key_R) << 2;
    QTest::newRow("the second of two") << "Cmd+R, F5" << QKeySequence(Qt::Key_F5) << 2;
    QTest::newRow("alt and an arrow") << "Alt+Up" << QKeySequence(Qt::ALT | Qt::Key_Up) << 1;
}

void TstToolkit::shortcutLiterals()
{
    QFETCH(QString, literal);
    QFETCH(QKeySequence, primary);
    QFETCH(int, atLeast);
    const QList<QKeySequence> keys = toolkit::shortcutsFor(literal);
    QVERIFY(keys.size() >= atLeast);
    if (atLeast > 0)
        QVERIFY(keys.contains(primary));
}

// No line is cut off, however the buttons narrow the text; a button's key names one button.
void TstToolkit::noticeBarShowsEveryLine()
{
    QWidget parent;
    parent.resize(420, 600);
    auto* bar = new toolkit::NoticeBar(&parent, QStringLiteral("Close"));
    parent.show();
    int runs = 0;
    for (int i = 0; i < 3; ++i) {
        bar->addNotice(QStringLiteral("notice %1 about a file with a long name, in words enough "
                                      "to wrap at least once")
                           .arg(i));
        bar->addAction(QStringLiteral("k%1").arg(i % 2), QStringLiteral("Replaced"), [] {});
        bar->addAction(QStringLiteral("k%1").arg(i % 2), QStringLiteral("Act"), [&] { ++runs; });
    }
    QCoreApplication::processEvents();
    auto* label = bar->findChild<QLabel*>();
    QVERIFY(label->height() >= label->heightForWidth(label->width()));
    const QList<QPushButton*> shown = bar->findChildren<QPushButton*>();
    QCOMPARE(shown.size(), 2);
    QCOMPARE(shown.first()->text(), QStringLiteral("Act"));
    shown.first()->click();
    QCOMPARE(runs, 1);
    QVERIFY(!bar->isVisible());
}

// A whole text replaced is one step; past the bound the oldest history goes, never the newest.
void TstToolkit::wholeTextStepsAreBounded()
{
    toolkit::PlainPane pane;
    pane.replace(0, 0, QStringLiteral("typed"));
    for (int i = 0; i <= toolkit::PlainPane::kWholeSteps; ++i)
        pane.replaceStore(toolkit::LineStore(QStringLiteral("text %1").arg(i)));
    QStringList seen;
    while (pane.canUndo()) {
        pane.undo();
        seen << pane.store().text();
    }
    // The step to "text 0", and the typing before it, are gone.
    QStringList kept;
    for (int i = toolkit::PlainPane::kWholeSteps - 1; i >= 0; --i)
        kept << QStringLiteral("text %1").arg(i);
    QCOMPARE(seen, kept);
    pane.redo();
    QCOMPARE(pane.store().text(), QStringLiteral("text 1"));
}

// Centred and right-set paragraphs stand across the pane's width when it paints.
void TstToolkit::styledParagraphsKeepTheirAlignment()
{
    toolkit::TextArea pane;
    pane.resize(300, 120);
    QTextDocument* doc = pane.StyledText();
    QTextCursor c(doc);
    for (const Qt::Alignment a : {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight}) {
        QTextBlockFormat f;
        f.setAlignment(a);
        if (a != Qt::AlignLeft)
            c.insertBlock();
        c.setBlockFormat(f);
        c.insertText(QStringLiteral("short"));
    }
    pane.grab();
    const qreal margin = doc->documentMargin();
    const qreal width = pane.viewport()->width() - 2 * margin;
    const QList<qreal> shares{0, 0.5, 1};
    for (int i = 0; i < 3; ++i) {
        const QTextLine line = doc->findBlockByNumber(i).layout()->lineAt(0);
        // Line positions are kept in 64ths of a pixel.
        const qreal expected = margin + (width - line.naturalTextWidth()) * shares[i];
        const qreal x = doc->findBlockByNumber(i).layout()->position().x() + line.x();
        QVERIFY2(qAbs(x - expected) < 0.05, qPrintable(QString::number(i)));
    }
}

void TstToolkit::longTextsFillInSlices_data()
{
    QTest::addColumn<int>("stopAfter"); // slices let in before `between` says no; -1 never
    QTest::addColumn<bool>("replaced"); // another text comes in during the fill
    QTest::newRow("whole") << -1 << false;
    QTest::newRow("stopped") << 2 << false;
    QTest::newRow("replaced meanwhile") << 2 << true;
}

// A long text goes in whole unless stopped, then up to the end of a line; the pane is
// read-only only while it fills, and nothing of the fill is left to undo.
void TstToolkit::longTextsFillInSlices()
{
    QFETCH(int, stopAfter);
    QFETCH(bool, replaced);
    QStringList lines;
    for (int i = 0; i < 200000; ++i)
        lines << QStringLiteral("line %1 of a long text").arg(i);
    // CR LF breaks: a slice that split one would make two lines of it.
    const QString text = lines.join(QStringLiteral("\r\n"));
    const QString shownWhole = lines.join(u'\n');
    toolkit::TextArea pane;
    int calls = 0;
    bool readOnlyBetween = true;
    const bool whole = pane.setText(text, [&] {
        readOnlyBetween = readOnlyBetween && pane.isReadOnly();
        if (++calls == stopAfter && replaced)
            pane.setText(QStringLiteral("other"));
        return calls != stopAfter;
    });
    QVERIFY(readOnlyBetween);
    QVERIFY(calls > 1);
    QVERIFY(!pane.isReadOnly());
    QTest::keyClick(pane.focusProxy(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(whole, stopAfter < 0);
    const QString shown = pane.Text().replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (replaced)
        QCOMPARE(shown, QStringLiteral("other"));
    else if (whole)
        QCOMPARE(shown, shownWhole);
    else
        QVERIFY(shown.size() < text.size() && shownWhole.startsWith(shown + u'\n'));
}

QTEST_MAIN(TstToolkit)
#include "tst_toolkit.moc"
