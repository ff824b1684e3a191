#pragma once

namespace indicator {

// What the indicator asks of a pane. Both character positions count on one scale, and at x = 4
// every pixel row of a line answers what CharacterPosition(line) answers for that line.
class LinePane
{
public:
    virtual ~LinePane() = default;
    virtual int CharacterPosition(int line) const = 0;
    virtual int CharacterPosition(double x, double y) const = 0;
    virtual int Height() const = 0;
};

// The uppermost (wantTop) or lowest pixel row of a line in the pane as it is scrolled now. A line
// out of view gets the row where the search runs out of steps, which depends on the height alone.
int yPosOfLine(const LinePane& ta, int line, bool wantTop);

} // namespace indicator
