#include "WidthLayout.h"

WidthLayout WidthLayout::forWidth(int windowWidth, int canvasWidth)
{
    WidthLayout l{};
    // Truncated towards zero: at an odd width the spare pixel goes to the right margin.
    l.half = static_cast<int>((windowWidth - canvasWidth - 40) / 2.0);
    l.paneWidth = l.half - 4;
    l.titleBoxWidth = l.half - 6;
    l.canvasLeft = kPaneLeft + l.half - 2;
    l.right = l.canvasLeft + canvasWidth;
    l.btnsBackLeft = l.canvasLeft - 37;
    l.sameFilmLeft = l.btnsBackLeft + 33;
    return l;
}
