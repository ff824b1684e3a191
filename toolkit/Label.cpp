#include "Label.h"

#include <QMouseEvent>

namespace toolkit {

Label::Label(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
}

void Label::setTextAlignment(int code)
{
    const Qt::Alignment h = code == 2 ? Qt::AlignHCenter
        : code == 3                   ? Qt::AlignRight
                                      : Qt::AlignLeft;
    setAlignment(h | (wordWrap() ? Qt::AlignTop : Qt::AlignVCenter));
}

void Label::setLink(bool on)
{
    link = on;
    if (on)
        setCursor(Qt::PointingHandCursor);
    else
        unsetCursor();
}

void Label::enterEvent(QEnterEvent* e)
{
    QLabel::enterEvent(e);
    emit MouseEnter();
}

void Label::leaveEvent(QEvent* e)
{
    QLabel::leaveEvent(e);
    emit MouseExit();
}

void Label::mousePressEvent(QMouseEvent* e)
{
    emit MouseDown(qRound(e->position().x()), qRound(e->position().y()));
    e->setAccepted(link);
}

} // namespace toolkit
