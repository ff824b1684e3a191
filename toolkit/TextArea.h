#pragma once

#include <QPlainTextEdit>

#include <functional>

namespace toolkit {

// An editable pane without line wrap, so that a pane's lines are its text's lines.
// Scroll positions count lines; character positions are one above the selection's scale.
class TextArea : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit TextArea(QWidget* parent = nullptr);

    QString Text() const { return toPlainText(); }
    // Raises TextChange, as typing does.
    void setText(const QString& text) { setPlainText(text); }

    // The pane's lines as it shows them: CR, LF, CR LF and U+2029 end a line, U+2028 does not.
    QStringList Lines() const;
    int LineCount() const;
    int VerticalScrollPosition() const;
    // Stops at the first or the last line.
    void setVerticalScrollPosition(int line);
    // The position of the first character of a zero-based line, counted from 1. A line past the
    // end answers one past the last position of the text; a negative line answers line 0.
    int CharacterPosition(int line) const;
    // The position at a pixel of the control, on the same scale.
    int CharacterPosition(double x, double y) const;
    int LineHeight() const;

    int SelectionStart() const;
    int SelectionLength() const;
    void select(int start, int length);

    // A handler that returns true takes the wheel event; false lets the pane scroll as usual.
    std::function<bool(int x, int y, int deltaX, int deltaY)> onMouseWheel;

signals:
    void TextChange();

protected:
    void wheelEvent(QWheelEvent* e) override;
};

} // namespace toolkit
