#include "Graphics.h"

#include "Style.h"

#include <QFontMetricsF>
#include <QPen>
#include <QPolygon>

#include <cmath>

namespace toolkit {

Graphics::Graphics(Picture& picture)
    : painter(&picture.image)
    , width(picture.Width())
    , height(picture.Height())
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(rgb(colour));
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void Graphics::setForeColor(unsigned value)
{
    if (value == colour)
        return;
    colour = value;
    painter.setBrush(rgb(value));
}

void Graphics::setFontName(const QString& name)
{
    fontChanged = fontChanged || name != fontName;
    fontName = name;
}

void Graphics::setFontSize(double size)
{
    fontChanged = fontChanged || size != fontSize;
    fontSize = size;
}

void Graphics::FillRect(double x, double y, double w, double h)
{
    painter.fillRect(QRectF(x, y, w, h), painter.brush());
}

void Graphics::FillPolygon(std::span<const int> points)
{
    QPolygon polygon;
    polygon.reserve(int(points.size() / 2));
    bool flat = true;
    for (size_t i = 1; i + 1 < points.size(); i += 2) {
        polygon.append(QPoint(points[i], points[i + 1]));
        flat = flat && points[i + 1] == points[2];
    }
    // A polygon on one row covers no pixel: bands out of view, thousands of them in a long text.
    if (flat)
        return;
    // Outlined in the fill's colour, so that the last row and column the corners name are
    // covered too, as each corner stands for a whole pixel.
    painter.setPen(QPen(painter.brush().color(), 0));
    painter.drawPolygon(polygon, Qt::OddEvenFill);
    painter.setPen(Qt::NoPen);
}

void Graphics::applyFont()
{
    if (!fontChanged)
        return;
    QFont f = fontName == QLatin1String("System") ? systemFont() : QFont(fontName);
    if (fontSize > 0)
        f.setPixelSize(qRound(fontSize));
    painter.setFont(f);
    fontChanged = false;
}

int Graphics::TextWidth(const QString& text)
{
    applyFont();
    return int(std::ceil(QFontMetricsF(painter.font()).horizontalAdvance(text)));
}

int Graphics::TextAscent()
{
    applyFont();
    return int(std::ceil(QFontMetricsF(painter.font()).ascent()));
}

int Graphics::TextDescent()
{
    applyFont();
    return int(std::ceil(QFontMetricsF(painter.font()).descent()));
}

void Graphics::DrawText(const QString& text, double x, double y)
{
    applyFont();
    // Text is drawn with the pen; shapes only fill.
    painter.setPen(rgb(colour));
    painter.drawText(QPointF(x, y), text);
    painter.setPen(Qt::NoPen);
}

} // namespace toolkit
