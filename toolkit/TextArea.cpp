#include "TextArea.h"

#include "Geometry.h"
#include "Style.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace toolkit {

TextArea::TextArea(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabChangesFocus(true);
    setFont(systemFont());
    connect(this, &QPlainTextEdit::textChanged, this, &TextArea::TextChange);
    connect(document(), &QTextDocument::contentsChange, this, [this] {
        ++revision;
        rowsStale = startsStale = true;
    });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { rowsStale = true; });
    QAbstractTextDocumentLayout* layout = document()->documentLayout();
    connect(layout, &QAbstractTextDocumentLayout::update, this, [this] { rowsStale = true; });
    connect(layout, &QAbstractTextDocumentLayout::documentSizeChanged, this,
        [this] { rowsStale = true; });
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

const std::vector<int>& TextArea::lineStarts() const
{
    if (startsStale) {
        starts.clear();
        starts.reserve(document()->blockCount());
        int position = 1;
        for (QTextBlock b = document()->begin(); b.isValid(); b = b.next()) {
            starts.push_back(position);
            position += b.length();
        }
        startsStale = false;
    }
    return starts;
}

int TextArea::CharacterPosition(int line) const
{
    const std::vector<int>& s = lineStarts();
    if (line >= int(s.size()))
        return document()->characterCount() + 1;
    return s[std::max(line, 0)];
}

// Walks the blocks down from the first visible one as Qt's own hit test does: a row above a
// block's top belongs to the block before it, a row below the last block to no line.
std::vector<int> TextArea::rowPositions(int first, int last) const
{
    std::vector<int> out;
    out.reserve(std::max(last - first + 1, 0));
    const int pastEnd = document()->characterCount() + 1;
    const int viewportTop = viewport()->y();
    QTextBlock b = firstVisibleBlock();
    double top = contentOffset().y();
    double height = blockBoundingRect(b).height();
    for (int y = first; y <= last; ++y) {
        const double vy = y - viewportTop;
        while (vy < top && b.previous().isValid()) {
            b = b.previous();
            height = blockBoundingRect(b).height();
            top -= height;
        }
        while (vy >= top + height && b.next().isValid()) {
            top += height;
            b = b.next();
            height = blockBoundingRect(b).height();
        }
        out.push_back(vy >= top + height ? pastEnd : b.position() + 1);
    }
    return out;
}

int TextArea::CharacterPosition(double, double y) const
{
    const int row = static_cast<int>(std::floor(y));
    if (row < 0 || row > height())
        return rowPositions(row, row).front();
    if (rowsStale || int(rows.size()) != height() + 1) {
        rows = rowPositions(0, height());
        rowsStale = false;
    }
    return rows[row];
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

void TextArea::setSelectionLength(int length)
{
    select(SelectionStart(), length);
}

void TextArea::select(int start, int length)
{
    QTextCursor c(document());
    const int last = document()->characterCount() - 1;
    c.setPosition(std::clamp(start, 0, last));
    c.setPosition(std::clamp(start + length, 0, last), QTextCursor::KeepAnchor);
    QScrollBar* v = verticalScrollBar();
    QScrollBar* h = horizontalScrollBar();
    const int line = v->value();
    const int column = h->value();
    setTextCursor(c);
    v->setValue(line);
    h->setValue(column);
}

void TextArea::resizeEvent(QResizeEvent* e)
{
    rowsStale = true;
    QPlainTextEdit::resizeEvent(e);
}

void TextArea::changeEvent(QEvent* e)
{
    if (e->type() == QEvent::FontChange || e->type() == QEvent::StyleChange)
        rowsStale = true;
    QPlainTextEdit::changeEvent(e);
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
