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
    FakePane(QList<int> heights, int first, int margin, int height)
        : heights(std::move(heights))
        , first(first)
        , margin(margin)
        , height(height)
    {
    }

    int CharacterPosition(int line) const override
    {
        int pos = 1;
        for (int i = 0; i < std::min(line, int(heights.size())); ++i)
            pos += 3 + i % 4;
        return pos;
    }

    int CharacterPosition(double, double y) const override
    {
        if (y < margin)
            return CharacterPosition(std::max(first - 1, 0));
        int row = margin;
        for (int i = first; i < heights.size(); ++i) {
            row += heights[i];
            if (y < row)
                return CharacterPosition(i);
        }
        return CharacterPosition(int(heights.size()));
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

// Lines of 9 to 19 pixels in no simple order.
QList<int> mixedHeights(int n)
{
    QList<int> heights;
    for (int i = 0; i < n; ++i)
        heights << 9 + (i * 7) % 11;
    return heights;
}

// {lines, first, margin} of a pane of 16-pixel lines, 398 pixels high.
FakePane evenPane(const QList<int>& setup)
{
    return FakePane(QList<int>(setup[0], 16), setup[1], setup[2], 398);
}

Band bandWith(const QList<int>& rows, const QList<int>& lines = {0, 0, 0, 0})
{
    Band b;
    b.side[0] = Side{lines[0], lines[1], rows[0], rows[1]};
    b.side[1] = Side{lines[2], lines[3], rows[2], rows[3]};
    return b;
}

} // namespace

class TstIndicator : public QObject
{
    Q_OBJECT
private slots:
    void linePosition_data();
    void linePosition();
    void visibleLinesGetTheirRows_data();
    void visibleLinesGetTheirRows();
    void band_data();
    void band();
    void scrollingOnePaneMovesOneSide();
    void numberPlace_data();
    void numberPlace();
    void pointInBand_data();
    void pointInBand();
    void clickCandidate_data();
    void clickCandidate();
    void scrollToShow_data();
    void scrollToShow();
    void centringOffset();
};

void TstIndicator::linePosition_data()
{
    QTest::addColumn<QList<int>>("heights");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("margin");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("line");
    QTest::addColumn<bool>("wantTop");
    QTest::addColumn<int>("row");

    // 40 lines of 16 pixels from line 10: line L spans rows (L - 10) * 16 to that + 15.
    const QList<int> even(40, 16);
    QTest::newRow("above the view, top") << even << 10 << 0 << 398 << 3 << true << 5;
    QTest::newRow("above the view, bottom") << even << 10 << 0 << 398 << 3 << false << 5;
    QTest::newRow("just above the view") << even << 10 << 0 << 398 << 9 << false << 5;
    QTest::newRow("below the view, top") << even << 10 << 0 << 398 << 39 << true << 393;
    QTest::newRow("below the view, bottom") << even << 10 << 0 << 398 << 36 << false << 393;
    QTest::newRow("past the end of a long text") << even << 10 << 0 << 398 << 45 << true << 393;
    QTest::newRow("height 0") << even << 10 << 0 << 0 << 12 << true << 0;
    QTest::newRow("height 1, top") << even << 10 << 0 << 1 << 12 << true << 0;
    QTest::newRow("empty pane, top") << QList<int>() << 0 << 0 << 398 << 0 << true << 0;
    QTest::newRow("empty pane, bottom") << QList<int>() << 0 << 0 << 398 << 0 << false << 398;
    QTest::newRow("cut by the lower edge, top") << even << 10 << 0 << 398 << 34 << true << 384;
    QTest::newRow("cut by the lower edge, bottom") << even << 10 << 0 << 398 << 34 << false << 398;
    // Rows 0 to 5 show the end of line 9; only the search's last step, to row 5, finds it.
    QTest::newRow("cut by the upper edge, top") << even << 10 << 6 << 398 << 9 << true << 0;
    QTest::newRow("cut by the upper edge, bottom") << even << 10 << 6 << 398 << 9 << false << 5;
    // 20 lines end at row 319; the rows below answer the position past the end.
    const QList<int> short20(20, 16);
    QTest::newRow("end of text in view, top") << short20 << 0 << 0 << 398 << 20 << true << 320;
    QTest::newRow("end of text in view, bottom") << short20 << 0 << 0 << 398 << 20 << false << 398;
    // Line 10 is three rows, 200 to 202; the search steps over it and stops on row 203.
    const QList<int> thin = QList<int>(10, 20) << 3 << QList<int>(30, 20);
    QTest::newRow("thin line missed by the search") << thin << 0 << 0 << 398 << 10 << true << 203;
}

void TstIndicator::linePosition()
{
    QFETCH(QList<int>, heights);
    QFETCH(int, first);
    QFETCH(int, margin);
    QFETCH(int, height);
    QFETCH(int, line);
    QFETCH(bool, wantTop);
    QFETCH(int, row);
    QCOMPARE(yPosOfLine(FakePane(heights, first, margin, height), line, wantTop), row);
}

void TstIndicator::visibleLinesGetTheirRows_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("margin");
    QTest::addColumn<int>("height");
    QTest::newRow("top of the text") << 0 << 0 << 398;
    QTest::newRow("scrolled, with a margin") << 7 << 4 << 398;
    QTest::newRow("lower pane") << 3 << 2 << 250;
    QTest::newRow("odd height") << 1 << 0 << 57;
}

void TstIndicator::visibleLinesGetTheirRows()
{
    QFETCH(int, first);
    QFETCH(int, margin);
    QFETCH(int, height);
    const FakePane pane(mixedHeights(80), first, margin, height);
    int checked = 0;
    for (int line = first; pane.rowOf(line + 1) <= height; ++line, ++checked) {
        QCOMPARE(yPosOfLine(pane, line, true), pane.rowOf(line));
        QCOMPARE(yPosOfLine(pane, line, false), pane.rowOf(line + 1) - 1);
    }
    QVERIFY(checked > 2);
}

void TstIndicator::band_data()
{
    QTest::addColumn<QList<int>>("left"); // lines, first, margin
    QTest::addColumn<QList<int>>("right");
    QTest::addColumn<QList<int>>("diff"); // DeletedStart, DeletedEnd, AddedStart, AddedEnd
    QTest::addColumn<QList<int>>("rows"); // left top, bottom, right top, bottom
    QTest::addColumn<QList<int>>("ends"); // last line of each side
    QTest::addColumn<bool>("inverted");

    // Line L of the left pane starts on row (L - 10) * 16, of the right pane on (L - 12) * 16.
    const QList<int> l{60, 10, 0}, r{60, 12, 0};
    QTest::newRow("changed on both sides")
        << l << r << QList{14, 16, 15, 15} << QList{64, 111, 48, 63} << QList{16, 15} << false;
    QTest::newRow("left only, wedge to the right")
        << l << r << QList{14, 16, 20, -1} << QList{64, 111, 128, 128} << QList{16, 20} << false;
    QTest::newRow("right only, wedge to the left")
        << l << r << QList{14, -1, 15, 17} << QList{64, 64, 48, 95} << QList{14, 17} << false;
    QTest::newRow("left above the view")
        << l << r << QList{3, 6, 15, 15} << QList{5, 5, 48, 63} << QList{4, 15} << false;
    QTest::newRow("left below the view")
        << l << r << QList{50, 53, 15, 15} << QList{393, 393, 48, 63} << QList{51, 15} << false;
    QTest::newRow("both above the view")
        << l << r << QList{2, 3, 1, 4} << QList{5, 5, 5, 5} << QList{3, 2} << false;
    QTest::newRow("both below the view")
        << l << r << QList{50, 50, 55, 58} << QList{393, 393, 393, 393} << QList{51, 56} << false;
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

    const SeqDiff::Difference d(diff[0], diff[1], diff[2], diff[3]);
    const Band b = indicator::bandOf(d, evenPane(left), evenPane(right));
    QCOMPARE((QList{b.side[0].top, b.side[0].bottom, b.side[1].top, b.side[1].bottom}), rows);
    QCOMPARE(b.side[0].start, diff[0]);
    QCOMPARE(b.side[1].start, diff[2]);
    QCOMPARE((QList{b.side[0].end, b.side[1].end}), ends);
    QCOMPARE(b.inverted(), inverted);
    QCOMPARE(fillPolygon(b, 54),
        (std::array<int, 9>{0, 0, rows[0], 0, rows[1], 54, rows[3], 54, rows[2]}));
}

void TstIndicator::scrollingOnePaneMovesOneSide()
{
    const SeqDiff::Difference d(14, 16, 15, 17);
    const FakePane left = evenPane({60, 10, 0});
    const Band before = indicator::bandOf(d, left, evenPane({60, 12, 0}));
    const Band after = indicator::bandOf(d, left, evenPane({60, 15, 0}));
    QCOMPARE(after.side[0].top, before.side[0].top);
    QCOMPARE(after.side[0].bottom, before.side[0].bottom);
    QCOMPARE(after.side[1].top, before.side[1].top - 3 * 16);
    QCOMPARE(after.side[1].bottom, before.side[1].bottom - 3 * 16);
}

void TstIndicator::numberPlace_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<double>("height");
    QTest::addColumn<QList<int>>("place"); // x, y, shown

    const QList<int> mid{100, 120, 140, 160};
    QTest::newRow("first") << 0 << mid << 398.0 << QList{22, 135, 1};
    QTest::newRow("ninth") << 8 << mid << 398.0 << QList{22, 135, 1};
    QTest::newRow("tenth") << 9 << mid << 398.0 << QList{18, 135, 1};
    QTest::newRow("99th") << 98 << mid << 398.0 << QList{18, 135, 1};
    QTest::newRow("100th") << 99 << mid << 398.0 << QList{14, 135, 1};
    QTest::newRow("y truncated") << 0 << QList{100, 101, 101, 101} << 398.0 << QList{22, 105, 1};
    QTest::newRow("average under 6") << 0 << QList{5, 5, 5, 8} << 398.0 << QList{22, 10, 0};
    QTest::newRow("average 6") << 0 << QList{5, 5, 5, 9} << 398.0 << QList{22, 11, 1};
    QTest::newRow("at the height") << 0 << QList{393, 393, 393, 393} << 398.0 << QList{22, 398, 0};
    QTest::newRow("one above the height")
        << 0 << QList{393, 393, 393, 393} << 399.0 << QList{22, 398, 1};
}

void TstIndicator::numberPlace()
{
    QFETCH(int, index);
    QFETCH(QList<int>, rows);
    QFETCH(double, height);
    QFETCH(QList<int>, place);
    const NumberPlace p = indicator::numberPlace(index, bandWith(rows), height);
    QCOMPARE((QList{p.x, p.y, int(p.shown)}), place);
}

void TstIndicator::pointInBand_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<bool>("inside");

    // Upper edge from (0, 100) to (54, 140), lower edge from (0, 120) to (54, 160).
    const QList<int> b{100, 120, 140, 160};
    QTest::newRow("between the edges") << b << 27.0 << 130.0 << true;
    QTest::newRow("on the upper edge") << b << 27.0 << 120.0 << true;
    QTest::newRow("on the lower edge") << b << 27.0 << 140.0 << false;
    QTest::newRow("left column") << b << 0.0 << 110.0 << false;
    QTest::newRow("right column") << b << 54.0 << 150.0 << true;
    QTest::newRow("above") << b << 27.0 << 119.0 << false;
    QTest::newRow("below") << b << 27.0 << 141.0 << false;
    const QList<int> toRight{100, 160, 130, 130}, toLeft{130, 130, 100, 160};
    QTest::newRow("wedge to the right, open") << toRight << 27.0 << 130.0 << true;
    QTest::newRow("wedge to the right, near the tip") << toRight << 53.0 << 130.0 << true;
    QTest::newRow("wedge to the right, tip") << toRight << 54.0 << 130.0 << false;
    QTest::newRow("wedge to the left, open") << toLeft << 27.0 << 130.0 << true;
    QTest::newRow("wedge to the left, tip") << toLeft << 0.0 << 130.0 << false;
    const QList<int> flat{5, 5, 5, 5};
    QTest::newRow("no height, middle") << flat << 27.0 << 5.0 << false;
}

void TstIndicator::pointInBand()
{
    QFETCH(QList<int>, rows);
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(bool, inside);
    const auto polygon = hitPolygon(bandWith(rows), 54);
    QCOMPARE(pointInPolygon(Point{x, y}, polygon), inside);
}

void TstIndicator::clickCandidate_data()
{
    QTest::addColumn<QList<int>>("lines"); // start and end on the left, on the right
    QTest::addColumn<bool>("candidate");

    // First shown lines 10 and 12, panes 398 pixels high.
    QTest::newRow("within on both sides") << QList{14, 16, 15, 15} << true;
    QTest::newRow("above on both sides") << QList{3, 4, 1, 2} << false;
    QTest::newRow("starts one line above on both") << QList{9, 11, 11, 13} << false;
    QTest::newRow("above on the left only") << QList{3, 4, 15, 15} << true;
    QTest::newRow("above on the right only") << QList{14, 16, 1, 2} << true;
    QTest::newRow("starts at the first shown line") << QList{10, 12, 1, 2} << true;
    QTest::newRow("ends at the bound") << QList{400, 408, 1, 2} << true;
    QTest::newRow("ends past the bound") << QList{400, 409, 1, 2} << false;
    QTest::newRow("past the bound on the left only") << QList{500, 501, 20, 20} << true;
}

void TstIndicator::clickCandidate()
{
    QFETCH(QList<int>, lines);
    QFETCH(bool, candidate);
    const std::array<int, 2> first{10, 12};
    const Band b = bandWith({0, 0, 0, 0}, lines);
    QCOMPARE(isClickCandidate(b, first, {first[0] + 398, first[1] + 398}), candidate);
}

void TstIndicator::scrollToShow_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("result");

    QTest::newRow("above the view") << 100 << 110 << 9 << 97;
    QTest::newRow("one line above") << 99 << 100 << 9 << 96;
    QTest::newRow("near the top of the text") << 1 << 50 << 9 << -1;
    QTest::newRow("at the first shown line") << 100 << 100 << 9 << 100;
    QTest::newRow("twice the offset below") << 118 << 100 << 9 << 100;
    QTest::newRow("one more below") << 119 << 100 << 9 << 101;
    QTest::newRow("far below") << 300 << 100 << 9 << 282;
    QTest::newRow("offset 4, above") << 2 << 10 << 4 << 1;
}

void TstIndicator::scrollToShow()
{
    QFETCH(int, line);
    QFETCH(int, position);
    QFETCH(int, offset);
    QFETCH(int, result);
    QCOMPARE(indicator::scrollToShow(line, position, offset), result);
}

void TstIndicator::centringOffset()
{
    QCOMPARE(indicator::centringOffset(398), 9);
    QCOMPARE(indicator::centringOffset(400), 10);
    QCOMPARE(indicator::centringOffset(439.9), 10);
    QCOMPARE(indicator::centringOffset(39), 0);
}

QTEST_APPLESS_MAIN(TstIndicator)
#include "tst_indicator.moc"
