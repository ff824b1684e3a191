#pragma once

#include "LinePane.h"
#include "TextArea.h"

// A pane as the indicator asks it.
class PaneLines final : public indicator::LinePane
{
public:
    explicit PaneLines(const toolkit::TextArea& pane)
        : pane(pane)
    {
    }
    int CharacterPosition(int line) const override { return pane.CharacterPosition(line); }
    int CharacterPosition(double x, double y) const override
    {
        return pane.CharacterPosition(x, y);
    }
    // Rows behind the horizontal scroll bar show no line.
    int Height() const override { return pane.TextTop() + pane.TextHeight(); }

private:
    const toolkit::TextArea& pane;
};
