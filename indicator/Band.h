#pragma once

#include "Difference.h"
#include "LinePane.h"

#include <array>

namespace indicator {

// One side of a band: the lines of a stretch and the pixel rows where its corners stand.
struct Side
{
    int start = 0;
    int end = 0;
    int top = 0;
    int bottom = 0;

    // No height: the lines are missing on this side, or both rows fell on the same stop row.
    bool empty() const { return top == bottom; }
};

// A difference as the indicator shows it, side 0 in the left pane and side 1 in the right.
// Its polygon runs (0, left top), (0, left bottom), (W, right bottom), (W, right top).
struct Band
{
    std::array<Side, 2> side;

    // A row found near a pane's lower edge with a later one at the search's stop row above it.
    bool inverted() const { return side[0].top > side[0].bottom || side[1].top > side[1].bottom; }
};

// The rows of a difference in the panes as they are scrolled now.
Band bandOf(const SeqDiff::Difference& d, const LinePane& left, const LinePane& right);

// The polygon for filling: element 0 is no coordinate, then x, y of the four corners.
std::array<int, 9> fillPolygon(const Band& band, int width);

// Where the difference's number goes: x by its digits, y its baseline.
struct NumberPlace
{
    int x = 0;
    int y = 0;
    // A band near an edge keeps its colour but loses its number.
    bool shown = false;
};
NumberPlace numberPlace(int diffIndex, const Band& band, double height);

// The rows and columns a number covers: its text's width from x, the font's ascent above the
// baseline and its descent below. Right and bottom are one past the box.
struct NumberBox
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool overlaps(const NumberBox& other) const
    {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
};
NumberBox numberBox(const NumberPlace& place, int textWidth, int ascent, int descent);

// Numbers of bands close together would print over each other: one whose box overlaps the
// last one drawn is left out.
class NumberSpacing
{
public:
    // Whether the number may be drawn; if so, it becomes the last one drawn.
    bool admit(const NumberBox& box);

private:
    NumberBox last;
    bool any = false;
};

} // namespace indicator
