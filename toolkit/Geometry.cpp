#include "Geometry.h"

#include <QVariant>
#include <QWheelEvent>
#include <QWidget>

namespace toolkit {
namespace {
constexpr char kLocksProperty[] = "twinlyLocks";
constexpr char kSurfaceProperty[] = "twinlySurface";

int pack(Locks l)
{
    return (l.left ? 1 : 0) | (l.top ? 2 : 0) | (l.right ? 4 : 0) | (l.bottom ? 8 : 0);
}
Locks unpack(int v)
{
    return {(v & 1) != 0, (v & 2) != 0, (v & 4) != 0, (v & 8) != 0};
}

// One axis: both locks stretch, the far lock alone moves, anything else stays put.
void follow(bool nearLock, bool farLock, int delta, int& pos, int& size)
{
    if (nearLock && farLock)
        size += delta;
    else if (farLock)
        pos += delta;
}
} // namespace

Locks Locks::from(const char* code)
{
    const QString s = QString::fromLatin1(code);
    return {s.contains(u'L'), s.contains(u'T'), s.contains(u'R'), s.contains(u'B')};
}

void makeSurface(QWidget* surface)
{
    surface->setProperty(kSurfaceProperty, true);
}

QWidget* surfaceOf(const QWidget* w)
{
    for (auto* p = const_cast<QWidget*>(w); p; p = p->parentWidget())
        if (p->property(kSurfaceProperty).toBool())
            return p;
    return nullptr;
}

namespace {
// Where the parent's top-left corner lies in window coordinates.
QPoint originOf(const QWidget* parent)
{
    const QWidget* surface = surfaceOf(parent);
    return surface && surface != parent ? parent->mapTo(surface, QPoint(0, 0)) : QPoint();
}
} // namespace

void place(QWidget* w, QWidget* parent, QRect inWindow, Locks locks)
{
    w->setParent(parent);
    w->setProperty(kLocksProperty, pack(locks));
    w->setGeometry(inWindow.translated(-originOf(parent)));
}

Locks locksOf(const QWidget* w)
{
    return unpack(w->property(kLocksProperty).toInt());
}

QRect windowRect(const QWidget* w)
{
    const QWidget* surface = surfaceOf(w);
    if (!surface || surface == w)
        return QRect(QPoint(0, 0), w->size());
    return QRect(w->mapTo(surface, QPoint(0, 0)), w->size());
}

void setWindowRect(QWidget* w, QRect inWindow)
{
    const QSize before = w->size();
    w->setGeometry(inWindow.translated(-originOf(w->parentWidget())));
    if (w->size() != before)
        applyLocks(w, before);
}

void setLeft(QWidget* w, int left)
{
    QRect r = windowRect(w);
    r.moveLeft(left);
    setWindowRect(w, r);
}

void setLeftAndWidth(QWidget* w, int left, int width)
{
    QRect r = windowRect(w);
    r.moveLeft(left);
    r.setWidth(width);
    setWindowRect(w, r);
}

void setWidth(QWidget* w, int width)
{
    QRect r = windowRect(w);
    r.setWidth(width);
    setWindowRect(w, r);
}

QPoint WheelLines::take(const QWheelEvent* e)
{
    constexpr int eighthsPerLine = 120 / 3;
    rest += e->angleDelta();
    const QPoint lines(-rest.x() / eighthsPerLine, -rest.y() / eighthsPerLine);
    rest += lines * eighthsPerLine;
    return lines;
}

void applyLocks(QWidget* parent, QSize before)
{
    const int dw = parent->width() - before.width();
    const int dh = parent->height() - before.height();
    if (dw == 0 && dh == 0)
        return;
    for (QObject* o : parent->children()) {
        auto* child = qobject_cast<QWidget*>(o);
        if (!child || !child->property(kLocksProperty).isValid() || child->isWindow())
            continue;
        const Locks l = locksOf(child);
        int x = child->x(), y = child->y(), width = child->width(), height = child->height();
        follow(l.left, l.right, dw, x, width);
        follow(l.top, l.bottom, dh, y, height);
        const QSize old = child->size();
        child->setGeometry(x, y, width, height);
        if (child->size() != old)
            applyLocks(child, old);
    }
}

} // namespace toolkit
