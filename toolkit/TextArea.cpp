#include "TextArea.h"

#include "Geometry.h"
#include "Style.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>
#include <QTextObjectInterface>
#include <QWheelEvent>

#include <algorithm>

namespace toolkit {

namespace {

// Draws the pictures of a styled text, which the plain editor's layout leaves out, at the size
// their format gives.
class PictureObject : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)
public:
    using QObject::QObject;
    QSizeF intrinsicSize(QTextDocument* doc, int, const QTextFormat& format) override
    {
        const QTextImageFormat f = format.toImageFormat();
        if (f.width() > 0 && f.height() > 0)
            return {f.width(), f.height()};
        return picture(doc, f).size();
    }
    void drawObject(QPainter* painter, const QRectF& rect, QTextDocument* doc, int,
        const QTextFormat& format) override
    {
        painter->drawImage(rect, picture(doc, format.toImageFormat()));
    }

private:
    static QImage picture(QTextDocument* doc, const QTextImageFormat& f)
    {
        return doc->resource(QTextDocument::ImageResource, QUrl(f.name())).value<QImage>();
    }
};

} // namespace

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
    // Any new layout: a font, a margin, a line laid out anew.
    connect(layout, &QAbstractTextDocumentLayout::update, this, [this] { rowsStale = true; });
    layout->registerHandler(QTextFormat::ImageObject, new PictureObject(this));
}

bool TextArea::setText(const QString& text, const std::function<bool()>& between)
{
    // Big enough that the slices cost nothing, small enough that events run several times a
    // second while a document takes the lines in.
    constexpr qsizetype kSlice = qsizetype(1) << 20;
    // Slices end before a line break, so that a fill stopped early ends with a whole line, and
    // never between the CR and the LF of one break, which would make two.
    const auto cut = [&text](qsizetype from) {
        qsizetype at = from < text.size() ? text.indexOf(u'\n', from) : -1;
        if (at < 0)
            return text.size();
        return at > 0 && text.at(at - 1) == u'\r' ? at - 1 : at;
    };
    qsizetype end = text.size() <= kSlice ? text.size() : cut(kSlice);
    setText(text.first(end));
    if (end == text.size())
        return true;
    const quint64 fill = fills;
    const bool wasReadOnly = isReadOnly();
    setReadOnly(true);
    // A fill is not an edit to undo; switching undo off and on again also empties its stacks.
    document()->setUndoRedoEnabled(false);
    bool whole = false;
    while (between() && fills == fill) {
        if (end == text.size()) {
            whole = true;
            break;
        }
        const qsizetype next = cut(end + kSlice);
        QTextCursor c(document());
        c.movePosition(QTextCursor::End);
        c.insertText(text.sliced(end, next - end));
        end = next;
    }
    document()->setUndoRedoEnabled(true);
    setReadOnly(wasReadOnly);
    return whole;
}

PreparedText TextArea::prepare(QString text)
{
    return PreparedText(std::move(text));
}

void TextArea::setText(const PreparedText& text)
{
    setText(text.text ? *text.text : QString());
}

void TextArea::setTextFont(const QString& name)
{
    QFont f = font();
    f.setFamily(name == QLatin1String("System") ? systemFont().family() : name);
    setFont(f);
}

void TextArea::setTextSize(int size)
{
    QFont f = font();
    const QFont desktop = systemFont();
    if (size > 0)
        f.setPixelSize(size);
    else if (desktop.pixelSize() > 0)
        f.setPixelSize(desktop.pixelSize());
    else
        f.setPointSizeF(desktop.pointSizeF());
    setFont(f);
}

void TextArea::AcceptFileDrop(const FileTypeList&)
{
    setAcceptDrops(true);
}

void TextArea::dragEnterEvent(QDragEnterEvent* e)
{
    if (!fileDrops.enter(e))
        QPlainTextEdit::dragEnterEvent(e);
}

void TextArea::dragMoveEvent(QDragMoveEvent* e)
{
    if (!fileDrops.move(e))
        QPlainTextEdit::dragMoveEvent(e);
}

void TextArea::dragLeaveEvent(QDragLeaveEvent* e)
{
    if (!fileDrops.leave())
        QPlainTextEdit::dragLeaveEvent(e);
}

void TextArea::dropEvent(QDropEvent* e)
{
    if (!fileDrops.drop(e, this))
        QPlainTextEdit::dropEvent(e);
}

QStringList TextArea::Lines() const
{
    QStringList lines;
    for (std::u16string_view line : lineTexts().lines)
        lines.append(QString(reinterpret_cast<const QChar*>(line.data()), qsizetype(line.size())));
    return lines;
}

// One copy of the whole text, cut where the document's blocks end. The document turns frame marks
// that come with a text into paragraph separators, so the marks in its raw text are its own.
TextLines TextArea::lineTexts() const
{
    const QTextDocument* doc = document();
    TextLines t;
    t.text = doc->toRawText();
    const auto* data = reinterpret_cast<const char16_t*>(t.text.utf16());
    const size_t size = size_t(t.text.size());
    t.lines.reserve(size_t(doc->blockCount()));
    size_t start = 0;
    for (size_t i = 0; i < size; ++i) {
        const char16_t c = data[i];
        // Paragraph separator, and the characters that begin and end a frame.
        if (c == QChar::ParagraphSeparator || c == 0xFDD0 || c == 0xFDD1) {
            t.lines.emplace_back(data + start, i - start);
            start = i + 1;
        }
    }
    t.lines.emplace_back(data + start, size - start);
    return t;
}

std::shared_ptr<const TextSnapshot> TextArea::snapshot() const
{
    TextLines t = lineTexts();
    // The views stay valid: moving a QString keeps its buffer.
    return std::make_shared<const TextSnapshot>(std::move(t.text), std::move(t.lines), revision);
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

int TextArea::positionAtRow(int row) const
{
    if (row < 0 || row > height())
        return rowPositions(row, row).front();
    if (rowsStale || int(rows.size()) != height() + 1) {
        rows = rowPositions(0, height());
        rowsStale = false;
    }
    return rows[static_cast<size_t>(row)];
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

void TextArea::paintEvent(QPaintEvent* e)
{
    alignShownParagraphs();
    QPlainTextEdit::paintEvent(e);
}

// The plain editor's layout puts every line at the left. Styled paragraphs that are centred or
// set to the right have their shown lines moved across the pane's width before each paint; the
// lines' own positions serve painting, the caret and clicks alike.
void TextArea::alignShownParagraphs()
{
    const qreal margin = document()->documentMargin();
    const qreal width = viewport()->width() - 2 * margin;
    const qreal bottom = viewport()->height();
    qreal top = contentOffset().y();
    for (QTextBlock b = firstVisibleBlock(); b.isValid() && top <= bottom; b = b.next()) {
        const qreal height = blockBoundingRect(b).height();
        top += height;
        const Qt::Alignment a = b.blockFormat().alignment() & Qt::AlignHorizontal_Mask;
        const qreal share = a & Qt::AlignHCenter       ? 0.5
            : a & (Qt::AlignRight | Qt::AlignTrailing) ? 1
                                                       : 0;
        QTextLayout* layout = b.layout();
        if (share == 0 || !layout)
            continue;
        for (int i = 0; i < layout->lineCount(); ++i) {
            QTextLine line = layout->lineAt(i);
            const qreal free = std::max<qreal>(0, width - line.naturalTextWidth());
            line.setPosition({margin + free * share, line.position().y()});
        }
    }
}

void TextArea::wheelEvent(QWheelEvent* e)
{
    if (onMouseWheel) {
        const QPoint p = e->position().toPoint();
        const QPoint lines = wheel.take(e);
        if (onMouseWheel(p.x(), p.y(), lines.x(), lines.y())) {
            e->accept();
            return;
        }
    }
    QPlainTextEdit::wheelEvent(e);
}

} // namespace toolkit

#include "TextArea.moc"
