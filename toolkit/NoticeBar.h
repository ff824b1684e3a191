#pragma once

#include <QWidget>

class QLabel;
class QToolButton;

namespace toolkit {

// A strip over the bottom edge of its parent that tells of a file that was not read, or not
// read whole. It takes no room from the controls below it and never blocks: the user closes it,
// or the next good read does.
class NoticeBar : public QWidget
{
    Q_OBJECT
public:
    // `closeTip` is the close button's tooltip.
    NoticeBar(QWidget* parent, const QString& closeTip);

    // Shows `line` under the ones already shown (a few at most, the oldest go first).
    void addNotice(const QString& line);
    // The lines shown, one a line; empty when hidden.
    QString text() const;
    void dismiss();

    static constexpr int kMaxLines = 3;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    QLabel* label;
    QToolButton* closeButton;
    QStringList lines;
};

} // namespace toolkit
