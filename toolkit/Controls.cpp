#include "Controls.h"

#include "Geometry.h"
#include "Label.h"
#include "Rectangle.h"
#include "TextArea.h"

#include <QPalette>

#include <algorithm>

namespace toolkit {

Label* makeLabel(const char* name, QWidget* parent, QRect inWindow, const char* locks,
    const QString& text, LabelLook look)
{
    auto* label = make<Label>(name, parent, inWindow, locks);
    label->setText(text);
    label->setFont(systemFont(look.font));
    label->setMultiline(look.multiline);
    label->setTextAlignment(look.alignment);
    setTextColor(label, rgb(look.color));
    return label;
}

Label* makeLink(const char* name, QWidget* parent, QRect inWindow, const char* locks,
    const QString& text, FontStyle font, int maxWidth)
{
    font.underline = true;
    Label* link = makeLabel(name, parent, inWindow, locks, text, {font, 0, 0x0000FF});
    // The colour never changes on hovering; only the pointer does.
    link->setLink(true);
    if (link->sizeHint().width() > inWindow.width())
        setWidth(link, std::min(link->sizeHint().width(), maxWidth));
    return link;
}

Rectangle* makeRectangle(const char* name, QWidget* parent, QRect inWindow, const char* locks,
    unsigned fill, unsigned border)
{
    auto* r = make<Rectangle>(name, parent, inWindow, locks);
    r->setColors(fill, border, border);
    return r;
}

TextArea* makeNotice(
    const char* name, QWidget* parent, QRect inWindow, const char* locks, const QString& text)
{
    auto* area = make<TextArea>(name, parent, inWindow, locks);
    area->showNotice(text);
    QPalette p = area->palette();
    p.setColor(QPalette::Base, rgb(0xFFFFFF));
    area->setPalette(p);
    setTextColor(area, rgb(0x000000));
    return area;
}

} // namespace toolkit
