#pragma once
// Controls made the way the window tables describe them: a name, a parent, a rectangle in window
// coordinates, locks, and the few properties that differ from one control to the next.

#include "Geometry.h"
#include "Style.h"

#include <QRect>
#include <QString>
#include <QWidget>

namespace toolkit {

class Label;
class Rectangle;
class TextArea;

// A control of any class, named, under its parent at a rectangle in window coordinates.
template <class T> T* make(const char* name, QWidget* parent, QRect inWindow, const char* locks)
{
    auto* control = new T();
    control->setObjectName(QLatin1String(name));
    place(control, parent, inWindow, Locks::from(locks));
    return control;
}

struct LabelLook
{
    FontStyle font;
    int alignment = 0; // 0 left, 2 centred, 3 right
    unsigned color = 0x000000;
    bool multiline = false;
};

Label* makeLabel(const char* name, QWidget* parent, QRect inWindow, const char* locks,
    const QString& text, LabelLook look = {});
// Blue and underlined, with the pointing hand. A text wider than its field may widen it up to
// maxWidth, so that a configured address shows whole.
Label* makeLink(const char* name, QWidget* parent, QRect inWindow, const char* locks,
    const QString& text, FontStyle font, int maxWidth);
Rectangle* makeRectangle(const char* name, QWidget* parent, QRect inWindow, const char* locks,
    unsigned fill, unsigned border);
// A read-only text of prose, black on white, wrapped at the control's width.
TextArea* makeNotice(
    const char* name, QWidget* parent, QRect inWindow, const char* locks, const QString& text);

} // namespace toolkit
