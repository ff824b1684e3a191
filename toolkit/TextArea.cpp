#include "TextArea.h"

#include "PlainPane.h"
#include "Style.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace toolkit {

namespace {

// Frame marks and separators stand in a rich text's raw characters for the breaks it shows. One
// character for one keeps positions the same in both.
QString shownLines(const QTextDocument* doc)
{
    QString raw = doc->toRawText();
    for (QChar& c : raw) {
        const char16_t u = c.unicode();
        if (u == QChar::ParagraphSeparator || u == QChar::LineSeparator || u == 0xFDD0
            || u == 0xFDD1 || u == u'\r')
            c = u'\n';
    }
    return raw;
}

// A styled document without line wrap. Qt lays out such paragraphs from the left whatever their
// alignment; centred and right-set ones have their shown lines moved across the pane's width
// before each paint, and the lines' positions then serve painting, the caret and clicks alike.
class RichPane : public QTextEdit
{
public:
    explicit RichPane(QWidget* parent)
        : QTextEdit(parent)
    {
        setLineWrapMode(QTextEdit::NoWrap);
        setAcceptRichText(false);
        setTabChangesFocus(true);
    }

protected:
    void paintEvent(QPaintEvent* e) override
    {
        if (lineWrapMode() == QTextEdit::NoWrap)
            alignShownParagraphs();
        QTextEdit::paintEvent(e);
    }

private:
    void alignShownParagraphs()
    {
        QTextDocument* doc = document();
        const qreal width = viewport()->width() - 2 * doc->documentMargin();
        const qreal bottom = verticalScrollBar()->value() + viewport()->height();
        QAbstractTextDocumentLayout* layout = doc->documentLayout();
        for (QTextBlock b = cursorForPosition(QPoint(0, 0)).block(); b.isValid(); b = b.next()) {
            if (layout->blockBoundingRect(b).top() > bottom)
                break;
            const Qt::Alignment a = b.blockFormat().alignment() & Qt::AlignHorizontal_Mask;
            const qreal share = a & Qt::AlignHCenter       ? 0.5
                : a & (Qt::AlignRight | Qt::AlignTrailing) ? 1
                                                           : 0;
            QTextLayout* lines = b.layout();
            if (share == 0 || !lines)
                continue;
            for (int i = 0; i < lines->lineCount(); ++i) {
                QTextLine line = lines->lineAt(i);
                const qreal free = std::max<qreal>(0, width - line.naturalTextWidth());
                line.setPosition({free * share, line.position().y()});
            }
        }
    }
};

} // namespace

TextArea::TextArea(QWidget* parent)
    : QWidget(parent)
    , plain(new PlainPane(this))
{
    setFont(systemFont());
    // The focus goes to the pane inside.
    setFocusPolicy(Qt::NoFocus);
    connect(plain, &PlainPane::textChanged, this, [this] {
        ++revision;
        forgetRows();
        emit TextChange();
    });
    connect(plain, &PlainPane::viewMoved, this, &TextArea::forgetRows);
    watch(plain);
    showInside(plain);
}

TextArea::~TextArea() = default;

void TextArea::watch(QWidget* w)
{
    w->installEventFilter(this);
    if (auto* area = qobject_cast<QAbstractScrollArea*>(w)) {
        area->viewport()->installEventFilter(this);
        area->viewport()->setAcceptDrops(true);
    }
}

void TextArea::showInside(QWidget* w)
{
    forgetRows();
    w->setGeometry(rect());
    w->show();
    setFocusProxy(w);
    if (w != plain)
        plain->hide();
    else if (rich)
        rich->hide();
}

void TextArea::resizeEvent(QResizeEvent*)
{
    forgetRows();
    plain->setGeometry(rect());
    if (rich)
        rich->setGeometry(rect());
}

// Unwatched first: a widget sends events while it is taken down.
void TextArea::deleteRich()
{
    for (QTextEdit* pane : {rich.data(), richAside.data()}) {
        if (!pane)
            continue;
        pane->viewport()->removeEventFilter(this);
        pane->removeEventFilter(this);
        delete pane;
    }
}

void TextArea::putRichAside()
{
    const bool focused = rich->hasFocus();
    richAside = rich;
    rich = nullptr;
    richAside->hide();
    showInside(plain);
    if (focused)
        plain->setFocus();
}

void TextArea::takeRichBack()
{
    if (!richAside)
        return;
    const bool focused = plain->hasFocus();
    rich = richAside;
    richAside = nullptr;
    plain->setStore(LineStore());
    showInside(rich);
    if (focused)
        rich->setFocus();
    markRich();
    ++revision;
    if (richAsideState.isValid() && plain->stateBack)
        plain->stateBack(std::exchange(richAsideState, QVariant()));
    emit TextChange();
}

void TextArea::setStateHooks(
    std::function<QVariant()> now, std::function<void(const QVariant&)> back)
{
    plain->stateNow = std::move(now);
    plain->stateBack = std::move(back);
}

void TextArea::dropRich()
{
    if (!rich && !richAside)
        return;
    const bool focused = rich && rich->hasFocus();
    deleteRich();
    showInside(plain);
    if (focused)
        plain->setFocus();
}

QString TextArea::Text() const
{
    return rich ? rich->toPlainText() : plain->store().text();
}

qsizetype TextArea::TextLength() const
{
    return lines().size();
}

bool TextArea::hasSameText(const TextArea& other) const
{
    if (rich || other.rich)
        return TextLength() == other.TextLength() && Text() == other.Text();
    return plain->store().sameText(other.plain->store());
}

void TextArea::setText(const QString& text)
{
    setText(prepare(text));
}

PreparedText TextArea::prepare(QString text)
{
    return PreparedText(LineStore(std::move(text)));
}

void TextArea::setText(const PreparedText& text)
{
    ++fills;
    dropRich();
    plain->setStore(text.lines ? *text.lines : LineStore());
}

void TextArea::replaceText(const PreparedText& text)
{
    ++fills;
    if (!rich)
        return plain->replaceStore(text.lines ? *text.lines : LineStore());
    richAsideState = plain->stateNow ? plain->stateNow() : QVariant();
    putRichAside();
    // The plain pane starts clean: its first Undo brings the styled text back.
    plain->setStore(text.lines ? *text.lines : LineStore());
    plain->beforeFirst = [this] { takeRichBack(); };
}

bool TextArea::setText(const QString& text, const std::function<bool()>& between)
{
    // Big enough that the slices cost nothing, small enough that events run several times a
    // second while a long text comes in.
    constexpr qsizetype kSlice = qsizetype(1) << 20;
    // Slices end before a line break, so that a fill stopped early ends with a whole line.
    const auto cut = [&text](qsizetype from) {
        qsizetype at = from < text.size() ? text.indexOf(u'\n', from) : -1;
        if (at < 0)
            return text.size();
        return at > 0 && text.at(at - 1) == u'\r' ? at - 1 : at;
    };
    qsizetype end = text.size() <= kSlice ? text.size() : cut(kSlice);
    // The store keeps views of `text` itself: no copy of a long text.
    LineStore filled(text, end);
    setText(PreparedText(filled));
    if (end == text.size())
        return true;
    const quint64 fill = fills;
    const bool wasReadOnly = readOnly;
    setReadOnly(true);
    bool whole = false;
    while (between() && fills == fill) {
        if (end == text.size()) {
            whole = true;
            break;
        }
        const qsizetype next = cut(end + kSlice);
        filled.extendTo(text, next);
        end = next;
        // The view stays where the reader has scrolled it.
        const int line = plain->firstVisibleLine();
        plain->setStore(filled);
        plain->scrollToLine(line);
    }
    setReadOnly(wasReadOnly);
    return whole;
}

QTextDocument* TextArea::StyledText()
{
    ++fills;
    const bool focused = hasFocus();
    deleteRich();
    plain->setStore(LineStore());
    rich = new RichPane(this);
    rich->setReadOnly(readOnly);
    richMarkFirst = -1;
    richMarkCount = 0;
    richSpans.clear();
    connect(rich->document(), &QTextDocument::contentsChange, this, [this] {
        ++revision;
        forgetRows();
    });
    connect(rich->verticalScrollBar(), &QScrollBar::valueChanged, this, &TextArea::forgetRows);
    // Any new layout: a font, a margin, a line laid out anew.
    connect(rich->document()->documentLayout(), &QAbstractTextDocumentLayout::update, this,
        &TextArea::forgetRows);
    connect(rich, &QTextEdit::textChanged, this, &TextArea::TextChange);
    watch(rich);
    // Where the plain pane stood in the order of Tab.
    QWidget::setTabOrder(plain, rich);
    showInside(rich);
    if (focused)
        rich->setFocus();
    ++revision;
    return rich->document();
}

void TextArea::showNotice(const QString& text)
{
    StyledText();
    // The editor's own call, which leaves the caret and the view at the start.
    rich->setPlainText(text);
    rich->setLineWrapMode(QTextEdit::WidgetWidth);
    setReadOnly(true);
}

void TextArea::setReadOnly(bool on)
{
    readOnly = on;
    plain->setReadOnly(on);
    if (rich)
        rich->setReadOnly(on);
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
    acceptsFiles = true;
}

QWidget* TextArea::viewport() const
{
    return rich ? rich->viewport() : plain->viewport();
}

bool TextArea::eventFilter(QObject* watched, QEvent* e)
{
    const QEvent::Type t = e->type();
    if (t != QEvent::Wheel && t != QEvent::DragEnter && t != QEvent::DragMove
        && t != QEvent::DragLeave && t != QEvent::Drop)
        return QWidget::eventFilter(watched, e);
    const bool onViewport = watched == viewport();
    switch (t) {
    case QEvent::Wheel:
        if (onViewport && onMouseWheel) {
            auto* w = static_cast<QWheelEvent*>(e);
            const QPoint p = w->position().toPoint();
            const QPoint lines = wheel.take(w);
            if (onMouseWheel(p.x(), p.y(), lines.x(), lines.y())) {
                e->accept();
                return true;
            }
        }
        break;
    case QEvent::DragEnter:
        return onViewport && acceptsFiles && fileDrops.enter(static_cast<QDragEnterEvent*>(e));
    case QEvent::DragMove:
        return onViewport && acceptsFiles && fileDrops.move(static_cast<QDragMoveEvent*>(e));
    case QEvent::DragLeave:
        return onViewport && acceptsFiles && fileDrops.leave();
    case QEvent::Drop:
        return onViewport && acceptsFiles && fileDrops.drop(static_cast<QDropEvent*>(e), this);
    default:
        break;
    }
    return QWidget::eventFilter(watched, e);
}

const LineStore& TextArea::lines() const
{
    if (!rich)
        return plain->store();
    if (richLinesRevision != revision) {
        richLines = LineStore(shownLines(rich->document()));
        richLinesRevision = revision;
    }
    return richLines;
}

QStringList TextArea::Lines() const
{
    const LineStore& l = lines();
    QStringList out;
    out.reserve(l.lineCount());
    for (qsizetype i = 0; i < l.lineCount(); ++i) {
        const std::u16string_view s = l.line(i);
        out.append(QString(reinterpret_cast<const QChar*>(s.data()), qsizetype(s.size())));
    }
    return out;
}

// Not kept here: a block that no snapshot holds can take the next edit in place.
std::shared_ptr<const TextSnapshot> TextArea::snapshot() const
{
    return std::make_shared<const TextSnapshot>(lines(), revision);
}

int TextArea::LineCount() const
{
    return int(lines().lineCount());
}

QString TextArea::LineText(int line, qsizetype most) const
{
    if (line < 0 || line >= LineCount())
        return {};
    const std::u16string_view s = lines().line(line).substr(0, std::size_t(most));
    return QString(reinterpret_cast<const QChar*>(s.data()), qsizetype(s.size()));
}

qsizetype TextArea::LineLength(int line) const
{
    return line < 0 || line >= LineCount() ? 0 : qsizetype(lines().line(line).size());
}

int TextArea::VerticalScrollPosition() const
{
    if (!rich)
        return plain->firstVisibleLine();
    // Below the row where the line was put, so that a fraction of a pixel does not count.
    const int at = rich->cursorForPosition(QPoint(4, 1)).position();
    return int(lines().lineAt(at));
}

void TextArea::setVerticalScrollPosition(int line)
{
    if (!rich)
        return plain->scrollToLine(line);
    const LineStore& l = lines();
    line = std::clamp<int>(line, 0, int(l.lineCount()) - 1);
    const int position = int(l.lineStart(line));
    const QTextBlock b = rich->document()->findBlock(position);
    QScrollBar* bar = rich->verticalScrollBar();
    const QTextLayout* layout = b.layout();
    if (!layout)
        return;
    const QTextLine shown = layout->lineForTextPosition(position - b.position());
    const qreal top = rich->document()->documentLayout()->blockBoundingRect(b).top()
        + (shown.isValid() ? shown.y() : 0);
    bar->setValue(std::clamp(int(std::ceil(top)), bar->minimum(), bar->maximum()));
}

// A table of every line's start, made again after a change when first asked: the indicator asks
// for tens of thousands of lines on each redraw. A text of many millions of lines is searched
// instead, so that no redraw after a change stops to build the table.
int TextArea::CharacterPosition(int line) const
{
    constexpr qsizetype kMostTabled = qsizetype(1) << 22;
    const LineStore& l = lines();
    if (l.lineCount() > kMostTabled) {
        std::vector<int>().swap(starts);
        startsRevision = ~quint64(0);
        if (line >= l.lineCount())
            return int(l.size()) + 2;
        return int(l.lineStart(std::max(line, 0))) + 1;
    }
    if (startsRevision != revision) {
        starts.clear();
        starts.reserve(std::size_t(l.lineCount()) + 1);
        l.forEachLineStart([this](qsizetype at) { starts.push_back(int(at) + 1); });
        starts.push_back(int(l.size()) + 2);
        startsRevision = revision;
    }
    return starts[std::size_t(std::clamp<qsizetype>(line, 0, qsizetype(starts.size()) - 1))];
}

int TextArea::TextTop() const
{
    // The inner pane fills this control; its viewport sits inside its frame.
    const QWidget* v = viewport();
    return v->parentWidget()->y() + v->y();
}

int TextArea::TextHeight() const
{
    return viewport()->height();
}

int TextArea::lineAtRow(int row) const
{
    const int y = row - TextTop();
    if (!rich) {
        const int h = plain->lineHeight();
        const int offset = y - PlainPane::kTop;
        const int shown = offset >= 0 ? offset / h : -((h - 1 - offset) / h);
        return std::max(plain->firstVisibleLine() + shown, 0);
    }
    // Qt's own hit test: a row past the text's end belongs to no line.
    const QTextDocument* doc = rich->document();
    const int scrolled = rich->verticalScrollBar()->value();
    if (y + scrolled >= doc->documentLayout()->documentSize().height())
        return LineCount();
    return int(lines().lineAt(rich->cursorForPosition(QPoint(4, std::max(y, 0))).position()));
}

int TextArea::positionAtRow(int row) const
{
    const int bottom = TextTop() + TextHeight();
    if (row < 0 || row > bottom)
        return CharacterPosition(lineAtRow(row));
    if (rowsStale) {
        rows.resize(std::size_t(bottom) + 1);
        int line = -1;
        int position = 0;
        for (int r = 0; r <= bottom; ++r) {
            const int at = lineAtRow(r);
            if (at != line) {
                line = at;
                position = CharacterPosition(line);
            }
            rows[std::size_t(r)] = position;
        }
        rowsStale = false;
    }
    return rows[std::size_t(row)];
}

QRect TextArea::lineRect(int line) const
{
    if (!rich) {
        const int top = TextTop() + PlainPane::kTop
            + (line - plain->firstVisibleLine()) * plain->lineHeight();
        return {0, top, width(), plain->lineHeight()};
    }
    const QRect r
        = rich->cursorRect(QTextCursor(rich->document()->findBlock(CharacterPosition(line) - 1)));
    return r.translated(0, TextTop()).adjusted(0, 0, 0, 0);
}

int TextArea::LineHeight() const
{
    return rich ? rich->fontMetrics().lineSpacing() : plain->lineHeight();
}

int TextArea::SelectionStart() const
{
    return rich ? rich->textCursor().selectionStart() : int(plain->selectionStart());
}

int TextArea::SelectionLength() const
{
    if (!rich)
        return int(plain->selectionEnd() - plain->selectionStart());
    const QTextCursor c = rich->textCursor();
    return c.selectionEnd() - c.selectionStart();
}

void TextArea::setSelectionLength(int length)
{
    select(SelectionStart(), length);
}

void TextArea::select(int start, int length)
{
    if (!rich)
        return plain->setSelection(start, qsizetype(start) + length, false);
    QTextCursor c(rich->document());
    const int last = rich->document()->characterCount() - 1;
    c.setPosition(std::clamp(start, 0, last));
    c.setPosition(std::clamp(start + length, 0, last), QTextCursor::KeepAnchor);
    QScrollBar* v = rich->verticalScrollBar();
    QScrollBar* h = rich->horizontalScrollBar();
    const int line = v->value();
    const int column = h->value();
    rich->setTextCursor(c);
    v->setValue(line);
    h->setValue(column);
}

void TextArea::setHighlight(int first, int count)
{
    if (!rich)
        return plain->setHighlight(first, count);
    first = std::max(first, -1);
    count = first < 0 ? 0 : std::max(count, 0);
    if (first == richMarkFirst && count == richMarkCount)
        return;
    richMarkFirst = first;
    richMarkCount = count;
    markRich();
}

int TextArea::highlightFirst() const
{
    return rich ? richMarkFirst : int(plain->highlightFirst());
}

int TextArea::highlightCount() const
{
    return rich ? richMarkCount : int(plain->highlightCount());
}

void TextArea::setSpans(std::vector<LineSpan> spans)
{
    if (!rich)
        return plain->setSpans(std::move(spans));
    if (spans == richSpans)
        return;
    richSpans = std::move(spans);
    markRich();
}

std::vector<LineSpan> TextArea::spans() const
{
    return rich ? richSpans : plain->spans();
}

// The editor's extra selections paint behind its text and leave its cursor alone. A stretch
// without lines gets no mark here: the editor has no way to draw one between its lines.
void TextArea::markRich()
{
    const auto [line, strong] = markColours(this);
    QList<QTextEdit::ExtraSelection> marks;
    const auto mark = [&](int from, int to, const QColor& colour, bool wholeWidth) {
        QTextEdit::ExtraSelection m;
        m.cursor = QTextCursor(rich->document());
        const int last = rich->document()->characterCount() - 1;
        m.cursor.setPosition(std::clamp(from, 0, last));
        m.cursor.setPosition(std::clamp(to, 0, last), QTextCursor::KeepAnchor);
        m.format.setBackground(colour);
        if (wholeWidth)
            m.format.setProperty(QTextFormat::FullWidthSelection, true);
        marks.append(m);
    };
    // A styled text is seldom long; a stretch of thousands of lines is marked at its start.
    const int lines = std::min(richMarkCount, 2000);
    for (int l = richMarkFirst; l < richMarkFirst + lines; ++l)
        mark(CharacterPosition(l) - 1, CharacterPosition(l) - 1, line, true);
    for (const LineSpan& s : richSpans) {
        const int start = CharacterPosition(int(s.line)) - 1;
        mark(start + int(s.from), start + int(s.to), strong, false);
    }
    rich->setExtraSelections(marks);
}

} // namespace toolkit
