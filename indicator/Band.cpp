#include "Band.h"

namespace indicator {

namespace {

// Line numbers of a pane fit an int; the engine counts in 64 bits for texts of any origin.
Side sideOf(std::int64_t start, std::int64_t end, const LinePane& pane)
{
    Side s;
    s.start = static_cast<int>(start);
    s.end = s.start;
    s.top = yPosOfLine(pane, s.start, true);
    s.bottom = s.top;
    if (end < 0)
        return s;
    s.end = static_cast<int>(end);
    s.bottom = yPosOfLine(pane, s.end, false);
    if (s.bottom == s.top) {
        // Both rows are the stop row of the search: let a stretch just above the view reach
        // down to the top of its next line.
        s.end = s.start + 1;
        s.bottom = yPosOfLine(pane, s.end, true);
    }
    return s;
}

} // namespace

Band bandOf(const SeqDiff::Difference& d, const LinePane& left, const LinePane& right)
{
    return Band{{sideOf(d.DeletedStart(), d.DeletedEnd(), left),
        sideOf(d.AddedStart(), d.AddedEnd(), right)}};
}

std::array<int, 9> fillPolygon(const Band& band, int width)
{
    const Side& l = band.side[0];
    const Side& r = band.side[1];
    return {0, 0, l.top, 0, l.bottom, width, r.bottom, width, r.top};
}

NumberPlace numberPlace(int diffIndex, const Band& band, double height)
{
    // One, two or more digits; the index is zero-based, the number shown is one more.
    const int x = diffIndex < 9 ? 22 : diffIndex < 99 ? 18 : 14;
    const Side& l = band.side[0];
    const Side& r = band.side[1];
    const int y = static_cast<int>((l.top + l.bottom + r.top + r.bottom) / 4.0 + 5.0);
    return {x, y, y > 10 && height > y};
}

NumberBox numberBox(const NumberPlace& place, int textWidth, int ascent, int descent)
{
    return {place.x, place.y - ascent, place.x + textWidth, place.y + descent};
}

bool NumberSpacing::admit(const NumberBox& box)
{
    if (any && box.overlaps(last))
        return false;
    last = box;
    any = true;
    return true;
}

} // namespace indicator
