#include "WidthLayout.h"

#include <algorithm>

WidthLayout WidthLayout::forWidth(int windowWidth, int canvasWidth)
{
    WidthLayout l{};
    // Truncated towards zero: at an odd width the spare pixel goes to the right margin.
    l.half = static_cast<int>((windowWidth - canvasWidth - 40) / 2.0);
    l.paneWidth = l.half - 4;
    l.titleBoxWidth = l.half - 6;
    // One pixel of the panel's edge on either side.
    const int row = l.paneWidth - 2;
    l.encodingMenuWidth = std::max(row - kEncodingLabelWidth, std::min(kEncodingMenuMin, row));
    l.encodingLabelWidth = row - l.encodingMenuWidth;
    l.canvasLeft = kPaneLeft + l.half - 2;
    l.right = l.canvasLeft + canvasWidth;
    l.btnsBackLeft = l.canvasLeft - 37;
    l.sameFilmLeft = l.btnsBackLeft + 33;
    return l;
}
