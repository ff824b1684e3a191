#pragma once

#include <QColor>
#include <QWidget>

namespace toolkit {

// A filled box with a one-pixel border: top and left edges in one colour, bottom and right in
// another.
class Rectangle : public QWidget
{
    Q_OBJECT
public:
    explicit Rectangle(QWidget* parent = nullptr);

    QColor FillColor = Qt::white;
    QColor TopLeftColor = Qt::black;
    QColor BottomRightColor = Qt::black;
    void setColors(unsigned fill, unsigned topLeft, unsigned bottomRight);

protected:
    void paintEvent(QPaintEvent*) override;
};

} // namespace toolkit
