#pragma once

#include "Band.h"

#include <array>
#include <span>

namespace indicator {

struct Point
{
    double X = 0;
    double Y = 0;
};

// Even-odd crossing rule. On a band, a point on the upper edge is inside, one on the lower edge
// outside, and vertical edges never count.
bool pointInPolygon(Point point, std::span<const Point> polygon);

// The band's corners in the order of its filled polygon, for a canvas of this width.
std::array<Point, 4> hitPolygon(const Band& band, double width);

// Whether a click may pick this band: its stretch lies within the shown lines on one side.
// lastShown is the first shown line plus the pane's height in pixels, a generous bound.
bool isClickCandidate(
    const Band& band, std::array<int, 2> firstShown, std::array<int, 2> lastShown);

// How many lines a difference stands below the top of a pane when brought into view.
int centringOffset(double paneHeight);

// The scroll position that brings `line` into view after a click: a line above the view comes
// a little below the top, one far below comes up to twice the offset; otherwise `position`.
int scrollToShow(int line, int position, int offset);

} // namespace indicator
