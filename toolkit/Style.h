#pragma once
// Fonts and colours in the terms of the design tables: "System" at a size in pixels, where 0 means
// the desktop's own size, and colours as 0xRRGGBB.

#include <QColor>
#include <QFont>

class QWidget;

namespace toolkit {

struct FontStyle
{
    int size = 0;
    bool bold = false, italic = false, underline = false;
};

QFont systemFont(FontStyle style = {});
inline QColor rgb(unsigned value)
{
    return QColor::fromRgb(value);
}
void setTextColor(QWidget* w, QColor color);
// Tooltips come with CR line breaks; Qt breaks tooltip lines at LF.
void setTooltip(QWidget* w, const QString& text);
// Shows the control's tooltip at the pointer at once, for a hover that brings no hover events
// of its own (a drag of files), until hideTooltip or a minute has passed.
void showTooltipNow(QWidget* w);
void hideTooltip();

// The tints behind marked text, from the widget's selection colour, so that they read in light
// and dark palettes alike: `line` for whole lines, `strong` for stretches within them.
struct MarkColours
{
    QColor line, strong;
};
MarkColours markColours(const QWidget* w);

} // namespace toolkit
