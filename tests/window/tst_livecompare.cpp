#include "App.h"
#include "Band.h"
#include "BevelButton.h"
#include "Canvas.h"
#include "DiffWin.h"
#include "Label.h"
#include "LinePane.h"
#include "PaneLines.h"
#include "TextArea.h"
#include "Timer.h"
#include "globals.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <optional>

using toolkit::TextArea;

namespace {
int argc = 1;
char arg0[] = "tst_livecompare";
char* argv[] = {arg0, nullptr};

constexpr QRgb kGround = 0x99CCFF;
constexpr QRgb kBand = 0xFFCC00;
constexpr QRgb kCurrent = 0xFFAA00;

// 200 numbered lines a side. The right one rewrites lines 5, 12 and 60, lacks left lines 100
// and 101, and has two lines more before left line 190 (its own lines 188 and 189).
constexpr int kLines = 200;
constexpr std::array<std::array<int, 5>, 2> kTops{{{5, 12, 60, 100, 190}, {5, 12, 60, 100, 188}}};
// Last line of each stretch; -1 where a side has none.
constexpr std::array<std::array<int, 5>, 2> kEnds{{{5, 12, 60, 101, -1}, {5, 12, 60, -1, 189}}};
constexpr int kOffset = 9; // lines above a difference after Next and Prev at pane height 398

QString leftText()
{
    QStringList l;
    for (int i = 0; i < kLines; ++i)
        l << QStringLiteral("line %1").arg(i);
    return l.join(u'\n');
}

QString rightText()
{
    QStringList r;
    for (int i = 0; i < kLines; ++i) {
        if (i == 100 || i == 101)
            continue;
        if (i == 190)
            r << QStringLiteral("new a") << QStringLiteral("new b");
        r << (i == 5 || i == 12 || i == 60 ? QStringLiteral("changed %1")
                                           : QStringLiteral("line %1"))
                 .arg(i);
    }
    return r.join(u'\n');
}

void tick(DiffWin* w)
{
    emit w->Timer1->Action();
}

// The pause after a text change runs out, then the polling timer ticks.
void settle(DiffWin* w)
{
    emit w->Timer2->Action();
    tick(w);
}

// The window on our texts, at their top, the first difference current and drawn.
DiffWin* openOn(const QString& left, const QString& right)
{
    auto* w = &toolkit::implicitInstance<DiffWin>();
    w->Show();
    if (!QTest::qWaitForWindowExposed(w))
        return nullptr;
    w->txtBox[0]->setText(left);
    w->txtBox[1]->setText(right);
    settle(w);
    QTest::mouseClick(w->TopBtn, Qt::LeftButton);
    tick(w);
    return w;
}

int paneEnd(const TextArea* pane)
{
    return pane->verticalScrollBar()->maximum();
}

qint64 backdropKey(const DiffWin* w)
{
    return w->diffCanvas->Backdrop().image.cacheKey();
}

QRgb pixel(const DiffWin* w, int x, int y)
{
    const QImage& image = w->diffCanvas->Backdrop().image;
    const qreal r = image.devicePixelRatio();
    return image.pixel(int(x * r), int(y * r)) & 0xFFFFFF;
}

// The first and one past the last pixel row of a line as the pane shows it, in indicator rows;
// nothing when the line is not wholly in view.
std::optional<std::pair<int, int>> lineRows(const DiffWin* w, int side, int line)
{
    const TextArea* pane = w->txtBox[side];
    const QRect r = pane->cursorRect(QTextCursor(pane->document()->findBlockByNumber(line)));
    if (r.top() < 0 || r.bottom() >= pane->viewport()->height())
        return std::nullopt;
    const int top
        = pane->viewport()->mapTo(w, r.topLeft()).y() - w->diffCanvas->mapTo(w, QPoint()).y();
    return std::pair{top, top + r.height()};
}

// Difference i's band from where the panes show its lines; nothing when a stretch is out of view.
std::optional<indicator::Band> shownBand(const DiffWin* w, int i)
{
    indicator::Band band;
    for (int s = 0; s < 2; ++s) {
        const auto first = lineRows(w, s, kTops[s][i]);
        const auto last = lineRows(w, s, std::max(kEnds[s][i], kTops[s][i]));
        if (!first || !last)
            return std::nullopt;
        band.side[s] = {
            kTops[s][i], kEnds[s][i], first->first, kEnds[s][i] < 0 ? first->first : last->second};
    }
    return band;
}

// Midway between a band's edges at column x.
QPoint inside(const indicator::Band& b, int x, int width)
{
    const double f = double(x) / width;
    const double upper = b.side[0].top + (b.side[1].top - b.side[0].top) * f;
    const double lower = b.side[0].bottom + (b.side[1].bottom - b.side[0].bottom) * f;
    return {x, int((upper + lower) / 2)};
}

int lineStart(const TextArea* pane, int line)
{
    return line < pane->LineCount() ? pane->document()->findBlockByNumber(line).position()
                                    : pane->document()->characterCount() - 1;
}

// From the start of the first line to the start of the line after the last; a caret alone for
// a side without lines.
bool selects(const TextArea* pane, int first, int last)
{
    const int length = last < 0 ? 0 : lineStart(pane, last + 1) - lineStart(pane, first);
    return pane->SelectionStart() == lineStart(pane, first) && pane->SelectionLength() == length;
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
    void paintsBandsCurrentAndGround();
    void equalTextsShowAllSame();
    void navigation_data();
    void navigation();
    void clickOnTheIndicator_data();
    void clickOnTheIndicator();
    void wheelOverTheIndicator_data();
    void wheelOverTheIndicator();
    void scrollingOnePane_data();
    void scrollingOnePane();
};

void TstLiveCompare::cleanup()
{
    toolkit::Application::deleteWindows();
}

void TstLiveCompare::firstTickMakesTheFirstDifferenceCurrent()
{
    auto* w = &toolkit::implicitInstance<DiffWin>();
    w->Show();
    // Opening compares the samples but chooses nothing yet.
    QVERIFY(!w->diffs.empty());
    QCOMPARE(w->DiffTotal->text(), QString::number(w->diffs.size()));
    QVERIFY(!w->SameFilm->isVisible());
    QCOMPARE(w->curDiffNum, -1);
    QSignalSpy ticks(w->Timer1, &toolkit::Timer::Action);
    QVERIFY(ticks.wait(2000));
    QCOMPARE(w->curDiffNum, 0);
    QCOMPARE(w->curDiffNum0, 0);
    const SeqDiff::Difference& first = w->diffs.front();
    QCOMPARE(w->curLine, int(first.DeletedStart()));
    QVERIFY(selects(w->txtBox[0], first.DeletedStart(), first.DeletedEnd()));
    QVERIFY(selects(w->txtBox[1], first.AddedStart(), first.AddedEnd()));

    // Nothing changed: the next tick neither compares nor draws.
    const qint64 drawn = backdropKey(w);
    const SeqDiff::Difference* compared = w->diffs.data();
    tick(w);
    QCOMPARE(backdropKey(w), drawn);
    QCOMPARE(w->diffs.data(), compared);
    QCOMPARE(w->curDiffNum0, 0);
}

void TstLiveCompare::typingWaitsForThePause()
{
    DiffWin* w = openOn(leftText(), rightText());
    QVERIFY(w);
    TextArea* pane = w->txtBox[0];
    pane->setFocus();
    pane->setTextCursor(QTextCursor(pane->document()->findBlockByNumber(40)));
    const SeqDiff::Difference* before = w->diffs.data();
    int comparisons = 0;
    QObject probe;
    connect(w->Timer1, &toolkit::Timer::Action, &probe, [&] {
        comparisons += w->diffs.data() != before;
        before = w->diffs.data();
    });

    QTest::keyClick(pane, Qt::Key_E);
    QCOMPARE(w->Timer1->Mode(), 0);
    QCOMPARE(w->Timer2->Mode(), 1);
    QVERIFY(w->dirty);
    QSignalSpy ticks(w->Timer1, &toolkit::Timer::Action);
    QSignalSpy pauses(w->Timer2, &toolkit::Timer::Action);
    // Typed at a user's pace, slower than the polling but faster than the pause.
    QTest::keyClicks(pane, QStringLiteral("dit"), Qt::NoModifier, 40);
    QCOMPARE(ticks.count(), 0);
    QCOMPARE(pauses.count(), 0);
    QVERIFY(pauses.wait(3000));
    QCOMPARE(w->Timer1->Mode(), 2);
    QCOMPARE(comparisons, 0);
    QCOMPARE(w->diffs.size(), size_t(5));

    QVERIFY(ticks.wait(2000));
    QCOMPARE(comparisons, 1);
    QCOMPARE(w->topsA, (std::vector<std::int64_t>{5, 12, 40, 60, 100, 190}));
    QCOMPARE(w->DiffTotal->text(), QStringLiteral("6"));
    QTRY_VERIFY_WITH_TIMEOUT(ticks.count() >= 3, 3000);
    QCOMPARE(comparisons, 1);
    QCOMPARE(pauses.count(), 1);
}

void TstLiveCompare::paintsBandsCurrentAndGround()
{
    DiffWin* w = openOn(leftText(), rightText());
    QVERIFY(w);
    QCOMPARE(w->DiffTotal->text(), QStringLiteral("5"));
    QVERIFY(!w->SameFilm->isVisible());
    const auto current = shownBand(w, 0);
    const auto other = shownBand(w, 1);
    QVERIFY(current && other);
    const int right = w->diffCanvas->width() - 8;
    for (int x : {8, right}) {
        const QPoint c = inside(*current, x, w->diffCanvas->width());
        const QPoint o = inside(*other, x, w->diffCanvas->width());
        QCOMPARE(pixel(w, c.x(), c.y()), kCurrent);
        QCOMPARE(pixel(w, o.x(), o.y()), kBand);
        // The equal lines between the two.
        const int between = (current->side[0].bottom + other->side[0].top) / 2;
        QCOMPARE(pixel(w, x, between), kGround);
    }
}

void TstLiveCompare::equalTextsShowAllSame()
{
    DiffWin* w = openOn(leftText(), rightText());
    QVERIFY(w);
    QVERIFY(w->txtBox[0]->SelectionLength() > 0);
    w->txtBox[1]->setText(leftText());
    settle(w);
    QVERIFY(w->diffs.empty());
    QCOMPARE(w->DiffTotal->text(), QStringLiteral("0"));
    QVERIFY(w->SameFilm->isVisible());
    QCOMPARE(w->SameFilm->Caption(), QStringLiteral("All same!"));
    QCOMPARE(w->txtBox[0]->SelectionLength(), 0);
    QCOMPARE(w->txtBox[1]->SelectionLength(), 0);
    const QImage& image = w->diffCanvas->Backdrop().image;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixel(x, y) & 0xFFFFFF, kGround);

    // To the bottom with nothing to choose: each pane at its end, none current.
    QTest::mouseClick(w->BtmBtn, Qt::LeftButton);
    QCOMPARE(w->curDiffNum, -1);
    QCOMPARE(w->curLine, kTops[0][0]);
    for (const TextArea* pane : w->txtBox) {
        QVERIFY(paneEnd(pane) > 0);
        QCOMPARE(pane->VerticalScrollPosition(), paneEnd(pane));
    }
    tick(w);
    // Next and Prev have no target now; they must not move anything.
    QTest::mouseClick(w->NextBtn, Qt::LeftButton);
    QTest::mouseClick(w->PrevBtn, Qt::LeftButton);
    QCOMPARE(w->curDiffNum, -1);
    QCOMPARE(w->txtBox[0]->VerticalScrollPosition(), paneEnd(w->txtBox[0]));
    tick(w);
    QVERIFY(w->SameFilm->isVisible());

    w->txtBox[1]->setText(rightText());
    settle(w);
    QVERIFY(!w->SameFilm->isVisible());
}

void TstLiveCompare::navigation_data()
{
    QTest::addColumn<QString>("presses"); // Top, Prev, Next, Btm
    QTest::addColumn<int>("index");
    QTest::newRow("next") << "N" << 1;
    QTest::newRow("next twice") << "NN" << 2;
    QTest::newRow("next to the last") << "NNNN" << 4;
    QTest::newRow("next stays at the last") << "NNNNNN" << 4;
    QTest::newRow("prev stays at the first") << "P" << 0;
    QTest::newRow("prev") << "NNNP" << 2;
    QTest::newRow("bottom") << "NB" << 4;
    QTest::newRow("prev from the bottom") << "BP" << 3;
    QTest::newRow("top") << "NNNT" << 0;
}

void TstLiveCompare::navigation()
{
    QFETCH(QString, presses);
    QFETCH(int, index);
    DiffWin* w = openOn(leftText(), rightText());
    QVERIFY(w);
    QCOMPARE(w->txtBox[0]->height(), 398);
    const QHash<QChar, QWidget*> buttons{
        {u'T', w->TopBtn}, {u'P', w->PrevBtn}, {u'N', w->NextBtn}, {u'B', w->BtmBtn}};
    for (QChar c : presses)
        QTest::mouseClick(buttons.value(c), Qt::LeftButton);

    QCOMPARE(w->curDiffNum, index);
    QCOMPARE(w->curLine, kTops[0][index]);
    QVERIFY(w->dirty);
    for (int s = 0; s < 2; ++s) {
        const TextArea* pane = w->txtBox[s];
        const int expected = presses.endsWith(u'T') ? 0
            : presses.endsWith(u'B')                ? paneEnd(pane)
                                     : std::clamp(kTops[s][index] - kOffset, 0, paneEnd(pane));
        QCOMPARE(pane->VerticalScrollPosition(), expected);
    }

    tick(w);
    QVERIFY(!w->dirty);
    QCOMPARE(w->curDiffNum0, index);
    for (int i = 0; i < 5; ++i) {
        const auto band = shownBand(w, i);
        QVERIFY(band || i != index);
        if (band) {
            // Where the band is thick and its number is not drawn.
            const int x = kEnds[0][i] < 0 ? w->diffCanvas->width() - 8 : 8;
            const QPoint p = inside(*band, x, w->diffCanvas->width());
            QCOMPARE(pixel(w, p.x(), p.y()), i == index ? kCurrent : kBand);
        }
    }
    QVERIFY(selects(w->txtBox[0], kTops[0][index], kEnds[0][index]));
    QVERIFY(selects(w->txtBox[1], kTops[1][index], kEnds[1][index]));
}

void TstLiveCompare::clickOnTheIndicator_data()
{
    QTest::addColumn<int>("from0");
    QTest::addColumn<int>("from1");
    QTest::addColumn<int>("target"); // a difference, or -1 for the ground below line 8
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("to0");
    QTest::addColumn<int>("to1");
    QTest::addColumn<bool>("hit");
    QTest::newRow("band in view") << 55 << 55 << 2 << 27 << 55 << 55 << true;
    QTest::newRow("band far below the top comes up")
        << 40 << 40 << 2 << 27 << 60 - 2 * kOffset << 60 - 2 * kOffset << true;
    // 60 - 9 / 4.0 truncated; the right pane shows it and stays.
    QTest::newRow("above the view on the left") << 65 << 50 << 2 << 40 << 57 << 50 << true;
    QTest::newRow("ground between bands") << 0 << 0 << -1 << 27 << 0 << 0 << false;
    QTest::newRow("left-most column") << 0 << 0 << 1 << 0 << 0 << 0 << false;
}

void TstLiveCompare::clickOnTheIndicator()
{
    QFETCH(int, from0);
    QFETCH(int, from1);
    QFETCH(int, target);
    QFETCH(int, x);
    QFETCH(int, to0);
    QFETCH(int, to1);
    QFETCH(bool, hit);
    const int current = hit ? target : 0; // the first stays current after a miss
    DiffWin* w = openOn(leftText(), rightText());
    QVERIFY(w);
    w->txtBox[0]->setVerticalScrollPosition(from0);
    w->txtBox[1]->setVerticalScrollPosition(from1);
    tick(w);
    QPoint at;
    if (target < 0) {
        const auto rows = lineRows(w, 0, 8);
        QVERIFY(rows);
        at = {x, (rows->first + rows->second) / 2};
    } else {
        const indicator::Band band = indicator::bandOf(
            w->diffs[target], PaneLines(*w->txtBox[0]), PaneLines(*w->txtBox[1]));
        at = inside(band, x, w->diffCanvas->width());
        QVERIFY2(band.side[1].bottom - band.side[1].top > 4, "the band must show");
    }
    const qint64 drawn = backdropKey(w);
    QTest::mousePress(w->diffCanvas, Qt::LeftButton, {}, at);

    QVERIFY(backdropKey(w) != drawn); // drawn again at once, hit or not
    QCOMPARE(w->curDiffNum, current);
    QCOMPARE(w->curLine, kTops[0][current]);
    QCOMPARE(w->dirty, hit);
    QCOMPARE(w->txtBox[0]->VerticalScrollPosition(), to0);
    QCOMPARE(w->txtBox[1]->VerticalScrollPosition(), to1);
    tick(w);
    QVERIFY(selects(w->txtBox[0], kTops[0][current], kEnds[0][current]));
    QVERIFY(selects(w->txtBox[1], kTops[1][current], kEnds[1][current]));
}

void TstLiveCompare::wheelOverTheIndicator_data()
{
    QTest::addColumn<int>("from0");
    QTest::addColumn<int>("from1");
    QTest::addColumn<QPoint>("angle"); // eighths of a degree; negative y towards the end
    QTest::addColumn<int>("events"); // how many times the angle is sent
    QTest::addColumn<int>("to0"); // -1: the pane's end
    QTest::addColumn<int>("to1");
    QTest::newRow("one notch towards the end") << 10 << 10 << QPoint(0, -120) << 1 << 13 << 13;
    QTest::newRow("two notches back") << 10 << 20 << QPoint(0, 240) << 1 << 4 << 14;
    QTest::newRow("stops at the top") << 1 << 10 << QPoint(0, 120) << 1 << 0 << 7;
    QTest::newRow("one pane stops at its end") << 999 << 10 << QPoint(0, -120) << 1 << -1 << 13;
    QTest::newRow("sideways moves nothing") << 10 << 10 << QPoint(120, 0) << 1 << 10 << 10;
    // A touchpad or a smooth wheel sends a notch in small parts.
    QTest::newRow("a notch in eighths") << 10 << 10 << QPoint(0, -15) << 8 << 13 << 13;
}

void TstLiveCompare::wheelOverTheIndicator()
{
    QFETCH(int, from0);
    QFETCH(int, from1);
    QFETCH(QPoint, angle);
    QFETCH(int, events);
    QFETCH(int, to0);
    QFETCH(int, to1);
    DiffWin* w = openOn(leftText(), rightText());
    QVERIFY(w);
    w->txtBox[0]->setVerticalScrollPosition(from0);
    w->txtBox[1]->setVerticalScrollPosition(from1);
    tick(w);
    QVERIFY(!w->dirty);
    for (int i = 0; i < events; ++i)
        wheel(w->diffCanvas, angle);
    QCOMPARE(w->txtBox[0]->VerticalScrollPosition(), to0 < 0 ? paneEnd(w->txtBox[0]) : to0);
    QCOMPARE(w->txtBox[1]->VerticalScrollPosition(), to1 < 0 ? paneEnd(w->txtBox[1]) : to1);
    QCOMPARE(w->dirty, angle.y() != 0);
}

void TstLiveCompare::scrollingOnePane_data()
{
    QTest::addColumn<bool>("byWheel");
    QTest::newRow("wheel over the pane") << true;
    QTest::newRow("scroll bar") << false;
}

void TstLiveCompare::scrollingOnePane()
{
    QFETCH(bool, byWheel);
    DiffWin* w = openOn(leftText(), rightText());
    QVERIFY(w);
    TextArea* pane = w->txtBox[1];
    if (byWheel)
        wheel(pane->viewport(), {0, -240});
    else
        pane->verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
    const int moved = pane->VerticalScrollPosition();
    if (byWheel)
        QCOMPARE(moved, 2 * QApplication::wheelScrollLines());
    QVERIFY(moved > 0);
    QCOMPARE(w->txtBox[0]->VerticalScrollPosition(), 0);
    QCOMPARE(w->dirty, byWheel);

    // A comparison resets what the timer saw, so the tick after it draws once more.
    qint64 drawn = backdropKey(w);
    tick(w);
    QVERIFY(backdropKey(w) != drawn);
    QCOMPARE(w->scrolTop, byWheel ? (std::array<int, 2>{0, 0}) : (std::array<int, 2>{0, moved}));
    drawn = backdropKey(w);
    tick(w);
    QCOMPARE(backdropKey(w) != drawn, byWheel);
    QCOMPARE(w->scrolTop, (std::array<int, 2>{0, moved}));
    drawn = backdropKey(w);
    tick(w);
    QCOMPARE(backdropKey(w), drawn);
    QCOMPARE(w->txtBox[0]->VerticalScrollPosition(), 0);
}

int main(int, char**)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    App app(argc, argv);
    TstLiveCompare test;
    return QTest::qExec(&test);
}

#include "tst_livecompare.moc"
