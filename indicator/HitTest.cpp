#include "HitTest.h"

namespace indicator {

bool pointInPolygon(Point point, std::span<const Point> polygon)
{
    if (polygon.empty())
        return false;
    bool inside = false;
    Point old = polygon.back();
    for (const Point& now : polygon) {
        const Point& left = now.X > old.X ? old : now;
        const Point& right = now.X > old.X ? now : old;
        // The x range excludes the edge's left end and includes its right end.
        if ((point.X > left.X) == (right.X >= point.X)
            && (point.X - left.X) * (right.Y - left.Y) > (right.X - left.X) * (point.Y - left.Y))
            inside = !inside;
        old = now;
    }
    return inside;
}

std::array<Point, 4> hitPolygon(const Band& band, double width)
{
    const Side& l = band.side[0];
    const Side& r = band.side[1];
    return {Point{0, double(l.top)}, Point{0, double(l.bottom)}, Point{width, double(r.bottom)},
        Point{width, double(r.top)}};
}

bool isClickCandidate(const Band& band, std::array<int, 2> firstShown, std::array<int, 2> lastShown)
{
    for (int i = 0; i < 2; ++i) {
        if (firstShown[i] <= band.side[i].start && band.side[i].end <= lastShown[i])
            return true;
    }
    return false;
}

int centringOffset(double paneHeight)
{
    return static_cast<int>(paneHeight / 40.0);
}

int scrollToShow(int line, int position, int offset)
{
    if (line < position)
        return static_cast<int>(line - offset / 4.0);
    if (position + 2 * offset < line)
        return line - 2 * offset;
    return position;
}

} // namespace indicator
