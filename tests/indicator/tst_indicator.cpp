#include "Band.h"
#include "HitTest.h"
#include "LinePane.h"

#include <QtTest>

#include <algorithm>

using namespace indicator;

namespace {

// A text of lines with their own pixel heights, scrolled so that line `first` is drawn from row
// `margin` down. Rows above it answer the line before (line 0 at the top of the text), rows below
// the text answer the position one past its end.
class FakePane : public LinePane
{
public:
    FakePane(QList<int> heights, const QList<int>& view)
        : heights(std::move(heights))
        , first(view[0])
        , margin(view[1])
        , height(view[2])
    {
    }

    // One character a line: the search only compares positions.
    int CharacterPosition(int line) const override { return std::min(line, int(heights.size())); }

    int CharacterPosition(double, double y) const override
    {
        if (y < margin)
            return std::max(first - 1, 0);
        int line = first;
        while (line < heights.size() && rowOf(line + 1) <= y)
            ++line;
        return line;
    }

    int Height() const override { return height; }

    // The uppermost row of a line at or after `first`, by the layout alone.
    int rowOf(int line) const
    {
        int row = margin;
        for (int i = first; i < line; ++i)
            row += heights[i];
        return row;
    }

    QList<int> heights;
    int first, margin, height;
};

Band bandWith(const QList<int>& rows, const QList<int>& lines = {0, 0, 0, 0})
{
    return Band{
        {Side{lines[0], lines[1], rows[0], rows[1]}, Side{lines[2], lines[3], rows[2], rows[3]}}};
}

} // namespace

class TstIndicator : public QObject
{
    Q_OBJECT
private slots:
    void linePosition_data();
    void linePosition();
    void visibleLinesGetTheirRows();
    void band_data();
    void band();
    void numberPlace_data();
    void numberPlace();
    void numbersKeepApart_data();
    void numbersKeepApart();
    void pointInBand_data();
    void pointInBand();
    void clickCandidate_data();
    void clickCandidate();
    void scrollToShow_data();
    void scrollToShow();
};

void TstIndicator::linePosition_data()
{
    QTest::addColumn<QList<int>>("heights");
    QTest::addColumn<QList<int>>("view"); // first line shown, its top row, pane height
    QTest::addColumn<int>("line");
    QTest::addColumn<bool>("wantTop");
    QTest::addColumn<int>("row");

    // 40 lines of 16 pixels from line 10: line L spans rows (L - 10) * 16 to that + 15.
    const QList<int> even(40, 16), view{10, 0, 398};
    QTest::newRow("above the view") << even << view << 3 << true << 5;
    QTest::newRow("below the view") << even << view << 36 << false << 393;
    QTest::newRow("height 0") << even << QList{10, 0, 0} << 12 << true << 0;
    QTest::newRow("height 1") << even << QList{10, 0, 1} << 12 << true << 0;
    QTest::newRow("cut by the lower edge") << even << view << 34 << false << 398;
    // Rows 0 to 5 show the end of line 9; only the search's last step, to row 5, finds it.
    QTest::newRow("cut by the upper edge") << even << QList{10, 6, 398} << 9 << false << 5;
    // 20 lines end at row 319; the rows below answer the position past the end.
    const QList<int> short20(20, 16), top{0, 0, 398};
    QTest::newRow("end of text in view") << short20 << top << 20 << true << 320;
    // Line 10 is three rows, 200 to 202; the search steps over it and stops on row 203.
    const QList<int> thin = QList<int>(10, 20) << 3 << QList<int>(30, 20);
    QTest::newRow("thin line missed by the search") << thin << top << 10 << true << 203;
}

void TstIndicator::linePosition()
{
    QFETCH(QList<int>, heights);
    QFETCH(QList<int>, view);
    QFETCH(int, line);
    QFETCH(bool, wantTop);
    QFETCH(int, row);
    QCOMPARE(yPosOfLine(FakePane(heights, view), line, wantTop), row);
}

// Lines of 9 to 19 pixels in no simple order: each line wholly in view answers its own rows.
void TstIndicator::visibleLinesGetTheirRows()
{
    QList<int> heights;
    for (int i = 0; i < 80; ++i)
        heights << 9 + (i * 7) % 11;
    // At the top of the text, scrolled with a margin, and in a pane of odd height.
    for (const QList<int>& view : {QList{0, 0, 398}, QList{7, 4, 398}, QList{1, 0, 57}}) {
        const FakePane pane(heights, view);
        int line = pane.first;
        for (; pane.rowOf(line + 1) <= pane.height; ++line) {
            QCOMPARE(yPosOfLine(pane, line, true), pane.rowOf(line));
            QCOMPARE(yPosOfLine(pane, line, false), pane.rowOf(line + 1) - 1);
        }
        QVERIFY(line > pane.first + 2);
    }
}

void TstIndicator::band_data()
{
    // Panes of 16-pixel lines, 398 pixels high: {lines, first, margin}.
    QTest::addColumn<QList<int>>("left");
    QTest::addColumn<QList<int>>("right");
    QTest::addColumn<QList<int>>("diff"); // DeletedStart, DeletedEnd, AddedStart, AddedEnd
    QTest::addColumn<QList<int>>("rows"); // left top, bottom, right top, bottom
    QTest::addColumn<QList<int>>("ends"); // last line of each side
    QTest::addColumn<bool>("inverted");

    // Line L of the left pane starts on row (L - 10) * 16, of the right pane on (L - 12) * 16.
    const QList<int> l{60, 10, 0}, r{60, 12, 0};
    QTest::newRow("left only, wedge to the right")
        << l << r << QList{14, 16, 20, -1} << QList{64, 111, 128, 128} << QList{16, 20} << false;
    QTest::newRow("left above the view")
        << l << r << QList{3, 6, 15, 15} << QList{5, 5, 48, 63} << QList{4, 15} << false;
    // Line 9 lies above the left view: its rows are the stop row 5, so its next line is asked.
    QTest::newRow("next line shown at row 0: inverted")
        << l << r << QList{9, 9, 15, 15} << QList{5, 0, 48, 63} << QList{10, 15} << true;
    QTest::newRow("right side inverted")
        << l << r << QList{14, 14, 11, 11} << QList{64, 79, 5, 0} << QList{14, 12} << true;
    QTest::newRow("next line shown at row 5")
        << QList{60, 10, 5} << QList{60, 12, 5} << QList{9, 9, 15, 15} << QList{5, 5, 53, 68}
        << QList{10, 15} << false;
    QTest::newRow("empty left pane") << QList{0, 0, 0} << QList{2, 0, 0} << QList{0, 0, 0, 1}
                                     << QList{0, 398, 0, 31} << QList{0, 1} << false;
    QTest::newRow("line added at the end")
        << QList{20, 0, 0} << QList{21, 0, 0} << QList{20, -1, 20, 20} << QList{320, 320, 320, 335}
        << QList{20, 20} << false;
}

void TstIndicator::band()
{
    QFETCH(QList<int>, left);
    QFETCH(QList<int>, right);
    QFETCH(QList<int>, diff);
    QFETCH(QList<int>, rows);
    QFETCH(QList<int>, ends);
    QFETCH(bool, inverted);

    const auto pane = [](const QList<int>& p) {
        return FakePane(QList<int>(p[0], 16), {p[1], p[2], 398});
    };
    const SeqDiff::Difference d(diff[0], diff[1], diff[2], diff[3]);
    const Band b = indicator::bandOf(d, pane(left), pane(right));
    QCOMPARE((QList{b.side[0].top, b.side[0].bottom, b.side[1].top, b.side[1].bottom}), rows);
    QCOMPARE((QList{b.side[0].start, b.side[0].end, b.side[1].start, b.side[1].end}),
        (QList{diff[0], ends[0], diff[2], ends[1]}));
    QCOMPARE(b.inverted(), inverted);
    QCOMPARE(fillPolygon(b, 54),
        (std::array<int, 9>{0, 0, rows[0], 0, rows[1], 54, rows[3], 54, rows[2]}));
}

void TstIndicator::numberPlace_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QList<int>>("place"); // x, y, shown in a canvas 398 pixels high

    const QList<int> mid{100, 120, 140, 160};
    QTest::newRow("ninth") << 8 << mid << QList{22, 135, 1};
    QTest::newRow("tenth") << 9 << mid << QList{18, 135, 1};
    QTest::newRow("99th") << 98 << mid << QList{18, 135, 1};
    QTest::newRow("100th") << 99 << mid << QList{14, 135, 1};
    QTest::newRow("average under 6") << 0 << QList{5, 5, 5, 8} << QList{22, 10, 0};
    QTest::newRow("average 6") << 0 << QList{5, 5, 5, 9} << QList{22, 11, 1};
    QTest::newRow("at the height") << 0 << QList{393, 393, 393, 393} << QList{22, 398, 0};
    QTest::newRow("one above the height") << 0 << QList{392, 393, 393, 393} << QList{22, 397, 1};
}

void TstIndicator::numberPlace()
{
    QFETCH(int, index);
    QFETCH(QList<int>, rows);
    QFETCH(QList<int>, place);
    const NumberPlace p = indicator::numberPlace(index, bandWith(rows), 398);
    QCOMPARE((QList{p.x, p.y, int(p.shown)}), place);
}

void TstIndicator::numbersKeepApart_data()
{
    QTest::addColumn<QList<int>>("baselines"); // of numbers 9, 10, 11 … in that order
    QTest::addColumn<QList<bool>>("drawn");
    // Boxes reach 11 rows above the baseline and 3 below: 14 rows apart they touch.
    QTest::newRow("touching") << QList{20, 34, 48} << QList{true, true, true};
    QTest::newRow("one row over") << QList{20, 33} << QList{true, false};
    QTest::newRow("a crowd") << QList{20, 25, 30, 35, 40} << QList{true, false, false, true, false};
    QTest::newRow("only drawn ones count") << QList{20, 30, 36} << QList{true, false, true};
    QTest::newRow("upwards") << QList{60, 50, 20} << QList{true, false, true};
}

void TstIndicator::numbersKeepApart()
{
    QFETCH(QList<int>, baselines);
    QFETCH(QList<bool>, drawn);
    NumberSpacing spacing;
    QList<bool> got;
    // The ninth number stands at 22, one digit wide; the later ones at 18, two digits wide.
    for (int i = 0; i < baselines.size(); ++i)
        got << spacing.admit(numberBox({i ? 18 : 22, baselines[i], true}, i ? 16 : 8, 11, 3));
    QCOMPARE(got, drawn);
}

void TstIndicator::pointInBand_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("inside");

    // Upper edge from (0, 100) to (54, 140), lower edge from (0, 120) to (54, 160).
    const QList<int> b{100, 120, 140, 160};
    QTest::newRow("between the edges") << b << QPointF(27, 130) << true;
    QTest::newRow("on the upper edge") << b << QPointF(27, 120) << true;
    QTest::newRow("on the lower edge") << b << QPointF(27, 140) << false;
    QTest::newRow("left column") << b << QPointF(0, 110) << false;
    QTest::newRow("right column") << b << QPointF(54, 150) << true;
    QTest::newRow("tip of a wedge") << QList{100, 160, 130, 130} << QPointF(54, 130) << false;
    QTest::newRow("no height") << QList{5, 5, 5, 5} << QPointF(27, 5) << false;
}

void TstIndicator::pointInBand()
{
    QFETCH(QList<int>, rows);
    QFETCH(QPointF, point);
    QFETCH(bool, inside);
    QCOMPARE(pointInPolygon(Point{point.x(), point.y()}, hitPolygon(bandWith(rows), 54)), inside);
}

void TstIndicator::clickCandidate_data()
{
    QTest::addColumn<QList<int>>("lines"); // start and end on the left, on the right
    QTest::addColumn<bool>("candidate");

    // First shown lines 10 and 12, panes 398 pixels high.
    QTest::newRow("above on both sides") << QList{3, 4, 1, 2} << false;
    QTest::newRow("starts one line above on both") << QList{9, 11, 11, 13} << false;
    QTest::newRow("above on the left only") << QList{3, 4, 15, 15} << true;
    QTest::newRow("starts at the first shown line") << QList{10, 12, 1, 2} << true;
    QTest::newRow("ends at the bound") << QList{400, 408, 1, 2} << true;
    QTest::newRow("ends past the bound") << QList{400, 409, 1, 2} << false;
}

void TstIndicator::clickCandidate()
{
    QFETCH(QList<int>, lines);
    QFETCH(bool, candidate);
    QCOMPARE(isClickCandidate(bandWith({0, 0, 0, 0}, lines), {10, 12}, {408, 410}), candidate);
}

// The scroll position after a click, with the offset that the pane height gives.
void TstIndicator::scrollToShow_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("position");
    QTest::addColumn<double>("height");
    QTest::addColumn<int>("result");

    QTest::newRow("above the view") << 100 << 110 << 398.0 << 97;
    QTest::newRow("near the top of the text") << 1 << 50 << 398.0 << -1;
    QTest::newRow("at the first shown line") << 100 << 100 << 398.0 << 100;
    QTest::newRow("twice the offset below") << 118 << 100 << 398.0 << 100;
    QTest::newRow("one more below") << 119 << 100 << 398.0 << 101;
    QTest::newRow("offset 10") << 121 << 100 << 400.0 << 101;
    QTest::newRow("offset 0") << 5 << 10 << 39.0 << 5;
}

void TstIndicator::scrollToShow()
{
    QFETCH(int, line);
    QFETCH(int, position);
    QFETCH(double, height);
    QFETCH(int, result);
    QCOMPARE(indicator::scrollToShow(line, position, indicator::centringOffset(height)), result);
}

QTEST_APPLESS_MAIN(TstIndicator)
#include "tst_indicator.moc"
