#pragma once

#include "DragItem.h"
#include "FileType.h"
#include "Geometry.h"
#include "PreparedText.h"
#include "TextSnapshot.h"

#include <QPlainTextEdit>

#include <cmath>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace toolkit {

// A pane's text and a view of each of its lines, valid while this object lives.
struct TextLines
{
    QString text;
    std::vector<std::u16string_view> lines;
};

// An editable pane without line wrap, so that a pane's lines are its text's lines.
// Scroll positions count lines; character positions are one above the selection's scale.
class TextArea : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit TextArea(QWidget* parent = nullptr);

    QString Text() const { return toPlainText(); }
    // Raises TextChange, as typing does.
    void setText(const QString& text)
    {
        ++fills;
        setPlainText(text);
    }
    // The same for a text that may be long: it goes in a slice of lines at a time, and between
    // slices `between` runs; the fill stops, keeping what is in, when that answers false or when
    // the pane has been given another text meanwhile. The pane takes no typing while it fills.
    // True when the whole text went in.
    bool setText(const QString& text, const std::function<bool()>& between);
    // Does the work of taking a text in, on any thread; setText(PreparedText) then shows it on
    // the UI thread at once, and raises TextChange like setText(QString).
    static PreparedText prepare(QString text);
    void setText(const PreparedText& text);

    // The text with its styles, as a rich-text reader leaves it. Readers write into it inside
    // one edit block, so that the pane lays it out once.
    QTextDocument* StyledText() const { return document(); }
    // "System" and size 0 stand for the desktop's font.
    void setTextFont(const QString& name);
    void setTextSize(int size);

    // Files dragged onto the pane go to these handlers; dragged text is the editor's.
    void AcceptFileDrop(const FileTypeList& types);
    FileDrops fileDrops;

    // The pane's lines as it shows them: CR, LF, CR LF and U+2029 end a line, U+2028 does not.
    QStringList Lines() const;
    // The same lines without a copy of each, for comparing long texts.
    TextLines lineTexts() const;
    // The lines as they stand now, for a comparison that may run on another thread.
    std::shared_ptr<const TextSnapshot> snapshot() const;
    int LineCount() const;
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

    int SelectionStart() const;
    int SelectionLength() const;
    // Keeps the start.
    void setSelectionLength(int length);
    // Selects without scrolling, so that a selection out of view leaves the view where it is.
    void select(int start, int length);

    // A handler that returns true takes the wheel event; false lets the pane scroll as usual.
    std::function<bool(int x, int y, int deltaX, int deltaY)> onMouseWheel;

signals:
    void TextChange();

protected:
    void paintEvent(QPaintEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dragMoveEvent(QDragMoveEvent* e) override;
    void dragLeaveEvent(QDragLeaveEvent* e) override;
    void dropEvent(QDropEvent* e) override;

private:
    void alignShownParagraphs();
    std::vector<int> rowPositions(int first, int last) const;
    int positionAtRow(int row) const;
    const std::vector<int>& lineStarts() const;

    quint64 revision = 0;
    quint64 fills = 0;
    // Kept between calls: the indicator asks for thousands of positions on each redraw.
    mutable std::vector<int> rows;
    mutable std::vector<int> starts;
    mutable bool rowsStale = true;
    mutable bool startsStale = true;
    WheelLines wheel;
};

} // namespace toolkit
