#include "Canvas.h"

#include "Geometry.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

namespace toolkit {

Picture::Picture(int width, int height, qreal devicePixelRatio)
    : image(qRound(width * devicePixelRatio), qRound(height * devicePixelRatio),
        QImage::Format_ARGB32_Premultiplied)
{
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
}

Picture Picture::fromResource(const QString& name)
{
    Picture p;
    p.image.load(QLatin1String(":/") + name);
    return p;
}

int Picture::Width() const
{
    return qRound(image.width() / image.devicePixelRatio());
}
int Picture::Height() const
{
    return qRound(image.height() / image.devicePixelRatio());
}

Canvas::Canvas(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
}

void Canvas::setBackdrop(Picture picture)
{
    backdrop = std::move(picture);
    update();
}

Picture Canvas::newPicture() const
{
    return Picture(width(), height(), devicePixelRatioF());
}

void Canvas::paintEvent(QPaintEvent*)
{
    if (backdrop.isNull())
        return;
    QPainter p(this);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(QRectF(0, 0, backdrop.Width(), backdrop.Height()), backdrop.image);
}

void Canvas::mousePressEvent(QMouseEvent* e)
{
    emit MouseDown(qRound(e->position().x()), qRound(e->position().y()));
}

void Canvas::wheelEvent(QWheelEvent* e)
{
    const QPoint p = e->position().toPoint();
    const QPoint lines = wheel.take(e);
    if (onMouseWheel && onMouseWheel(p.x(), p.y(), lines.x(), lines.y()))
        e->accept();
    else
        e->ignore();
}

void Canvas::keyPressEvent(QKeyEvent* e)
{
    emit KeyDown(e->text());
    e->accept();
}

} // namespace toolkit
