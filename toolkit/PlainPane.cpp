#include "PlainPane.h"

#include "MenuBar.h"
#include "Style.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStyleHints>
#include <QTextBoundaryFinder>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace toolkit {

namespace {

// The left margin, and the longest run drawn or measured at once.
constexpr qreal kLeft = 4;
constexpr qsizetype kPiece = 256;
// Lines longer than this are measured character by character from a table, which a very long
// line needs to stay quick; shorter ones are measured as drawn, kerning and all.
constexpr qsizetype kMeasuredWhole = 4096;
constexpr qreal kWidest = 1 << 30;
// Words are looked for this far around the caret, so that a long line costs no more.
constexpr qsizetype kWordReach = 2000;

QString viewOf(std::u16string_view s)
{
    return QString::fromRawData(reinterpret_cast<const QChar*>(s.data()), qsizetype(s.size()));
}

// What a screen reader reads and edits through: the text on the pane's UTF-16 offsets.
class PaneAccessible : public QAccessibleWidget,
                       public QAccessibleTextInterface,
                       public QAccessibleEditableTextInterface
{
public:
    explicit PaneAccessible(PlainPane* pane)
        : QAccessibleWidget(pane, QAccessible::EditableText)
    {
    }
    void* interface_cast(QAccessible::InterfaceType t) override
    {
        if (t == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface*>(this);
        if (t == QAccessible::EditableTextInterface)
            return static_cast<QAccessibleEditableTextInterface*>(this);
        return QAccessibleWidget::interface_cast(t);
    }
    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.editable = !pane()->isReadOnly();
        s.readOnly = pane()->isReadOnly();
        s.multiLine = true;
        s.selectableText = true;
        return s;
    }
    QString text(QAccessible::Text t) const override
    {
        if (t == QAccessible::Value)
            return pane()->store().text();
        return QAccessibleWidget::text(t);
    }

    void selection(int index, int* start, int* end) const override
    {
        const bool any = index == 0 && pane()->hasSelection();
        *start = any ? int(pane()->selectionStart()) : 0;
        *end = any ? int(pane()->selectionEnd()) : 0;
    }
    int selectionCount() const override { return pane()->hasSelection() ? 1 : 0; }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int) override
    {
        pane()->setSelection(pane()->cursorPosition(), pane()->cursorPosition());
    }
    void setSelection(int, int start, int end) override { pane()->setSelection(start, end); }
    int cursorPosition() const override { return int(pane()->cursorPosition()); }
    void setCursorPosition(int position) override { pane()->setSelection(position, position); }
    QString text(int start, int end) const override { return pane()->store().text(start, end); }
    int characterCount() const override { return int(pane()->store().size()); }
    QRect characterRect(int offset) const override
    {
        const LineStore& t = pane()->store();
        const QRectF caret = pane()->caretRect(offset);
        const qreal next = offset < t.size() && t.at(offset) != u'\r' && t.at(offset) != u'\n'
            ? pane()->caretRect(offset + 1).left()
            : caret.left() + 1;
        const QPoint origin = pane()->viewport()->mapToGlobal(QPoint());
        return QRectF(caret.left(), caret.top(), next - caret.left(), caret.height())
            .toAlignedRect()
            .translated(origin);
    }
    int offsetAtPoint(const QPoint& point) const override
    {
        return int(pane()->positionAt(pane()->viewport()->mapFromGlobal(point)));
    }
    void scrollToSubstring(int start, int) override { pane()->setSelection(start, start); }
    QString attributes(int offset, int* start, int* end) const override
    {
        *start = *end = offset;
        return QString();
    }
    QString textAtOffset(
        int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override
    {
        const LineStore& t = pane()->store();
        if (type != QAccessible::LineBoundary && type != QAccessible::ParagraphBoundary
            && type != QAccessible::SentenceBoundary)
            return around(offset, type, start, end);
        const qsizetype line = t.lineAt(offset);
        *start = int(t.lineStart(line));
        *end = int(t.lineStart(line + 1));
        return t.text(*start, *end);
    }
    QString textBeforeOffset(
        int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override
    {
        int s = 0, e = 0;
        textAtOffset(offset, type, &s, &e);
        if (s <= 0) {
            *start = *end = 0;
            return QString();
        }
        return textAtOffset(s - 1, type, start, end);
    }
    QString textAfterOffset(
        int offset, QAccessible::TextBoundaryType type, int* start, int* end) const override
    {
        int s = 0, e = 0;
        textAtOffset(offset, type, &s, &e);
        if (e >= characterCount() || e <= offset) {
            *start = *end = characterCount();
            return QString();
        }
        return textAtOffset(e, type, start, end);
    }

    void deleteText(int start, int end) override { pane()->replace(start, end, QString()); }
    void insertText(int offset, const QString& text) override
    {
        pane()->replace(offset, offset, text);
    }
    void replaceText(int start, int end, const QString& text) override
    {
        pane()->replace(start, end, text);
    }

private:
    PlainPane* pane() const { return static_cast<PlainPane*>(widget()); }
    // Characters and words, found within the line around the offset.
    QString around(int offset, QAccessible::TextBoundaryType type, int* start, int* end) const
    {
        const LineStore& t = pane()->store();
        const qsizetype line = t.lineAt(offset);
        const qsizetype from = std::max(t.lineStart(line), qsizetype(offset) - kWordReach);
        const qsizetype to = std::min(t.lineStart(line + 1), qsizetype(offset) + kWordReach);
        const QString piece = t.text(from, to);
        if (type == QAccessible::NoBoundary) {
            *start = 0;
            *end = characterCount();
            return text(0, *end);
        }
        QTextBoundaryFinder f(type == QAccessible::WordBoundary ? QTextBoundaryFinder::Word
                                                                : QTextBoundaryFinder::Grapheme,
            piece);
        f.setPosition(offset - from);
        const qsizetype a = f.isAtBoundary() ? offset - from : f.toPreviousBoundary();
        f.setPosition(offset - from);
        const qsizetype b = f.toNextBoundary();
        *start = int(from + std::max<qsizetype>(a, 0));
        *end = int(from + (b < 0 ? piece.size() : b));
        return t.text(*start, *end);
    }
};

QAccessibleInterface* paneAccessible(const QString& key, QObject* object)
{
    if (key == QLatin1String("toolkit::PlainPane") && object->isWidgetType())
        return new PaneAccessible(static_cast<PlainPane*>(object));
    return nullptr;
}

} // namespace

PlainPane::PlainPane(QWidget* parent)
    : QAbstractScrollArea(parent)
{
    static const bool factory = [] {
        QAccessible::installFactory(paneAccessible);
        return true;
    }();
    Q_UNUSED(factory);
    setAttribute(Qt::WA_InputMethodEnabled);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    horizontalScrollBar()->setSingleStep(20);
    changeEvent(nullptr);
}

void PlainPane::setStore(LineStore store)
{
    undos.clear();
    redos.clear();
    beforeFirst = nullptr;
    showStore(std::move(store));
}

void PlainPane::replaceStore(LineStore store)
{
    Edit e{0, {}, {}, caret, anchor, false, std::make_unique<LineStore>(std::move(store))};
    swapWhole(e);
    undos.push_back(std::move(e));
    redos.clear();
    // Each such step keeps a whole text alive: past a few, the oldest history goes, up to and
    // with the oldest of them.
    const auto whole = [](const Edit& step) { return step.other != nullptr; };
    if (std::count_if(undos.begin(), undos.end(), whole) > kWholeSteps)
        undos.erase(undos.begin(), std::find_if(undos.begin(), undos.end(), whole) + 1);
}

void PlainPane::swapWhole(Edit& e)
{
    LineStore shown = std::move(text);
    QVariant shownState = stateNow ? stateNow() : QVariant();
    showStore(std::move(*e.other));
    *e.other = std::move(shown);
    const QVariant back = std::exchange(e.otherState, std::move(shownState));
    if (back.isValid() && stateBack)
        stateBack(back);
}

void PlainPane::showStore(LineStore store)
{
    text = std::move(store);
    ++rev;
    caret = anchor = 0;
    markFirst = -1;
    markCount = 0;
    marked.clear();
    preedit.clear();
    widestLaidOut = 0;
    forgetLayouts();
    // The horizontal range grows as wider lines come into view; starting from the line with
    // the most characters, it seldom has to.
    layoutOf(text.longestLine());
    verticalScrollBar()->setValue(0);
    horizontalScrollBar()->setValue(0);
    updateBars();
    viewport()->update();
    emit textChanged();
    emit selectionChanged();
}

void PlainPane::setReadOnly(bool on)
{
    readOnly = on;
    setAttribute(Qt::WA_InputMethodEnabled, !on);
    viewport()->update();
}

void PlainPane::setSelection(qsizetype anchorAt, qsizetype position, bool scroll)
{
    const qsizetype size = text.size();
    anchorAt = std::clamp<qsizetype>(anchorAt, 0, size);
    position = std::clamp<qsizetype>(position, 0, size);
    // Never between the CR and the LF of one break.
    const auto whole = [this](qsizetype p) {
        return p > 0 && p < text.size() && text.at(p) == u'\n' && text.at(p - 1) == u'\r' ? p - 1
                                                                                          : p;
    };
    anchorAt = whole(anchorAt);
    position = whole(position);
    if (anchorAt == anchor && position == caret)
        return;
    anchor = anchorAt;
    caret = position;
    if (scroll)
        ensureVisible(caret);
    restartBlink();
    viewport()->update();
    if (QAccessible::isActive()) {
        QAccessibleTextSelectionEvent e(this, int(selectionStart()), int(selectionEnd()));
        e.setCursorPosition(int(caret));
        QAccessible::updateAccessibility(&e);
    }
    emit selectionChanged();
}

int PlainPane::firstVisibleLine() const
{
    return verticalScrollBar()->value();
}

void PlainPane::scrollToLine(qsizetype line)
{
    QScrollBar* bar = verticalScrollBar();
    bar->setValue(int(std::clamp<qsizetype>(line, bar->minimum(), bar->maximum())));
}

void PlainPane::changeEvent(QEvent* e)
{
    if (!e || e->type() == QEvent::FontChange) {
        const QFontMetricsF fm(font());
        metricsHeight = std::max(1, QFontMetrics(font()).lineSpacing());
        ascent = QFontMetrics(font()).ascent();
        narrow.resize(256);
        for (int c = 0; c < 256; ++c)
            narrow[std::size_t(c)] = fm.horizontalAdvance(QChar(c));
        tabStop = 8 * fm.horizontalAdvance(QLatin1Char(' '));
        widestLaidOut = 0;
        forgetLayouts();
        layoutOf(text.longestLine());
        updateBars();
        viewport()->update();
        emit viewMoved();
    }
    if (e)
        QAbstractScrollArea::changeEvent(e);
}

void PlainPane::forgetLayouts()
{
    layouts.clear();
}

qreal PlainPane::advance(std::u16string_view piece) const
{
    qreal sum = 0;
    for (std::size_t i = 0; i < piece.size(); ++i) {
        if (piece[i] < 256) {
            sum += narrow[piece[i]];
            continue;
        }
        // Rare in the long lines this serves; the font's metrics keep their own cache.
        return sum + QFontMetricsF(font()).horizontalAdvance(viewOf(piece.substr(i)));
    }
    return sum;
}

const PlainPane::Layout& PlainPane::layoutOf(qsizetype line) const
{
    const auto found = layouts.find(line);
    if (found != layouts.end())
        return found->second;
    if (layouts.size() > 4096)
        layouts.clear();
    Layout& l = layouts[line];
    layOut(l, line, 0, 0);
    return l;
}

// Lays out a line's pieces from column `i`, which starts a piece at x.
void PlainPane::layOut(Layout& l, qsizetype line, qsizetype i, qreal x) const
{
    const std::u16string_view s = text.line(line);
    const bool byTable = qsizetype(s.size()) > kMeasuredWhole;
    const QFontMetricsF fm(font());
    const auto n = qsizetype(s.size());
    while (i < n) {
        l.starts.push_back(i);
        l.xs.push_back(x);
        if (s[std::size_t(i)] == u'\t') {
            x = (std::floor(x / tabStop) + 1) * tabStop;
            ++i;
            continue;
        }
        qsizetype end = i;
        while (end < n && end - i < kPiece && s[std::size_t(end)] != u'\t')
            ++end;
        // Keep a surrogate pair whole.
        if (end < n && end - i > 1 && QChar::isHighSurrogate(s[std::size_t(end - 1)]))
            --end;
        const std::u16string_view piece = s.substr(std::size_t(i), std::size_t(end - i));
        x += byTable ? advance(piece) : fm.horizontalAdvance(viewOf(piece));
        i = end;
    }
    l.starts.push_back(n);
    l.xs.push_back(x);
    if (x > widestLaidOut) {
        widestLaidOut = x;
        QMetaObject::invokeMethod(
            const_cast<PlainPane*>(this), [this] { const_cast<PlainPane*>(this)->updateBars(); },
            Qt::QueuedConnection);
    }
}

// After an edit inside one line, that line's pieces before the edit stay as they were; a very
// long line is then not measured again from its start on every keystroke.
void PlainPane::relayOut(qsizetype line, qsizetype column)
{
    const auto found = layouts.find(line);
    if (found == layouts.end())
        return;
    Layout& l = found->second;
    const bool byTable = qsizetype(text.line(line).size()) > kMeasuredWhole;
    const bool wasByTable = l.starts.back() > kMeasuredWhole;
    if (byTable != wasByTable) {
        layouts.erase(found);
        return;
    }
    auto k = std::size_t(
        std::upper_bound(l.starts.begin(), l.starts.end(), column) - l.starts.begin());
    k = k > 0 ? k - 1 : 0;
    // A piece may have ended at the edit, or a surrogate pair been made or broken there.
    k = k > 0 ? k - 1 : 0;
    const qsizetype from = l.starts[k];
    const qreal x = l.xs[k];
    l.starts.resize(k);
    l.xs.resize(k);
    layOut(l, line, from, x);
}

qreal PlainPane::xOf(qsizetype line, qsizetype column) const
{
    const Layout& l = layoutOf(line);
    const std::u16string_view s = text.line(line);
    column = std::clamp<qsizetype>(column, 0, qsizetype(s.size()));
    const auto k = std::size_t(
        std::upper_bound(l.starts.begin(), l.starts.end(), column) - l.starts.begin() - 1);
    if (k + 1 >= l.starts.size())
        return l.xs.back();
    const std::u16string_view before
        = s.substr(std::size_t(l.starts[k]), std::size_t(column - l.starts[k]));
    if (before.empty())
        return l.xs[k];
    const bool byTable = s.size() > std::size_t(kMeasuredWhole);
    return l.xs[k]
        + (byTable ? advance(before) : QFontMetricsF(font()).horizontalAdvance(viewOf(before)));
}

qsizetype PlainPane::columnAt(qsizetype line, qreal x) const
{
    const Layout& l = layoutOf(line);
    if (x <= 0)
        return 0;
    if (x >= l.xs.back())
        return l.starts.back();
    const auto k = std::size_t(std::upper_bound(l.xs.begin(), l.xs.end(), x) - l.xs.begin() - 1);
    const std::u16string_view s = text.line(line);
    const qsizetype start = l.starts[k];
    const qsizetype end = l.starts[k + 1];
    // The nearer edge of the character under x.
    qsizetype best = start;
    qreal bestDistance = x - l.xs[k];
    for (qsizetype c = start + 1; c <= end; ++c) {
        if (c < end && QChar::isLowSurrogate(s[std::size_t(c)]))
            continue;
        const qreal d = std::abs(xOf(line, c) - x);
        if (d < bestDistance) {
            best = c;
            bestDistance = d;
        } else if (xOf(line, c) > x) {
            break;
        }
    }
    return best;
}

qsizetype PlainPane::positionAt(QPointF point) const
{
    const qsizetype line = std::clamp<qsizetype>(
        firstVisibleLine() + qsizetype(std::floor((point.y() - kTop) / metricsHeight)), 0,
        text.lineCount() - 1);
    const qreal x = point.x() - kLeft + horizontalScrollBar()->value();
    return text.lineStart(line) + columnAt(line, x);
}

QRectF PlainPane::caretRect(qsizetype position) const
{
    const qsizetype line = text.lineAt(position);
    const qreal x
        = kLeft - horizontalScrollBar()->value() + xOf(line, position - text.lineStart(line));
    const qreal y = kTop + qreal(line - firstVisibleLine()) * metricsHeight;
    return {x, y, 1, qreal(metricsHeight)};
}

void PlainPane::updateBars()
{
    const int rows = std::max(1, (viewport()->height() - kTop) / metricsHeight);
    QScrollBar* v = verticalScrollBar();
    v->setRange(0, int(std::max<qsizetype>(0, text.lineCount() - rows)));
    v->setPageStep(rows);
    QScrollBar* h = horizontalScrollBar();
    // A line of hundreds of millions of characters is wider than a scroll bar counts.
    const qreal widest = std::min<qreal>(widestLaidOut + 2 * kLeft, kWidest);
    h->setRange(0, std::max(0, int(std::ceil(widest)) - viewport()->width()));
    h->setPageStep(viewport()->width());
}

void PlainPane::ensureVisible(qsizetype position)
{
    const qsizetype line = text.lineAt(position);
    const int rows = std::max(1, (viewport()->height() - kTop) / metricsHeight);
    const int first = firstVisibleLine();
    if (line < first)
        scrollToLine(line);
    else if (line >= first + rows)
        scrollToLine(line - rows + 1);
    const qreal x = xOf(line, position - text.lineStart(line)) + kLeft;
    QScrollBar* h = horizontalScrollBar();
    if (x - h->value() < kLeft)
        h->setValue(int(std::min<qreal>(x - kLeft - viewport()->width() / 3.0, kWidest)));
    else if (x - h->value() > viewport()->width() - kLeft) {
        updateBars();
        h->setValue(int(std::min<qreal>(x - viewport()->width() / 1.5, kWidest)));
    }
}

void PlainPane::resizeEvent(QResizeEvent* e)
{
    QAbstractScrollArea::resizeEvent(e);
    updateBars();
    emit viewMoved();
}

void PlainPane::scrollContentsBy(int, int)
{
    viewport()->update();
    emit viewMoved();
}

void PlainPane::paintEvent(QPaintEvent*)
{
    QPainter p(viewport());
    const QPalette& pal = palette();
    const QPalette::ColorGroup group = hasFocus() ? QPalette::Active : QPalette::Inactive;
    const qreal left = kLeft - horizontalScrollBar()->value();
    const int width = viewport()->width();
    const qsizetype first = firstVisibleLine();
    const qsizetype last = std::min<qsizetype>(
        text.lineCount() - 1, first + (viewport()->height() - kTop) / metricsHeight + 1);
    const qsizetype selStart = selectionStart();
    const qsizetype selEnd = selectionEnd();
    p.setFont(font());
    paintMarks(p, first, last, left);
    for (qsizetype line = first; line <= last; ++line) {
        const qreal top = kTop + qreal(line - first) * metricsHeight;
        const qreal base = top + ascent;
        const qsizetype start = text.lineStart(line);
        const std::u16string_view s = text.line(line);
        const qsizetype end = start + qsizetype(s.size());
        const bool withPreedit = !preedit.isEmpty() && caret >= start && caret <= end;
        if (withPreedit && s.size() <= std::size_t(kMeasuredWhole)) {
            // Shown in place while the input method composes it, underlined.
            const qsizetype at = caret - start;
            const QString shown = viewOf(s.substr(0, std::size_t(at))) + preedit
                + viewOf(s.substr(std::size_t(at)));
            p.setPen(pal.color(group, QPalette::Text));
            p.drawText(QPointF(left, base), shown);
            const QFontMetricsF fm(font());
            const qreal x0 = left + fm.horizontalAdvance(shown.left(at));
            const qreal x1 = left + fm.horizontalAdvance(shown.left(at + preedit.size()));
            p.drawLine(QPointF(x0, base + 2), QPointF(x1, base + 2));
            if (hasFocus()) {
                const qreal xc = left + fm.horizontalAdvance(shown.left(at + preeditCaret));
                p.fillRect(QRectF(xc, top, 1, metricsHeight), pal.color(group, QPalette::Text));
            }
            continue;
        }
        const qsizetype a = std::max(selStart, start);
        const qsizetype b = std::min(selEnd, end);
        QRectF selected;
        if (a < b || (selStart <= end && selEnd > end)) {
            const qreal x0 = left + xOf(line, a - start);
            // A selected break shows as a little more than the line.
            const qreal x1 = left + xOf(line, b - start) + (selEnd > end ? metricsHeight / 3 : 0);
            selected = QRectF(x0, top, x1 - x0, metricsHeight);
            p.fillRect(selected, pal.color(group, QPalette::Highlight));
        }
        const Layout& l = layoutOf(line);
        // Composed text on a line too long to lay out again opens a gap at the caret: the rest
        // of the line moves over by its width.
        const QFontMetricsF fm(font());
        const qreal caretX = withPreedit ? left + xOf(line, caret - start) : 0;
        const qreal gap = withPreedit ? fm.horizontalAdvance(preedit) : 0;
        const auto drawPieces = [&](const QColor& colour, qreal shift) {
            p.setPen(colour);
            auto k = std::size_t(
                std::upper_bound(l.xs.begin(), l.xs.end(), -left - shift) - l.xs.begin());
            k = k > 0 ? k - 1 : 0;
            for (; k + 1 < l.starts.size() && left + shift + l.xs[k] < width; ++k) {
                if (s[std::size_t(l.starts[k])] == u'\t')
                    continue;
                p.drawText(QPointF(left + shift + l.xs[k], base),
                    viewOf(s.substr(
                        std::size_t(l.starts[k]), std::size_t(l.starts[k + 1] - l.starts[k]))));
            }
        };
        const auto drawLine = [&](const QColor& colour) {
            if (!withPreedit)
                return drawPieces(colour, 0);
            p.save();
            p.setClipRect(QRectF(0, top, caretX, metricsHeight), Qt::IntersectClip);
            drawPieces(colour, 0);
            p.restore();
            p.save();
            p.setClipRect(QRectF(caretX + gap, top, width, metricsHeight), Qt::IntersectClip);
            drawPieces(colour, gap);
            p.restore();
        };
        drawLine(pal.color(group, QPalette::Text));
        if (!selected.isEmpty()) {
            p.save();
            p.setClipRect(selected);
            drawLine(pal.color(group, QPalette::HighlightedText));
            p.restore();
        }
        const auto bar = [&](qsizetype at) {
            if (at >= start && at <= end)
                p.fillRect(QRectF(left + xOf(line, at - start), top, 1, metricsHeight),
                    pal.color(group, QPalette::Text));
        };
        if (withPreedit) {
            p.setPen(pal.color(group, QPalette::Text));
            p.drawText(QPointF(caretX, base), preedit);
            p.drawLine(QPointF(caretX, base + 2), QPointF(caretX + gap, base + 2));
            if (hasFocus())
                p.fillRect(QRectF(caretX + fm.horizontalAdvance(preedit.left(preeditCaret)), top, 1,
                               metricsHeight),
                    pal.color(group, QPalette::Text));
        } else if (hasFocus() && caretShown && !readOnly) {
            bar(caret);
        }
        if (dropCaret >= 0)
            bar(dropCaret);
    }
}

void PlainPane::setHighlight(qsizetype first, qsizetype count)
{
    first = first < 0 ? -1 : first;
    count = first < 0 ? 0 : std::max<qsizetype>(count, 0);
    if (first == markFirst && count == markCount)
        return;
    markFirst = first;
    markCount = count;
    viewport()->update();
}

void PlainPane::setSpans(std::vector<LineSpan> spans)
{
    if (spans == marked)
        return;
    marked = std::move(spans);
    viewport()->update();
}

// Lines [fromLine, toLine] were replaced by lines that number `added` more.
void PlainPane::followEdit(qsizetype fromLine, qsizetype toLine, qsizetype added)
{
    if (markFirst < 0 || added == 0)
        return;
    const qsizetype end = markFirst + markCount;
    if (toLine < markFirst) {
        markFirst = std::max<qsizetype>(markFirst + added, fromLine);
    } else if (fromLine < end) {
        // The edit reaches into the lines: they keep what is left of them.
        const qsizetype first = std::min(markFirst, fromLine);
        markCount = std::max<qsizetype>(end + added, first) - first;
        markFirst = first;
    }
}

// Behind the text, under the selection: the highlighted lines across the whole width, then
// the stretches within them.
void PlainPane::paintMarks(QPainter& p, qsizetype first, qsizetype last, qreal left) const
{
    if (markFirst < 0 && marked.empty())
        return;
    const auto [line, strong] = markColours(this);
    const qreal width = viewport()->width();
    const auto top = [&](qsizetype l) { return kTop + qreal(l - first) * metricsHeight; };
    if (markCount == 0 && markFirst >= first && markFirst <= last + 1) {
        QColor thin = strong;
        thin.setAlpha(160);
        p.fillRect(QRectF(0, top(markFirst) - 1, width, 2), thin);
    } else if (markCount > 0) {
        const qsizetype from = std::max(markFirst, first);
        const qsizetype to = std::min(markFirst + markCount - 1, last);
        if (from <= to)
            p.fillRect(QRectF(0, top(from), width, qreal(to - from + 1) * metricsHeight), line);
    }
    auto k = std::lower_bound(marked.begin(), marked.end(), first,
        [](const LineSpan& s, qsizetype l) { return s.line < l; });
    for (; k != marked.end() && k->line <= last; ++k) {
        const qreal x0 = left + xOf(k->line, k->from);
        const qreal x1 = left + xOf(k->line, k->to);
        p.fillRect(QRectF(x0, top(k->line), std::max<qreal>(x1 - x0, 2), metricsHeight), strong);
    }
}

void PlainPane::restartBlink()
{
    caretShown = true;
    const int flash = QApplication::cursorFlashTime();
    if (hasFocus() && flash > 0)
        blink.start(flash / 2, this);
    else
        blink.stop();
}

void PlainPane::timerEvent(QTimerEvent* e)
{
    if (e->timerId() != blink.timerId())
        return QAbstractScrollArea::timerEvent(e);
    caretShown = !caretShown;
    viewport()->update(caretRect(caret).toAlignedRect().adjusted(-1, 0, 1, 0));
}

void PlainPane::focusInEvent(QFocusEvent* e)
{
    restartBlink();
    viewport()->update();
    QAbstractScrollArea::focusInEvent(e);
}

void PlainPane::focusOutEvent(QFocusEvent* e)
{
    blink.stop();
    viewport()->update();
    QAbstractScrollArea::focusOutEvent(e);
}

qsizetype PlainPane::wordStart(qsizetype position, bool forward) const
{
    const qsizetype line = text.lineAt(position);
    const qsizetype start = text.lineStart(line);
    const qsizetype end = text.lineEnd(line);
    if (forward && position >= end)
        return line + 1 < text.lineCount() ? text.lineStart(line + 1) : end;
    if (!forward && position <= start)
        return line > 0 ? text.lineEnd(line - 1) : start;
    const qsizetype from = std::max(start, position - kWordReach);
    const qsizetype to = std::min(end, position + kWordReach);
    const QString piece = text.text(from, to);
    QTextBoundaryFinder words(QTextBoundaryFinder::Word, piece);
    words.setPosition(position - from);
    for (;;) {
        const qsizetype at = forward ? words.toNextBoundary() : words.toPreviousBoundary();
        if (at < 0)
            return forward ? to : from;
        if (at == 0 || at == piece.size()
            || words.boundaryReasons().testFlag(QTextBoundaryFinder::StartOfItem))
            return from + at;
    }
}

qsizetype PlainPane::moved(int key, qsizetype from) const
{
    const qsizetype line = text.lineAt(from);
    const int rows = std::max(1, (viewport()->height() - kTop) / metricsHeight);
    const auto toLine = [&](qsizetype target) {
        target = std::clamp<qsizetype>(target, 0, text.lineCount() - 1);
        const qreal x = wantedX >= 0 ? wantedX : xOf(line, from - text.lineStart(line));
        return text.lineStart(target) + columnAt(target, x);
    };
    switch (key) {
    case QKeySequence::MoveToNextChar:
        if (from >= text.size())
            return from;
        if (from == text.lineEnd(line))
            return text.lineStart(line + 1);
        return from + (QChar::isHighSurrogate(text.at(from)) && from + 1 < text.size() ? 2 : 1);
    case QKeySequence::MoveToPreviousChar:
        if (from <= 0)
            return 0;
        if (from == text.lineStart(line))
            return text.lineEnd(line - 1);
        return from - (QChar::isLowSurrogate(text.at(from - 1)) && from > 1 ? 2 : 1);
    case QKeySequence::MoveToNextWord:
        return wordStart(from, true);
    case QKeySequence::MoveToPreviousWord:
        return wordStart(from, false);
    case QKeySequence::MoveToNextLine:
        return line + 1 < text.lineCount() ? toLine(line + 1) : text.size();
    case QKeySequence::MoveToPreviousLine:
        return line > 0 ? toLine(line - 1) : 0;
    case QKeySequence::MoveToNextPage:
        return toLine(line + rows);
    case QKeySequence::MoveToPreviousPage:
        return toLine(line - rows);
    case QKeySequence::MoveToStartOfLine:
    case QKeySequence::MoveToStartOfBlock:
        return text.lineStart(line);
    case QKeySequence::MoveToEndOfLine:
    case QKeySequence::MoveToEndOfBlock:
        return text.lineEnd(line);
    case QKeySequence::MoveToStartOfDocument:
        return 0;
    default: // the end of the document
        return text.size();
    }
}

bool PlainPane::event(QEvent* e)
{
    // Editing keys belong to the pane, not to the menu items that share them.
    if (e->type() == QEvent::ShortcutOverride) {
        auto* k = static_cast<QKeyEvent*>(e);
        static const QKeySequence::StandardKey taken[]
            = {QKeySequence::Undo, QKeySequence::Redo, QKeySequence::Cut, QKeySequence::Copy,
                QKeySequence::Paste, QKeySequence::SelectAll, QKeySequence::Delete,
                QKeySequence::MoveToStartOfDocument, QKeySequence::MoveToEndOfDocument,
                QKeySequence::SelectStartOfDocument, QKeySequence::SelectEndOfDocument,
                QKeySequence::MoveToNextWord, QKeySequence::MoveToPreviousWord,
                QKeySequence::SelectNextWord, QKeySequence::SelectPreviousWord};
        for (QKeySequence::StandardKey s : taken) {
            if (k->matches(s)) {
                e->accept();
                return true;
            }
        }
        if (!k->text().isEmpty() && k->text().at(0).isPrint()
            && !(k->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
            e->accept();
            return true;
        }
    }
    return QAbstractScrollArea::event(e);
}

void PlainPane::keyPressEvent(QKeyEvent* e)
{
    // Each move with its selecting twin.
    using K = QKeySequence;
    static const std::pair<K::StandardKey, K::StandardKey> moves[] = {
        {K::MoveToNextChar, K::SelectNextChar}, {K::MoveToPreviousChar, K::SelectPreviousChar},
        {K::MoveToNextWord, K::SelectNextWord}, {K::MoveToPreviousWord, K::SelectPreviousWord},
        {K::MoveToNextLine, K::SelectNextLine}, {K::MoveToPreviousLine, K::SelectPreviousLine},
        {K::MoveToNextPage, K::SelectNextPage}, {K::MoveToPreviousPage, K::SelectPreviousPage},
        {K::MoveToStartOfLine, K::SelectStartOfLine}, {K::MoveToEndOfLine, K::SelectEndOfLine},
        {K::MoveToStartOfBlock, K::SelectStartOfBlock}, {K::MoveToEndOfBlock, K::SelectEndOfBlock},
        {K::MoveToStartOfDocument, K::SelectStartOfDocument},
        {K::MoveToEndOfDocument, K::SelectEndOfDocument}};
    const auto step = [&](K::StandardKey s, bool select) {
        const bool vertical = s == K::MoveToNextLine || s == K::MoveToPreviousLine
            || s == K::MoveToNextPage || s == K::MoveToPreviousPage;
        const qsizetype line = text.lineAt(caret);
        const qreal x = xOf(line, caret - text.lineStart(line));
        if (!vertical)
            wantedX = -1;
        else if (wantedX < 0)
            wantedX = x;
        qsizetype to = moved(s, caret);
        // Without shift, a move off a selection starts from its edge.
        if (!select && hasSelection() && (s == K::MoveToNextChar || s == K::MoveToPreviousChar))
            to = s == K::MoveToNextChar ? selectionEnd() : selectionStart();
        const qreal keep = wantedX;
        if (s == K::MoveToNextPage)
            scrollToLine(firstVisibleLine() + verticalScrollBar()->pageStep());
        else if (s == K::MoveToPreviousPage)
            scrollToLine(firstVisibleLine() - verticalScrollBar()->pageStep());
        setSelection(select ? anchor : to, to);
        wantedX = keep;
    };
    for (const auto& [move, select] : moves) {
        if (e->matches(move))
            return step(move, false);
        if (e->matches(select))
            return step(move, true);
    }
    wantedX = -1;
    if (e->matches(QKeySequence::SelectAll))
        return selectAll();
    if (e->matches(QKeySequence::Copy))
        return copy();
    if (readOnly) {
        e->ignore();
        return;
    }
    if (e->matches(QKeySequence::Undo))
        return undo();
    if (e->matches(QKeySequence::Redo))
        return redo();
    if (e->matches(QKeySequence::Cut))
        return cut();
    if (e->matches(QKeySequence::Paste))
        return paste();
    const bool back = e->key() == Qt::Key_Backspace && !(e->modifiers() & ~Qt::ShiftModifier);
    if (back || e->matches(QKeySequence::Delete) || e->matches(QKeySequence::DeleteEndOfWord)
        || e->matches(QKeySequence::DeleteStartOfWord)) {
        if (!hasSelection()) {
            const QKeySequence::StandardKey how = back      ? QKeySequence::MoveToPreviousChar
                : e->matches(QKeySequence::Delete)          ? QKeySequence::MoveToNextChar
                : e->matches(QKeySequence::DeleteEndOfWord) ? QKeySequence::MoveToNextWord
                                                            : QKeySequence::MoveToPreviousWord;
            const qsizetype other = moved(how, caret);
            return edit(std::min(other, caret), std::max(other, caret), QString(), false);
        }
        return removeSelectedText();
    }
    if (e->matches(QKeySequence::InsertParagraphSeparator)
        || e->matches(QKeySequence::InsertLineSeparator))
        return edit(selectionStart(), selectionEnd(), QStringLiteral("\n"), false);
    const QString typed = e->text();
    if (!typed.isEmpty() && (typed.at(0).isPrint() || typed.at(0) == u'\t')
        && !(e->modifiers() & (Qt::ControlModifier | Qt::AltModifier)))
        return edit(selectionStart(), selectionEnd(), typed, true);
    e->ignore();
}

void PlainPane::replaceSelection(const QString& with)
{
    edit(selectionStart(), selectionEnd(), with, false);
}

void PlainPane::replace(qsizetype from, qsizetype to, const QString& with)
{
    edit(from, to, with, false);
}

void PlainPane::edit(qsizetype from, qsizetype to, const QString& with, bool typing)
{
    if (readOnly || (from == to && with.isEmpty()))
        return;
    Edit e{from, text.text(from, to), with, caret, anchor, typing};
    Edit* last = undos.empty() ? nullptr : &undos.back();
    // Typing runs one undo step, up to a space.
    if (typing && last && last->typing && last->removed.isEmpty() && e.removed.isEmpty()
        && last->at + last->inserted.size() == from && !with.contains(u' ')) {
        last->inserted += with;
    } else {
        undos.push_back(std::move(e));
    }
    redos.clear();
    change(from, to, with);
    caret = anchor = from + with.size();
    restartBlink();
    showChange();
}

// After any change of the text, with the caret where it now stands.
void PlainPane::showChange()
{
    updateBars();
    ensureVisible(caret);
    viewport()->update();
    emit textChanged();
    emit selectionChanged();
}

void PlainPane::change(qsizetype from, qsizetype to, QStringView with)
{
    const QString removed = QAccessible::isActive() ? text.text(from, to) : QString();
    const qsizetype line = text.lineAt(from);
    const qsizetype lines = text.lineCount();
    const auto hasBreak = [](QStringView s) { return s.contains(u'\r') || s.contains(u'\n'); };
    // A CR and an LF that meet or part change the lines, as a break does.
    const bool withinLine = !hasBreak(with) && !hasBreak(text.text(from, to))
        && (from == 0 || text.at(from - 1) != u'\r') && (to >= text.size() || text.at(to) != u'\n');
    const qsizetype toLine = withinLine || markFirst < 0 ? line : text.lineAt(to);
    text.replace(from, to, with);
    ++rev;
    if (!withinLine)
        followEdit(line, toLine, text.lineCount() - lines);
    if (QAccessible::isActive()) {
        QAccessibleTextUpdateEvent e(this, int(from), removed, with.toString());
        QAccessible::updateAccessibility(&e);
    }
    if (withinLine && text.lineCount() == lines)
        relayOut(line, from - text.lineStart(line));
    else
        forgetLayouts();
}

void PlainPane::moveSelection(qsizetype at)
{
    const qsizetype from = selectionStart();
    const qsizetype to = selectionEnd();
    if (readOnly || from == to || (at >= from && at <= to))
        return;
    const QString moved = text.text(from, to);
    edit(from, to, QString(), false);
    if (at > to)
        at -= to - from;
    edit(at, at, moved, false);
    undos.back().withPrevious = true;
    setSelection(at, at + moved.size());
}

void PlainPane::undo()
{
    if (!canUndo())
        return;
    if (undos.empty()) {
        const auto back = std::exchange(beforeFirst, nullptr);
        return back();
    }
    if (undos.back().other) {
        Edit e = std::move(undos.back());
        undos.pop_back();
        swapWhole(e);
        setSelection(e.anchorBefore, e.caretBefore, false);
        redos.push_back(std::move(e));
        return;
    }
    bool more = true;
    while (more && !undos.empty()) {
        Edit e = std::move(undos.back());
        undos.pop_back();
        change(e.at, e.at + e.inserted.size(), e.removed);
        caret = e.caretBefore;
        anchor = e.anchorBefore;
        more = e.withPrevious;
        redos.push_back(std::move(e));
    }
    showChange();
}

void PlainPane::redo()
{
    if (!canRedo())
        return;
    if (redos.back().other) {
        Edit e = std::move(redos.back());
        redos.pop_back();
        swapWhole(e);
        undos.push_back(std::move(e));
        return;
    }
    do {
        Edit e = std::move(redos.back());
        redos.pop_back();
        change(e.at, e.at + e.removed.size(), e.inserted);
        caret = anchor = e.at + e.inserted.size();
        e.typing = false;
        undos.push_back(std::move(e));
    } while (!redos.empty() && redos.back().withPrevious && !redos.back().other);
    showChange();
}

bool PlainPane::canPaste() const
{
    const QMimeData* m = QGuiApplication::clipboard()->mimeData();
    return !readOnly && m && m->hasText();
}

void PlainPane::cut()
{
    if (readOnly || !hasSelection())
        return;
    copy();
    removeSelectedText();
}

void PlainPane::copy() const
{
    if (hasSelection())
        QGuiApplication::clipboard()->setText(selectedText());
}

void PlainPane::paste()
{
    if (canPaste())
        replaceSelection(QGuiApplication::clipboard()->text());
}

void PlainPane::removeSelectedText()
{
    if (hasSelection())
        edit(selectionStart(), selectionEnd(), QString(), false);
}

void PlainPane::selectAll()
{
    setSelection(0, text.size(), false);
}

void PlainPane::mousePressEvent(QMouseEvent* e)
{
    const qsizetype at = positionAt(e->position());
    wantedX = -1;
    if (e->button() == Qt::MiddleButton) {
        QClipboard* c = QGuiApplication::clipboard();
        if (!readOnly && c->supportsSelection()) {
            setSelection(at, at);
            replaceSelection(c->text(QClipboard::Selection));
        }
        return;
    }
    if (e->button() != Qt::LeftButton)
        return;
    pressAt = e->position().toPoint();
    pressInSelection = hasSelection() && at >= selectionStart() && at < selectionEnd()
        && !(e->modifiers() & Qt::ShiftModifier);
    if (pressInSelection)
        return;
    selecting = true;
    setSelection(e->modifiers() & Qt::ShiftModifier ? anchor : at, at);
}

void PlainPane::mouseMoveEvent(QMouseEvent* e)
{
    if (!(e->buttons() & Qt::LeftButton))
        return;
    if (pressInSelection) {
        if ((e->position().toPoint() - pressAt).manhattanLength()
            < QApplication::startDragDistance())
            return;
        pressInSelection = false;
        auto* drag = new QDrag(this);
        auto* data = new QMimeData;
        data->setText(selectedText());
        drag->setMimeData(data);
        const qsizetype from = selectionStart();
        const qsizetype to = selectionEnd();
        const quint64 before = rev;
        const Qt::DropActions actions = readOnly ? Qt::CopyAction : Qt::CopyAction | Qt::MoveAction;
        // A move into another control takes the text away here; a move within the pane is
        // done by the drop.
        if (drag->exec(actions, Qt::MoveAction) == Qt::MoveAction && drag->target() != viewport()
            && rev == before)
            edit(from, to, QString(), false);
        return;
    }
    if (selecting)
        setSelection(anchor, positionAt(e->position()));
}

void PlainPane::mouseReleaseEvent(QMouseEvent* e)
{
    if (pressInSelection) {
        const qsizetype at = positionAt(e->position());
        setSelection(at, at);
    }
    pressInSelection = false;
    selecting = false;
    QClipboard* c = QGuiApplication::clipboard();
    if (hasSelection() && c->supportsSelection())
        c->setText(selectedText(), QClipboard::Selection);
}

void PlainPane::mouseDoubleClickEvent(QMouseEvent* e)
{
    if (e->button() != Qt::LeftButton)
        return;
    const qsizetype at = positionAt(e->position());
    const qsizetype line = text.lineAt(at);
    const qsizetype start = text.lineStart(line);
    const qsizetype end = text.lineEnd(line);
    const qsizetype from = std::max(start, at - kWordReach);
    const QString piece = text.text(from, std::min(end, at + kWordReach));
    QTextBoundaryFinder words(QTextBoundaryFinder::Word, piece);
    words.setPosition(at - from);
    qsizetype a
        = words.isAtBoundary() && words.boundaryReasons().testFlag(QTextBoundaryFinder::StartOfItem)
        ? at - from
        : words.toPreviousBoundary();
    words.setPosition(at - from);
    qsizetype b = words.toNextBoundary();
    if (a < 0)
        a = 0;
    if (b < 0)
        b = piece.size();
    setSelection(from + a, from + b);
    selecting = false;
}

void PlainPane::inputMethodEvent(QInputMethodEvent* e)
{
    if (readOnly) {
        e->ignore();
        return;
    }
    if (!e->commitString().isEmpty() || e->replacementLength() > 0) {
        qsizetype from = selectionStart();
        qsizetype to = selectionEnd();
        if (e->replacementLength() > 0) {
            from = std::clamp<qsizetype>(caret + e->replacementStart(), 0, text.size());
            to = std::clamp<qsizetype>(from + e->replacementLength(), from, text.size());
        }
        edit(from, to, e->commitString(), true);
    }
    preedit = e->preeditString();
    preeditCaret = int(preedit.size());
    for (const QInputMethodEvent::Attribute& a : e->attributes()) {
        if (a.type == QInputMethodEvent::Cursor)
            preeditCaret = std::clamp(a.start, 0, int(preedit.size()));
    }
    viewport()->update();
    e->accept();
}

QVariant PlainPane::inputMethodQuery(Qt::InputMethodQuery query) const
{
    const qsizetype line = text.lineAt(caret);
    const qsizetype start = text.lineStart(line);
    // Around the caret only: a long line is not handed over whole.
    const qsizetype from = std::max(start, caret - kWordReach);
    switch (query) {
    case Qt::ImEnabled:
        return !readOnly;
    case Qt::ImCursorRectangle:
        return caretRect(caret).translated(viewport()->pos());
    case Qt::ImFont:
        return font();
    case Qt::ImCursorPosition:
        return int(caret - from);
    case Qt::ImAnchorPosition:
        return int(std::clamp<qsizetype>(anchor, from, text.lineEnd(line)) - from);
    case Qt::ImSurroundingText:
        return text.text(from, std::min(text.lineEnd(line), caret + kWordReach));
    case Qt::ImCurrentSelection:
        return hasSelection() && selectionEnd() - selectionStart() <= kWordReach ? selectedText()
                                                                                 : QString();
    case Qt::ImAbsolutePosition:
        return caret;
    case Qt::ImHints:
        return int(Qt::ImhMultiLine);
    default:
        return QAbstractScrollArea::inputMethodQuery(query);
    }
}

void PlainPane::contextMenuEvent(QContextMenuEvent* e)
{
    QMenu menu(this);
    const auto add = [&](const QString& label, bool enabled, auto slot) {
        QAction* a = menu.addAction(label);
        a->setEnabled(enabled);
        connect(a, &QAction::triggered, this, slot);
    };
    // The Edit menu's own words.
    const auto label = [](const char* name, const char* english) {
        return MenuBar::itemText(QLatin1String(name), QLatin1String(english));
    };
    add(label("EditUndo", "Undo"), canUndo(), &PlainPane::undo);
    add(label("EditRedo", "Redo"), canRedo(), &PlainPane::redo);
    menu.addSeparator();
    add(label("EditCut", "Cut"), !readOnly && hasSelection(), &PlainPane::cut);
    add(label("EditCopy", "Copy"), hasSelection(), &PlainPane::copy);
    add(label("EditPaste", "Paste"), canPaste(), &PlainPane::paste);
    add(label("EditClear", "Delete"), !readOnly && hasSelection(), &PlainPane::removeSelectedText);
    menu.addSeparator();
    add(label("EditSelectAll", "Select All"), text.size() > 0, &PlainPane::selectAll);
    menu.exec(e->globalPos());
}

void PlainPane::dragEnterEvent(QDragEnterEvent* e)
{
    if (readOnly || !e->mimeData()->hasText())
        return e->ignore();
    e->acceptProposedAction();
}

void PlainPane::dragMoveEvent(QDragMoveEvent* e)
{
    if (readOnly || !e->mimeData()->hasText())
        return e->ignore();
    dropCaret = positionAt(e->position());
    e->acceptProposedAction();
    viewport()->update();
}

void PlainPane::dragLeaveEvent(QDragLeaveEvent*)
{
    dropCaret = -1;
    viewport()->update();
}

void PlainPane::dropEvent(QDropEvent* e)
{
    dropCaret = -1;
    if (readOnly || !e->mimeData()->hasText())
        return e->ignore();
    const qsizetype at = positionAt(e->position());
    const QString dropped = e->mimeData()->text();
    if (e->source() == this && e->dropAction() == Qt::MoveAction) {
        if (at >= selectionStart() && at <= selectionEnd())
            return e->ignore();
        moveSelection(at);
    } else {
        edit(at, at, dropped, false);
        setSelection(at, at + dropped.size());
    }
    e->acceptProposedAction();
    setFocus();
}

} // namespace toolkit
