#include "App.h"
#include "Band.h"
#include "BevelButton.h"
#include "Canvas.h"
#include "DiffWin.h"
#include "InlineSpans.h"
#include "Label.h"
#include "PaneLines.h"
#include "SeqDiff.h"
#include "TextArea.h"
#include "Timer.h"

#include <QAbstractScrollArea>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <optional>

namespace {
int argc = 1;
char arg0[] = "tst_livecompare";
char* argv[] = {arg0, nullptr};

constexpr QRgb kGround = 0x99CCFF;
constexpr QRgb kBand = 0xFFCC00;
constexpr QRgb kCurrent = 0xFFAA00;

// 200 numbered lines a side. The right one rewrites lines 5, 12 and 60, lacks left lines 100
// and 101, and has two lines more before left line 190 (its own lines 188 and 189).
constexpr std::array<std::array<int, 5>, 2> kTops{{{5, 12, 60, 100, 190}, {5, 12, 60, 100, 188}}};
// Last line of each stretch; -1 where a side has none.
constexpr std::array<std::array<int, 5>, 2> kEnds{{{5, 12, 60, 101, -1}, {5, 12, 60, -1, 189}}};

QString text(int side)
{
    QStringList lines;
    for (int i = 0; i < 200; ++i) {
        const bool changed = side == 1 && (i == 5 || i == 12 || i == 60);
        if (side == 1 && i == 190)
            lines << QStringLiteral("new a") << QStringLiteral("new b");
        if (side == 0 || (i != 100 && i != 101))
            lines << (changed ? QStringLiteral("changed %1") : QStringLiteral("line %1")).arg(i);
    }
    return lines.join(u'\n');
}

// Lines drawn from a thousand, each side on its own: unrelated texts with many repeated lines,
// among the longest kinds to compare.
QString dense(int lines, quint32 seed)
{
    QRandomGenerator draw(seed);
    QStringList text;
    for (int i = 0; i < lines; ++i)
        text << QString::number(draw.bounded(1000));
    return text.join(u'\n');
}

// The records the panes' texts give now.
std::vector<SeqDiff::Difference> expected(const DiffWin* w)
{
    return SeqDiff::FindDifferences(*w->txtBox[0]->snapshot(), *w->txtBox[1]->snapshot());
}

void tick(DiffWin* w)
{
    emit w->Timer1->Action();
}

// The pause after a text change runs out, the polling timer ticks, and the comparison it
// started comes back.
void settle(DiffWin* w)
{
    emit w->Timer2->Action();
    tick(w);
    QTRY_VERIFY_WITH_TIMEOUT(w->resultIsCurrent(), 5000);
}

qint64 backdropKey(const DiffWin* w)
{
    return w->diffCanvas->Backdrop().image.cacheKey();
}

// One tick: whether it drew the indicator anew.
bool redraws(DiffWin* w)
{
    const qint64 before = backdropKey(w);
    tick(w);
    return backdropKey(w) != before;
}

// The window on our texts, the first difference current and drawn, the panes at these lines.
DiffWin* open(int left = 0, int right = 0)
{
    auto* w = &toolkit::implicitInstance<DiffWin>();
    w->Show();
    if (!QTest::qWaitForWindowExposed(w))
        return nullptr;
    w->txtBox[0]->setText(text(0));
    w->txtBox[1]->setText(text(1));
    settle(w);
    QTest::mouseClick(w->TopBtn, Qt::LeftButton);
    tick(w);
    w->txtBox[0]->setVerticalScrollPosition(left);
    w->txtBox[1]->setVerticalScrollPosition(right);
    tick(w);
    return w;
}

QScrollBar* verticalBar(const toolkit::TextArea* pane)
{
    return qobject_cast<QAbstractScrollArea*>(pane->focusProxy())->verticalScrollBar();
}

// Lines beyond a pane's end stand for its end.
QList<int> clamped(const DiffWin* w, QList<int> lines)
{
    for (int s = 0; s < 2; ++s)
        lines[s] = std::min(lines[s], verticalBar(w->txtBox[s])->maximum());
    return lines;
}

QList<int> scrolled(const DiffWin* w)
{
    return {w->txtBox[0]->VerticalScrollPosition(), w->txtBox[1]->VerticalScrollPosition()};
}

QRgb pixel(const DiffWin* w, QPoint p)
{
    const QImage& image = w->diffCanvas->Backdrop().image;
    const qreal r = image.devicePixelRatio();
    return image.pixel(int(p.x() * r), int(p.y() * r)) & 0xFFFFFF;
}

// Difference i's band from where the panes show its lines, in indicator rows; nothing when a
// stretch is not wholly in view.
std::optional<indicator::Band> shownBand(const DiffWin* w, int i)
{
    indicator::Band band;
    for (int s = 0; s < 2; ++s) {
        const auto* pane = w->txtBox[s];
        const QRect first = pane->lineRect(kTops[s][i]);
        const QRect last = pane->lineRect(std::max(kEnds[s][i], kTops[s][i]));
        if (first.top() < pane->TextTop() || last.bottom() >= pane->TextTop() + pane->TextHeight())
            return std::nullopt;
        const int dy = pane->mapTo(w, QPoint()).y() - w->diffCanvas->mapTo(w, QPoint()).y();
        const int bottom = kEnds[s][i] < 0 ? first.top() : last.bottom() + 1;
        band.side[s] = {kTops[s][i], kEnds[s][i], first.top() + dy, bottom + dy};
    }
    return band;
}

// Midway between a band's edges at column x.
QPoint inside(const DiffWin* w, const indicator::Band& b, int x)
{
    const double f = double(x) / w->diffCanvas->width();
    const double upper = b.side[0].top + (b.side[1].top - b.side[0].top) * f;
    const double lower = b.side[0].bottom + (b.side[1].bottom - b.side[0].bottom) * f;
    return {x, int((upper + lower) / 2)};
}

// Difference i's lines marked in both panes; none on a side without lines, where the mark
// stands before the line that follows the missing ones.
bool highlights(const DiffWin* w, int i)
{
    for (int s = 0; s < 2; ++s) {
        const toolkit::TextArea* pane = w->txtBox[s];
        const int count = kEnds[s][i] < 0 ? 0 : kEnds[s][i] - kTops[s][i] + 1;
        if (pane->highlightFirst() != kTops[s][i] || pane->highlightCount() != count)
            return false;
    }
    return true;
}

QList<int> selection(const toolkit::TextArea* pane)
{
    return {pane->SelectionStart(), pane->SelectionLength()};
}

// A line with its changed parts in brackets.
QString bracketed(const QString& line, const std::vector<inlinespans::Columns>& parts)
{
    QString out = line;
    for (auto c = parts.rbegin(); c != parts.rend(); ++c)
        out.insert(c->to, u']').insert(c->from, u'[');
    return out;
}

// Every band fully in view is drawn where the panes show its lines, down to its last row, and
// nothing is drawn beside rows of the panes that show no text.
bool bandsMatchThePanes(const DiffWin* w, int current)
{
    const toolkit::TextArea* pane = w->txtBox[0];
    const int textBottom = pane->TextTop() + pane->TextHeight() + pane->mapTo(w, QPoint()).y()
        - w->diffCanvas->mapTo(w, QPoint()).y();
    for (int y = textBottom; y < w->diffCanvas->height(); ++y) {
        for (int x = 0; x < w->diffCanvas->width(); x += 4) {
            if (pixel(w, {x, y}) != kGround)
                return false;
        }
    }
    for (int i = 0; i < 5; ++i) {
        const auto shown = shownBand(w, i);
        if (!shown)
            continue;
        const QRgb colour = i == current ? kCurrent : kBand;
        const int column = kEnds[0][i] < 0 ? w->diffCanvas->width() - 8 : 8;
        const int edge = kEnds[0][i] < 0 ? w->diffCanvas->width() - 1 : 0;
        const auto& side = shown->side[kEnds[0][i] < 0 ? 1 : 0];
        if (pixel(w, inside(w, *shown, column)) != colour
            || pixel(w, {edge, side.bottom - 1}) != colour
            || pixel(w, {edge, side.bottom}) == colour)
            return false;
    }
    return true;
}

void wheel(QWidget* target, QPoint angle)
{
    const QPointF at(target->width() / 2, target->height() / 2);
    QWheelEvent e(at, target->mapToGlobal(at), {}, angle, Qt::NoButton, Qt::NoModifier,
        Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &e);
}

} // namespace

class TstLiveCompare : public QObject
{
    Q_OBJECT
private slots:
    void cleanup();
    void firstTickMakesTheFirstDifferenceCurrent();
    void typingWaitsForThePause();
    void equalTextsShowAllSame();
    void aResultForOldTextsIsDropped_data();
    void aResultForOldTextsIsDropped();
    void typingDuringALongComparison();
    void choosingADifference_data();
    void choosingADifference();
    void scrolling_data();
    void scrolling();
    void sameOnlyWhenTheLinesAre_data();
    void sameOnlyWhenTheLinesAre();
    void changedParts_data();
    void changedParts();
};

void TstLiveCompare::cleanup()
{
    toolkit::Application::deleteWindows();
}

void TstLiveCompare::firstTickMakesTheFirstDifferenceCurrent()
{
    auto* w = &toolkit::implicitInstance<DiffWin>();
    w->Show();
    QCOMPARE(w->curDiffNum, -1);
    w->txtBox[0]->setText(text(0));
    w->txtBox[1]->setText(text(1));
    QTRY_VERIFY_WITH_TIMEOUT(w->resultIsCurrent() && !w->onlyFirst, 3000);
    QCOMPARE(w->curDiffNum, 0);
    QCOMPARE(w->curLine, kTops[0][0]);
    QVERIFY(highlights(w, 0));
}

void TstLiveCompare::typingWaitsForThePause()
{
    DiffWin* w = open();
    QVERIFY(w);
    auto* pane = w->txtBox[0];
    pane->setFocus();
    pane->select(pane->CharacterPosition(40) - 1, 0);
    const SeqDiff::Difference* before = w->diffs.data();
    int comparisons = 0;
    QObject probe;
    connect(w->Timer1, &toolkit::Timer::Action, &probe, [&] {
        comparisons += w->diffs.data() != before;
        before = w->diffs.data();
    });

    QTest::keyClick(pane->focusProxy(), Qt::Key_E);
    QSignalSpy ticks(w->Timer1, &toolkit::Timer::Action);
    QSignalSpy pauses(w->Timer2, &toolkit::Timer::Action);
    // Typed at a user's pace, slower than the polling but faster than the pause.
    QTest::keyClicks(pane->focusProxy(), QStringLiteral("dit"), Qt::NoModifier, 40);
    QCOMPARE(ticks.count(), 0);
    QVERIFY(pauses.wait(3000));
    QCOMPARE(comparisons, 0);

    QTRY_COMPARE_WITH_TIMEOUT(comparisons, 1, 2000);
    QCOMPARE(w->topsA, (std::vector<std::int64_t>{5, 12, 40, 60, 100, 190}));
    QCOMPARE(w->DiffTotal->text(), QStringLiteral("6"));
    QTRY_VERIFY_WITH_TIMEOUT(ticks.count() >= 3, 3000);
    QCOMPARE(comparisons, 1);
    QCOMPARE(pauses.count(), 1);

    // The redraws after the pause leave the keys where the user was typing, and the marks of
    // the current difference are no selection that a key would replace.
    QVERIFY(highlights(w, 0));
    QCOMPARE(QApplication::focusWidget(), pane->focusProxy());
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("ed"));
    QCOMPARE(pane->Lines().at(40), QStringLiteral("editedline 40"));
    QCOMPARE(selection(pane), (QList{pane->CharacterPosition(40) + 5, 0}));
}

void TstLiveCompare::equalTextsShowAllSame()
{
    DiffWin* w = open();
    QVERIFY(w);
    QVERIFY(w->txtBox[0]->highlightFirst() >= 0);
    w->txtBox[1]->setText(text(0));
    settle(w);
    QVERIFY(w->diffs.empty());
    QCOMPARE(w->DiffTotal->text(), QStringLiteral("0"));
    QVERIFY(w->SameFilm->isVisible());
    QCOMPARE(w->SameFilm->Caption(), QStringLiteral("All same!"));
    QCOMPARE(w->txtBox[0]->highlightFirst(), -1);
    QCOMPARE(w->txtBox[1]->highlightFirst(), -1);
    const QImage& image = w->diffCanvas->Backdrop().image;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixel(x, y) & 0xFFFFFF, kGround);

    // Bottom takes each pane to its end with none current; Next and Prev have no target.
    for (QWidget* button : {w->BtmBtn, w->NextBtn, w->PrevBtn})
        QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(w->curDiffNum, -1);
    QCOMPARE(w->curLine, kTops[0][0]);
    QVERIFY(scrolled(w)[0] > 0);
    QCOMPARE(scrolled(w), clamped(w, {999, 999}));

    w->txtBox[1]->setText(text(1));
    settle(w);
    QVERIFY(!w->SameFilm->isVisible());
}

void TstLiveCompare::aResultForOldTextsIsDropped_data()
{
    QTest::addColumn<QList<int>>("edited"); // the panes edited while the comparison runs
    QTest::newRow("left") << QList{0};
    QTest::newRow("right") << QList{1};
    QTest::newRow("both") << QList{0, 1};
}

void TstLiveCompare::aResultForOldTextsIsDropped()
{
    QFETCH(QList<int>, edited);
    DiffWin* w = open();
    QVERIFY(w);
    QSignalSpy taken(w, &DiffWin::compared);
    // Equal texts go to be compared; before their records can come back, they are edited.
    w->txtBox[0]->setText(text(1));
    emit w->Timer2->Action();
    tick(w);
    for (int s : edited) {
        auto* pane = w->txtBox[s];
        pane->select(pane->CharacterPosition(30 + 20 * s) - 1, 0);
        QTest::keyClick(pane->focusProxy(), Qt::Key_E);
    }
    settle(w);
    QCOMPARE(taken.count(), 1);
    QVERIFY(w->diffs == expected(w));
    QCOMPARE(w->diffs.size(), std::size_t(edited.size() == 2 ? 2 : 1));
    QCOMPARE(w->DiffTotal->text(), QString::number(w->diffs.size()));
    QVERIFY(!w->SameFilm->isVisible());
}

void TstLiveCompare::typingDuringALongComparison()
{
    DiffWin* w = open();
    QVERIFY(w);
    const std::vector<SeqDiff::Difference> before = w->diffs;
    QSignalSpy taken(w, &DiffWin::compared);
    w->txtBox[0]->setText(dense(150000, 1));
    w->txtBox[1]->setText(dense(150000, 2));
    const qint64 drawn = backdropKey(w);
    emit w->Timer2->Action();
    tick(w);

    // While it runs the window keeps answering; the last bands stay, and neither the counter
    // nor "All same!" says anything about the new texts.
    QTRY_COMPARE_WITH_TIMEOUT(w->DiffTotal->text(), QStringLiteral("…"), 5000);
    QVERIFY(!w->resultIsCurrent());
    QVERIFY(w->diffs == before);
    QCOMPARE(backdropKey(w), drawn);
    QVERIFY(!w->SameFilm->isVisible());

    auto* pane = w->txtBox[0];
    pane->setFocus();
    pane->select(0, int(pane->TextLength()));
    QTest::keyClicks(pane->focusProxy(), QStringLiteral("4"));
    settle(w);
    QCOMPARE(taken.count(), 1);
    QVERIFY(w->diffs == expected(w));
    QCOMPARE(w->DiffTotal->text(), QString::number(w->diffs.size()));
}

void TstLiveCompare::choosingADifference_data()
{
    QTest::addColumn<QList<int>>("from"); // first shown lines
    QTest::addColumn<QString>("presses"); // Top, Prev, Next, Btm
    QTest::addColumn<int>("band"); // then a click on this difference's band, -1 for none
    QTest::addColumn<int>("x"); // at this column
    QTest::addColumn<QList<int>>("to"); // first shown lines; beyond a pane's end: at its end
    QTest::addColumn<int>("current");
    const QList<int> top{0, 0};
    // Next and Prev show the difference 9 lines below the top of each pane.
    QTest::newRow("next") << top << "N" << -1 << 0 << QList{3, 3} << 1;
    QTest::newRow("next stays at the last") << top << "NNNNNN" << -1 << 0 << QList{181, 179} << 4;
    QTest::newRow("prev stays at the first") << top << "P" << -1 << 0 << top << 0;
    QTest::newRow("prev") << top << "NNNP" << -1 << 0 << QList{51, 51} << 2;
    QTest::newRow("bottom") << top << "NB" << -1 << 0 << QList{999, 999} << 4;
    QTest::newRow("prev from the bottom") << top << "BP" << -1 << 0 << QList{91, 91} << 3;
    QTest::newRow("top") << top << "NNNT" << -1 << 0 << top << 0;
    QTest::newRow("click in view") << QList{55, 55} << "" << 2 << 27 << QList{55, 55} << 2;
    // Left: far below the top, it comes up to twice the offset of 9 lines; the right pane shows
    // its stretch two lines higher and stays.
    QTest::newRow("click far below") << QList{170, 170} << "" << 4 << 27 << QList{172, 170} << 4;
    // Left: 60 - 9 / 4.0 truncated; the right pane shows it and stays.
    QTest::newRow("click above the view") << QList{65, 50} << "" << 2 << 40 << QList{57, 50} << 2;
    QTest::newRow("click on the left-most column misses") << top << "" << 1 << 0 << top << 0;
}

void TstLiveCompare::choosingADifference()
{
    QFETCH(QList<int>, from);
    QFETCH(QString, presses);
    QFETCH(int, band);
    QFETCH(int, x);
    QFETCH(QList<int>, to);
    QFETCH(int, current);
    DiffWin* w = open(from[0], from[1]);
    QVERIFY(w);
    QCOMPARE(w->txtBox[0]->height(), 398);
    w->txtBox[1]->select(3, 5);
    const QHash<QChar, QWidget*> buttons{
        {u'T', w->TopBtn}, {u'P', w->PrevBtn}, {u'N', w->NextBtn}, {u'B', w->BtmBtn}};
    for (QChar c : presses)
        QTest::mouseClick(buttons.value(c), Qt::LeftButton);
    if (band >= 0) {
        const indicator::Band b
            = indicator::bandOf(w->diffs[band], PaneLines(*w->txtBox[0]), PaneLines(*w->txtBox[1]));
        QVERIFY2(b.side[1].bottom - b.side[1].top > 4, "the band must show");
        const qint64 drawn = backdropKey(w);
        QTest::mousePress(w->diffCanvas, Qt::LeftButton, {}, inside(w, b, x));
        QVERIFY(backdropKey(w) != drawn); // drawn again at once, hit or not
    }
    QCOMPARE(w->curDiffNum, current);
    QCOMPARE(w->curLine, kTops[0][current]);
    QCOMPARE(w->dirty, band < 0 || band == current);
    QCOMPARE(scrolled(w), clamped(w, to));

    tick(w);
    for (int i = 0; i < 5; ++i) {
        const auto shown = shownBand(w, i);
        QVERIFY(shown || i != current);
        // Where the band is thick and its number is not drawn.
        const int column = kEnds[0][i] < 0 ? w->diffCanvas->width() - 8 : 8;
        if (shown)
            QCOMPARE(pixel(w, inside(w, *shown, column)), i == current ? kCurrent : kBand);
    }
    QVERIFY(highlights(w, current));
    QCOMPARE(selection(w->txtBox[1]), (QList{3, 5}));
    // A rewritten line shows its new word against the old one ("line" and "changed"); lines
    // without a partner have no parts marked.
    const bool paired = kEnds[0][current] >= 0 && kEnds[1][current] >= 0;
    for (int s = 0; s < 2; ++s) {
        const toolkit::LineSpan word{kTops[s][current], 0, s == 0 ? 4 : 7};
        const auto marked = [&] {
            const std::vector<toolkit::LineSpan> spans = w->txtBox[s]->spans();
            QList<toolkit::LineSpan> on(spans.begin(), spans.end());
            on.removeIf([&](const toolkit::LineSpan& m) {
                return m.line < kTops[s][current] || m.line > kEnds[s][current];
            });
            return on;
        };
        QTRY_COMPARE(marked(), paired ? QList{word} : QList<toolkit::LineSpan>());
    }
}

void TstLiveCompare::scrolling_data()
{
    QTest::addColumn<QString>("over"); // the indicator, the right pane or its scroll bar's arrow
    QTest::addColumn<QList<int>>("from"); // first shown lines; beyond a pane's end: at its end
    QTest::addColumn<QPoint>("angle"); // eighths of a degree; negative y towards the end
    QTest::addColumn<int>("events"); // how many times the angle is sent or the arrow pressed
    QTest::addColumn<QList<int>>("to");
    const QString canvas = QStringLiteral("indicator");
    const QPoint down(0, -120), up(0, 120);
    QTest::newRow("one notch down") << canvas << QList{10, 10} << down << 1 << QList{13, 13};
    QTest::newRow("two notches up") << canvas << QList{10, 20} << 2 * up << 1 << QList{4, 14};
    QTest::newRow("stops at the top") << canvas << QList{1, 10} << up << 1 << QList{0, 7};
    QTest::newRow("stops at the end") << canvas << QList{999, 10} << down << 1 << QList{999, 13};
    QTest::newRow("sideways") << canvas << QList{10, 10} << QPoint(120, 0) << 1 << QList{10, 10};
    // A touchpad or a smooth wheel sends a notch in small parts.
    QTest::newRow("a notch in parts") << canvas << QList{10, 10} << down / 8 << 8 << QList{13, 13};
    QTest::newRow("wheel over one pane") << QStringLiteral("pane") << QList{0, 0} << 2 * down << 1
                                         << QList{0, 2 * QApplication::wheelScrollLines()};
    QTest::newRow("scroll bar") << QStringLiteral("bar") << QList{0, 0} << down << 2 << QList{0, 2};
    // Keys scroll the pane they are typed in, and the bands follow at the next tick.
    QTest::newRow("ctrl end key") << QStringLiteral("key") << QList{10, 10} << QPoint() << 1
                                  << QList{10, 999};
}

void TstLiveCompare::scrolling()
{
    QFETCH(QString, over);
    QFETCH(QList<int>, from);
    QFETCH(QPoint, angle);
    QFETCH(int, events);
    QFETCH(QList<int>, to);
    DiffWin* w = open(from[0], from[1]);
    QVERIFY(w);
    const SeqDiff::Difference* records = w->diffs.data();
    w->txtBox[0]->select(20, 7);
    for (int i = 0; i < events; ++i) {
        if (over == u"bar")
            verticalBar(w->txtBox[1])->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        else if (over == u"key")
            QTest::keyClick(w->txtBox[1]->focusProxy(), Qt::Key_End, Qt::ControlModifier);
        else
            wheel(over == u"pane" ? w->txtBox[1]->viewport() : w->diffCanvas, angle);
    }
    QCOMPARE(scrolled(w), clamped(w, to));
    const bool dirty = over != u"bar" && over != u"key" && angle.y() != 0;
    QCOMPARE(w->dirty, dirty);

    // A comparison resets what the timer saw, so the tick after it draws once more.
    const bool moved = to != from;
    QCOMPARE(redraws(w), moved || dirty);
    QCOMPARE(redraws(w), moved && dirty);
    QVERIFY(!redraws(w));
    QCOMPARE((QList{w->scrolTop[0], w->scrolTop[1]}), scrolled(w));
    QVERIFY(bandsMatchThePanes(w, 0));
    QCOMPARE(selection(w->txtBox[0]), (QList{20, 7}));
    // The texts have not changed, so the records of their comparison are the ones made before.
    QCOMPARE(w->diffs.data(), records);
}

void TstLiveCompare::sameOnlyWhenTheLinesAre_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<bool>("same");
    QTest::newRow("line ends differ") << "a\r\nb\rc"
                                      << "a\nb\nc" << true;
    QTest::newRow("frame marks are characters") << QString::fromUtf16(u"a\uFDD0b\uFDD1") << "a\nb\n"
                                                << false;
    QTest::newRow("separators are characters")
        << QString::fromUtf16(u"a\u2029b\u2028c") << "a\nb\nc" << false;
    QTest::newRow("NUL is a character") << QString::fromUtf16(u"a\0b", 3) << "ab" << false;
}

void TstLiveCompare::sameOnlyWhenTheLinesAre()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(bool, same);
    DiffWin* w = open();
    QVERIFY(w);
    w->txtBox[0]->setText(left);
    w->txtBox[1]->setText(right);
    settle(w);
    QCOMPARE(w->SameFilm->isVisible(), same);
    QCOMPARE(w->diffs.empty(), same);
}

// Each side with its changed parts in brackets; without them, the line compared.
void TstLiveCompare::changedParts_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::newRow("a word") << QStringLiteral("[line] 5") << QStringLiteral("[changed] 5");
    QTest::newRow("an argument more")
        << QStringLiteral("call(x)") << QStringLiteral("call(x[, y])");
    QTest::newRow("kanji and kana one by one")
        << QStringLiteral("今日は[雨]です") << QStringLiteral("今日は[晴れ]です");
    QTest::newRow("outside the basic plane, whole")
        << QStringLiteral("x [\U0001F600] y") << QStringLiteral("x [\U0001F603] y");
    QTest::newRow("a combining mark stays with its letter")
        << QStringLiteral("[cafe\u0301] au") << QStringLiteral("[cafe] au");
    QTest::newRow("one side empty") << QString() << QStringLiteral("[abc]");
    const QString longest = QStringLiteral("a ").repeated(inlinespans::kLongest / 2 - 1);
    QTest::newRow("as long as is compared")
        << longest + QStringLiteral("[bb]") << longest + QStringLiteral("[cc]");
    QTest::newRow("longer, marked whole")
        << u'[' + longest + QStringLiteral("bbb]") << u'[' + longest + QStringLiteral("ccc]");
}

void TstLiveCompare::changedParts()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    const std::array<QString, 2> marked{left, right};
    std::array<QString, 2> line;
    for (int s = 0; s < 2; ++s)
        line[s] = QString(marked[s]).remove(u'[').remove(u']');
    const auto view = [](const QString& s) {
        return std::u16string_view(
            reinterpret_cast<const char16_t*>(s.utf16()), std::size_t(s.size()));
    };
    const inlinespans::Changed found = inlinespans::changed(view(line[0]), view(line[1]));
    for (int s = 0; s < 2; ++s)
        QCOMPARE(bracketed(line[s], found[s]), marked[s]);
}

int main(int, char**)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    App app(argc, argv);
    TstLiveCompare test;
    return QTest::qExec(&test);
}

#include "tst_livecompare.moc"
