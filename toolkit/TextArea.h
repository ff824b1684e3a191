#pragma once

#include "DragItem.h"
#include "FileType.h"
#include "Geometry.h"
#include "LineSpan.h"
#include "PreparedText.h"
#include "TextSnapshot.h"

#include <QPointer>
#include <QWidget>

#include <cmath>
#include <functional>
#include <memory>
#include <vector>

class QTextDocument;
class QTextEdit;

namespace toolkit {

class PlainPane;

// An editable pane without line wrap, so that a pane's lines are its text's lines. It holds a
// plain pane over a line store, or, for a styled document, a rich pane; its face is the same.
// Scroll positions count lines; character positions are one above the selection's scale.
class TextArea : public QWidget
{
    Q_OBJECT
public:
    explicit TextArea(QWidget* parent = nullptr);
    ~TextArea() override;

    QString Text() const;
    qsizetype TextLength() const;
    // Text() == other.Text(), without a copy of either when both are plain.
    bool hasSameText(const TextArea& other) const;
    // Raises TextChange, as typing does.
    void setText(const QString& text);
    // The same for a text that may be long: it goes in a slice of lines at a time, and between
    // slices `between` runs; the fill stops, keeping what is in, when that answers false or when
    // the pane has been given another text meanwhile. The pane takes no typing while it fills.
    // True when the whole text went in.
    bool setText(const QString& text, const std::function<bool()>& between);
    // Does the work of taking a text in, on any thread; setText(PreparedText) then shows it on
    // the UI thread at once, and raises TextChange like setText(QString).
    static PreparedText prepare(QString text);
    void setText(const PreparedText& text);
    // What goes with the shown text beside its characters, asked for when replaceText() or
    // Undo takes it away, and handed back when Undo or Redo brings it back.
    void setStateHooks(std::function<QVariant()> now, std::function<void(const QVariant&)> back);
    // The same as one step that Undo takes back, in a plain pane; a styled pane starts clean.
    void replaceText(const PreparedText& text);

    // Starts a styled document: the pane shows a new, empty rich text for a reader to fill,
    // inside one edit block so that it is laid out once. The next plain text starts clean again.
    QTextDocument* StyledText();
    // "System" and size 0 stand for the desktop's font.
    void setTextFont(const QString& name);
    void setTextSize(int size);
    // A read-only text wrapped at the pane's width, for windows that show a notice.
    void showNotice(const QString& text);
    bool isReadOnly() const { return readOnly; }
    void setReadOnly(bool on);

    // Files dragged onto the pane go to these handlers; dragged text is the editor's.
    void AcceptFileDrop(const FileTypeList& types);
    FileDrops fileDrops;

    // The pane's lines: CR, LF and CR LF end a line, and in a styled text every line break it
    // shows (paragraphs and U+2028) too; no other character does.
    QStringList Lines() const;
    // The lines as they stand now, for a comparison that may run on another thread.
    std::shared_ptr<const TextSnapshot> snapshot() const;
    int LineCount() const;
    // Line `line`, without its break, cut after `most` units.
    QString LineText(int line, qsizetype most) const;
    qsizetype LineLength(int line) const;
    // Grows with every change of the text, so that work on an unchanged text can be kept.
    quint64 contentRevision() const { return revision; }
    int VerticalScrollPosition() const;
    // Stops at the first or the last line.
    void setVerticalScrollPosition(int line);
    // The position of the first character of a zero-based line, counted from 1. A line past the
    // end answers one past the last position of the text; a negative line answers line 0.
    int CharacterPosition(int line) const;
    // The position of the first character of the line drawn on pixel row y of the control, on
    // the same scale; x is not needed, as a row belongs to one line. Rows below the text answer
    // what a line past the end answers.
    int CharacterPosition(double /*x*/, double y) const
    {
        // Inline: the indicator asks this hundreds of thousands of times on one redraw.
        const auto row = static_cast<int>(std::floor(y));
        if (!rowsStale && row >= 0 && row < static_cast<int>(rows.size()))
            return rows[static_cast<size_t>(row)];
        return positionAtRow(row);
    }
    int LineHeight() const;
    // The rows of the control that show text: the text's viewport, without frame or scroll bar.
    int TextTop() const;
    int TextHeight() const;
    // Where a line is drawn now, in the control's rows; for checks and tests.
    QRect lineRect(int line) const;
    // The widget that takes the mouse and drops over the text.
    QWidget* viewport() const;

    int SelectionStart() const;
    int SelectionLength() const;
    // Keeps the start.
    void setSelectionLength(int length);
    // Selects without scrolling, so that a selection out of view leaves the view where it is.
    void select(int start, int length);

    // Lines shown as marked behind the text, apart from the selection, which stays the user's:
    // `count` lines from `first`, or with none a thin mark where missing lines would stand; a
    // negative `first` marks none. Typing moves the mark with its lines.
    void setHighlight(int first, int count);
    int highlightFirst() const;
    int highlightCount() const;
    // Stretches within lines, marked more strongly; a new text drops them.
    void setSpans(std::vector<LineSpan> spans);
    std::vector<LineSpan> spans() const;

    // A handler that returns true takes the wheel event; false lets the pane scroll as usual.
    std::function<bool(int x, int y, int deltaX, int deltaY)> onMouseWheel;

signals:
    void TextChange();

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;

private:
    void forgetRows() { rowsStale = true; }
    int positionAtRow(int row) const;
    int lineAtRow(int row) const;
    const LineStore& lines() const;
    void showInside(QWidget* w);
    void watch(QWidget* w);
    void dropRich();
    void deleteRich();
    void putRichAside();
    void takeRichBack();
    void markRich();

    PlainPane* plain = nullptr;
    QPointer<QTextEdit> rich;
    // A styled text replaced by a plain one as a step that Undo takes back; hidden meanwhile.
    QPointer<QTextEdit> richAside;
    QVariant richAsideState;
    bool readOnly = false;
    bool acceptsFiles = false;
    quint64 revision = 0;
    quint64 fills = 0;
    // The rich text's lines, cut anew after each change of it.
    mutable LineStore richLines;
    mutable quint64 richLinesRevision = ~quint64(0);
    // Kept between calls: the indicator asks for thousands of positions on each redraw.
    mutable std::vector<int> rows;
    mutable std::vector<int> starts;
    mutable quint64 startsRevision = ~quint64(0);
    // Set by whatever moves a row: scrolling by any means, an edit, a new size or font.
    mutable bool rowsStale = true;
    WheelLines wheel;
    // What a rich pane marks; the plain pane keeps its own.
    int richMarkFirst = -1;
    int richMarkCount = 0;
    std::vector<LineSpan> richSpans;
};

} // namespace toolkit
