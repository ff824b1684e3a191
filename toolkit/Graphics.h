#pragma once

#include "Canvas.h"

#include <QFont>
#include <QPainter>

#include <span>

namespace toolkit {

// Drawing into a picture in logical pixels, whatever the picture's pixel ratio. Edges are not
// smoothed, so that every colour stays exact.
class Graphics
{
public:
    explicit Graphics(Picture& picture);

    double Width() const { return width; }
    double Height() const { return height; }
    // Both set the colour of what is drawn next.
    void setForeColor(unsigned rgb);
    void setDrawingColor(unsigned rgb) { setForeColor(rgb); }
    // "System" is the desktop's font; sizes are pixels, as everywhere in our tables.
    void setFontName(const QString& name);
    void setFontSize(double size);

    void FillRect(double x, double y, double w, double h);
    // Element 0 is no coordinate; x, y pairs follow.
    void FillPolygon(std::span<const int> points);
    // y is the baseline.
    void DrawText(const QString& text, double x, double y);
    // The extent of a text in the font set now, in whole pixels.
    int TextWidth(const QString& text);
    int TextAscent();
    int TextDescent();

private:
    void applyFont();
    QPainter painter;
    double width;
    double height;
    QString fontName = QStringLiteral("System");
    double fontSize = 0;
    bool fontChanged = true;
    unsigned colour = 0x000000;
};

} // namespace toolkit
