#include "LinePane.h"

namespace indicator {

int yPosOfLine(const LinePane& ta, int line, bool wantTop)
{
    // Only the left edge is asked: a row belongs to one line, and x = 4 lies inside the text.
    constexpr double x = 4.0;
    const int target = ta.CharacterPosition(line);
    const int h = ta.Height();
    int y = h / 2;
    int step = h / 2;
    int p = 0;
    for (;;) {
        p = ta.CharacterPosition(x, y);
        if (p == target)
            break;
        // Halved before it is used: the first move from the middle is a quarter of the height.
        step /= 2;
        if (step == 0)
            break;
        y += p < target ? step : -step;
    }
    if (p != target)
        return y;
    if (wantTop) {
        while (y > 0 && ta.CharacterPosition(x, y - 1) == target)
            --y;
    } else {
        while (y < ta.Height() && ta.CharacterPosition(x, y + 1) == target)
            ++y;
    }
    return y;
}

} // namespace indicator
