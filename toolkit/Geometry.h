#pragma once
// Controls are placed in window coordinates and follow their parent's edges through four locks,
// the model the window's design tables are written in. Qt positions children relative to their
// parent, so these helpers translate, and move locked children whenever a parent's size changes.

#include <QRect>
#include <QString>

class QWheelEvent;
class QWidget;

namespace toolkit {

struct Locks
{
    bool left = false, top = false, right = false, bottom = false;
    // "LT-B" style: a letter switches the lock on, a dash leaves it off.
    static Locks from(const char* code);
    bool operator==(const Locks&) const = default;
};

// Marks a widget as the window's drawing surface: the origin of window coordinates.
void makeSurface(QWidget* surface);
QWidget* surfaceOf(const QWidget* w);

// Creates the parent link and sets the rectangle, given in window coordinates.
void place(QWidget* w, QWidget* parent, QRect inWindow, Locks locks);
Locks locksOf(const QWidget* w);

QRect windowRect(const QWidget* w);
// Moves and sizes a control in window coordinates; locked children follow a change of size.
void setWindowRect(QWidget* w, QRect inWindow);
void setLeft(QWidget* w, int left);
void setWidth(QWidget* w, int width);
void setLeftAndWidth(QWidget* w, int left, int width);

// Wheel turns as lines: x and y, positive towards the end of the text. One notch is 120 eighths
// of a degree and counts three lines; touchpads send a notch in small steps, so what is left over
// is carried to the next event.
class WheelLines
{
public:
    QPoint take(const QWheelEvent* e);

private:
    QPoint rest;
};

// Lets the locked children of `parent` follow its change of size from `before`.
void applyLocks(QWidget* parent, QSize before);

} // namespace toolkit
