#include "TextArea.h"

#include "Geometry.h"
#include "Style.h"

#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>

#include <algorithm>

namespace toolkit {

TextArea::TextArea(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabChangesFocus(true);
    setFont(systemFont());
    connect(this, &QPlainTextEdit::textChanged, this, &TextArea::TextChange);
}

QStringList TextArea::Lines() const
{
    QStringList lines;
    lines.reserve(document()->blockCount());
    for (QTextBlock b = document()->begin(); b.isValid(); b = b.next())
        lines.append(b.text());
    return lines;
}

int TextArea::LineCount() const
{
    return document()->blockCount();
}

int TextArea::VerticalScrollPosition() const
{
    return verticalScrollBar()->value();
}

void TextArea::setVerticalScrollPosition(int line)
{
    QScrollBar* bar = verticalScrollBar();
    bar->setValue(std::clamp(line, bar->minimum(), bar->maximum()));
}

int TextArea::CharacterPosition(int line) const
{
    const QTextBlock block = document()->findBlockByNumber(std::max(line, 0));
    if (!block.isValid())
        return document()->characterCount() + 1;
    return block.position() + 1;
}

int TextArea::CharacterPosition(double x, double y) const
{
    const QPoint inViewport = viewport()->mapFrom(this, QPointF(x, y).toPoint());
    return cursorForPosition(inViewport).position() + 1;
}

int TextArea::LineHeight() const
{
    return fontMetrics().lineSpacing();
}

int TextArea::SelectionStart() const
{
    return textCursor().selectionStart();
}

int TextArea::SelectionLength() const
{
    const QTextCursor c = textCursor();
    return c.selectionEnd() - c.selectionStart();
}

void TextArea::select(int start, int length)
{
    QTextCursor c(document());
    const int last = document()->characterCount() - 1;
    c.setPosition(std::clamp(start, 0, last));
    c.setPosition(std::clamp(start + length, 0, last), QTextCursor::KeepAnchor);
    setTextCursor(c);
}

void TextArea::wheelEvent(QWheelEvent* e)
{
    if (onMouseWheel) {
        const QPoint p = e->position().toPoint();
        const QPoint lines = wheelLines(e);
        if (onMouseWheel(p.x(), p.y(), lines.x(), lines.y())) {
            e->accept();
            return;
        }
    }
    QPlainTextEdit::wheelEvent(e);
}

} // namespace toolkit
