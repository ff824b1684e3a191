#include "Rectangle.h"

#include "Style.h"

#include <QPainter>

namespace toolkit {

Rectangle::Rectangle(QWidget* parent)
    : QWidget(parent)
{
}

void Rectangle::setColors(unsigned fill, unsigned topLeft, unsigned bottomRight)
{
    FillColor = rgb(fill);
    TopLeftColor = rgb(topLeft);
    BottomRightColor = rgb(bottomRight);
    update();
}

void Rectangle::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    const int w = width(), h = height();
    p.fillRect(rect(), FillColor);
    p.fillRect(0, 0, w, 1, TopLeftColor);
    p.fillRect(0, 0, 1, h, TopLeftColor);
    p.fillRect(0, h - 1, w, 1, BottomRightColor);
    p.fillRect(w - 1, 0, 1, h, BottomRightColor);
}

} // namespace toolkit
