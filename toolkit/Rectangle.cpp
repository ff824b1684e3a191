#include "Rectangle.h"

#include "Style.h"

#include <QDropEvent>
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

void Rectangle::AcceptFileDrop(const FileTypeList&)
{
    setAcceptDrops(true);
}

void Rectangle::dragEnterEvent(QDragEnterEvent* e)
{
    if (!fileDrops.enter(e))
        e->ignore();
}

void Rectangle::dragMoveEvent(QDragMoveEvent* e)
{
    if (!fileDrops.move(e))
        e->ignore();
}

void Rectangle::dragLeaveEvent(QDragLeaveEvent*)
{
    fileDrops.leave();
}

void Rectangle::dropEvent(QDropEvent* e)
{
    if (!fileDrops.drop(e, this))
        e->ignore();
}

} // namespace toolkit
