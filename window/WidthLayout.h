#pragma once

// How the two panes and the indicator share the comparison window's width: plain arithmetic,
// so it can be checked without a window.
struct WidthLayout
{
    int half; // each side's share: the width of its drop frame
    int paneWidth; // txtBox and titleBack
    int titleBoxWidth;
    // The encoding row of a title panel: its label, then the pop-up to the panel's right edge.
    // The label gives way first, so that the pop-up's rows stay readable in a narrow window.
    int encodingLabelWidth;
    int encodingMenuWidth;
    int canvasLeft; // the indicator, the Clear All button and the counter
    int right; // where the right side's frame begins
    int btnsBackLeft;
    int sameFilmLeft;

    static constexpr int kPaneLeft = 20; // the left pane never moves
    static constexpr int kEncodingLabelWidth = 100;
    static constexpr int kEncodingMenuMin = 120;
    static WidthLayout forWidth(int windowWidth, int canvasWidth);
};
