#include "Graphics.h"

#include "Style.h"

#include <QPolygon>

namespace toolkit {

Graphics::Graphics(Picture& picture)
    : painter(&picture.image)
    , width(picture.Width())
    , height(picture.Height())
{
    painter.setPen(Qt::NoPen);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void Graphics::setForeColor(unsigned value)
{
    const QColor c = rgb(value);
    painter.setBrush(c);
    painter.setPen(Qt::NoPen);
    // Text is drawn with the pen; shapes only fill.
    textColour = c;
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
    for (size_t i = 1; i + 1 < points.size(); i += 2)
        polygon.append(QPoint(points[i], points[i + 1]));
    painter.drawPolygon(polygon, Qt::OddEvenFill);
}

void Graphics::DrawText(const QString& text, double x, double y)
{
    if (fontChanged) {
        QFont f = fontName == QLatin1String("System") ? systemFont() : QFont(fontName);
        if (fontSize > 0)
            f.setPixelSize(qRound(fontSize));
        painter.setFont(f);
        fontChanged = false;
    }
    painter.setPen(textColour);
    painter.drawText(QPointF(x, y), text);
    painter.setPen(Qt::NoPen);
}

} // namespace toolkit
