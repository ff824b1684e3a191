#pragma once

#include "DragItem.h"
#include "FileType.h"

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

    // Files dragged onto the rectangle, or onto a control on it that takes no drops, go to these
    // handlers.
    void AcceptFileDrop(const FileTypeList& types);
    FileDrops fileDrops;

protected:
    void paintEvent(QPaintEvent*) override;
    void dragEnterEvent(QDragEnterEvent* e) override;
    void dragMoveEvent(QDragMoveEvent* e) override;
    void dragLeaveEvent(QDragLeaveEvent* e) override;
    void dropEvent(QDropEvent* e) override;
};

} // namespace toolkit
