#pragma once

// How the two panes and the indicator share the comparison window's width: plain arithmetic,
// so it can be checked without a window.
struct WidthLayout
{
    int half; // each side's share: its black frame's width
    int paneWidth; // txtBox and titleBack
    int titleBoxWidth;
    int canvasLeft; // the indicator, the Clear All button and the counter
    int right; // where the right side's frame begins
    int btnsBackLeft;
    int sameFilmLeft;

    static constexpr int kPaneLeft = 20; // the left pane never moves
    static WidthLayout forWidth(int windowWidth, int canvasWidth);
};
