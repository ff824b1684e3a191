#pragma once

#include "LineSpan.h"
#include "LineStore.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QPoint>
#include <QVariant>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

class QPainter;

namespace toolkit {

// An editable plain text without line wrap, over a line store. Only the lines in view are laid
// out, and of a long line only its pieces in view are drawn. Positions are UTF-16 offsets.
class PlainPane : public QAbstractScrollArea
{
    Q_OBJECT
public:
    explicit PlainPane(QWidget* parent = nullptr);

    const LineStore& store() const { return text; }
    // Takes a whole new text: nothing to undo, the caret at the start.
    void setStore(LineStore store);
    quint64 revision() const { return rev; }

    qsizetype cursorPosition() const { return caret; }
    qsizetype selectionStart() const { return std::min(caret, anchor); }
    qsizetype selectionEnd() const { return std::max(caret, anchor); }
    bool hasSelection() const { return caret != anchor; }
    QString selectedText() const { return text.text(selectionStart(), selectionEnd()); }
    // Moves the caret to `position`, selecting from `anchorAt`; scrolls to the caret if asked.
    void setSelection(qsizetype anchorAt, qsizetype position, bool scroll = true);

    bool isReadOnly() const { return readOnly; }
    void setReadOnly(bool on);
    int lineHeight() const { return metricsHeight; }
    // Where the text starts below the viewport's top.
    static constexpr int kTop = 2;
    int firstVisibleLine() const;
    void scrollToLine(qsizetype line);
    // Viewport coordinates.
    qsizetype positionAt(QPointF point) const;
    QRectF caretRect(qsizetype position) const;
    qreal xOf(qsizetype line, qsizetype column) const;

    // Takes a whole new text as one step that Undo takes back. The old text's blocks are kept,
    // not copied, so the step costs next to nothing whatever the size.
    void replaceStore(LineStore store);
    // How many such steps the undo history holds at most.
    static constexpr int kWholeSteps = 4;
    // Edits as the user makes them: they can be undone.
    void replaceSelection(const QString& with);
    void replace(qsizetype from, qsizetype to, const QString& with);
    // Moves the selected text to `at`, as a drag within the pane does: one step to undo.
    void moveSelection(qsizetype at);
    bool canUndo() const { return (!undos.empty() || beforeFirst) && !readOnly; }
    // What Undo does past the first step: bring back a text the pane did not hold (a styled
    // one). A new text forgets it.
    std::function<void()> beforeFirst;
    // What goes with a whole text beside its characters (its owner's word for how it was read),
    // asked for when the text leaves by Undo or Redo and handed back when it returns.
    std::function<QVariant()> stateNow;
    std::function<void(const QVariant&)> stateBack;
    bool canRedo() const { return !redos.empty() && !readOnly; }
    bool canPaste() const;

    // Lines painted behind the text: `count` lines from `first`, or, with none, a thin mark
    // where the missing lines would stand. A negative `first` paints none. Edits above or
    // within them move them with their lines; a new text drops them.
    void setHighlight(qsizetype first, qsizetype count);
    qsizetype highlightFirst() const { return markFirst; }
    qsizetype highlightCount() const { return markCount; }
    // Stretches of lines painted stronger still, in the order of their lines.
    void setSpans(std::vector<LineSpan> spans);
    const std::vector<LineSpan>& spans() const { return marked; }

public slots:
    void undo();
    void redo();
    void cut();
    void copy() const;
    void paste();
    void removeSelectedText();
    void selectAll();

signals:
    void textChanged();
    void selectionChanged();
    // Scrolled by any means (keys, bars, wheel, code), resized, or given another font.
    void viewMoved();

protected:
    bool event(QEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;
    void timerEvent(QTimerEvent* e) override;
    void changeEvent(QEvent* e) override;
    void inputMethodEvent(QInputMethodEvent* e) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void contextMenuEvent(QContextMenuEvent* e) override;
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dragMoveEvent(QDragMoveEvent* e) override;
    void dragLeaveEvent(QDragLeaveEvent* e) override;
    void dropEvent(QDropEvent* e) override;

private:
    // Pieces of one line, each drawn and measured on its own: tabs, and runs cut short enough
    // that a very long line is measured and drawn only where it shows.
    struct Layout
    {
        std::vector<qsizetype> starts; // of each piece, in the line; one past the end last
        std::vector<qreal> xs; // likewise
    };
    const Layout& layoutOf(qsizetype line) const;
    void layOut(Layout& l, qsizetype line, qsizetype from, qreal x) const;
    void relayOut(qsizetype line, qsizetype column);
    void change(qsizetype from, qsizetype to, QStringView with);
    void showChange();
    qreal advance(std::u16string_view piece) const;
    qsizetype columnAt(qsizetype line, qreal x) const;
    void forgetLayouts();
    void updateBars();
    void ensureVisible(qsizetype position);
    qsizetype moved(int key, qsizetype from) const;
    qsizetype wordStart(qsizetype position, bool forward) const;
    void edit(qsizetype from, qsizetype to, const QString& with, bool typing);
    void restartBlink();
    void followEdit(qsizetype fromLine, qsizetype toLine, qsizetype added);
    void paintMarks(QPainter& p, qsizetype first, qsizetype last, qreal left) const;

    struct Edit
    {
        qsizetype at;
        QString removed;
        QString inserted;
        qsizetype caretBefore, anchorBefore;
        bool typing;
        // A whole text replaced: the text on the other side of the step.
        std::unique_ptr<LineStore> other = {};
        QVariant otherState = {};
        bool withPrevious = false; // undone and redone together with the edit before it
    };
    void showStore(LineStore store);
    // Puts the other text of a whole-text step in place, keeping the one it replaces there.
    void swapWhole(Edit& e);

    LineStore text;
    quint64 rev = 0;
    qsizetype caret = 0;
    qsizetype anchor = 0;
    qreal wantedX = -1; // kept across up and down moves
    bool readOnly = false;
    bool caretShown = true;
    QBasicTimer blink;
    QString preedit;
    int preeditCaret = 0;
    std::vector<Edit> undos;
    std::vector<Edit> redos;
    int metricsHeight = 1;
    int ascent = 0;
    qreal tabStop = 64;
    qreal widest = 0;
    std::vector<qreal> narrow; // advances of the first 256 code points
    mutable std::unordered_map<qsizetype, Layout> layouts;
    mutable qreal widestLaidOut = 0;
    QPoint pressAt;
    bool pressInSelection = false;
    bool selecting = false;
    qsizetype dropCaret = -1;
    qsizetype markFirst = -1;
    qsizetype markCount = 0;
    std::vector<LineSpan> marked;
};

} // namespace toolkit
