#pragma once

#include <QHash>
#include <QWidget>

#include <functional>
#include <vector>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QToolButton;

namespace toolkit {

// A strip near the bottom edge of its parent that tells of a file that was not read, or not
// read whole, or changed, with buttons for what can be done about it. It takes no room from the
// controls below it and never blocks: the user closes it, or the next good read does.
class NoticeBar : public QWidget
{
    Q_OBJECT
public:
    // `closeTip` is the close button's tooltip.
    NoticeBar(QWidget* parent, const QString& closeTip);

    // Shows `line` under the ones already shown (a few at most, the oldest go first).
    void addNotice(const QString& line);
    // A button on the bar, after the lines, that closes the bar and runs `act`; one of the same
    // key takes its place. The button's object name is the key. It belongs to the last line.
    void addAction(const QString& key, const QString& text, std::function<void()> act);
    // Takes the button of that key away, with its line; the bar closes when no line is left.
    void withdraw(const QString& key);
    // The lines shown, one a line; empty when hidden.
    QString text() const;
    void dismiss();
    // Room left free below the bar, for controls that must stay within reach.
    void setBottomMargin(int margin);

    static constexpr int kMaxLines = 3;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    QLabel* label;
    QToolButton* closeButton;
    QHBoxLayout* row;
    int bottomMargin = 0;
    QStringList lines;
    std::vector<QPushButton*> actions;
    // The line each button belongs to, by its key.
    QHash<QString, QString> lineOf;
};

} // namespace toolkit
