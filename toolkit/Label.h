#pragma once

#include <QLabel>

namespace toolkit {

// A line (or with Multiline, a block) of text. Alignment codes: 0 left, 2 centred, 3 right.
class Label : public QLabel
{
    Q_OBJECT
public:
    explicit Label(QWidget* parent = nullptr);
    void setTextAlignment(int code);
    void setMultiline(bool on) { setWordWrap(on); }
    // A link shows the pointing hand and keeps its clicks; other labels pass clicks on to the
    // window behind them.
    void setLink(bool on);

signals:
    void MouseEnter();
    void MouseExit();
    void MouseDown(int x, int y);

protected:
    void enterEvent(QEnterEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;

private:
    bool link = false;
};

} // namespace toolkit
