#pragma once

#include "Geometry.h"

#include <QImage>
#include <QWidget>

#include <functional>

namespace toolkit {

// A picture kept at the screen's device pixel ratio, so that it stays sharp on HiDPI screens.
class Picture
{
public:
    Picture() = default;
    Picture(int width, int height, qreal devicePixelRatio);
    // A picture of the application's resources by file name; null when there is none.
    static Picture fromResource(const QString& name);

    bool isNull() const { return image.isNull(); }
    int Width() const;
    int Height() const;
    QImage image;
};

// A control that shows its backdrop picture and reports the mouse and keys.
class Canvas : public QWidget
{
    Q_OBJECT
public:
    explicit Canvas(QWidget* parent = nullptr);

    const Picture& Backdrop() const { return backdrop; }
    // For drawing into the backdrop in place. What is drawn during the current event reaches
    // the screen, as setBackdrop schedules a repaint.
    Picture& Backdrop() { return backdrop; }
    void setBackdrop(Picture picture);
    // A new picture at this canvas's size and the screen's pixel ratio.
    Picture newPicture() const;

    // A handler that returns true takes the wheel event. deltaY counts lines, positive towards
    // the end of the text.
    std::function<bool(int x, int y, int deltaX, int deltaY)> onMouseWheel;

signals:
    void MouseDown(int x, int y);
    void KeyDown(const QString& key);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;

private:
    Picture backdrop;
    WheelLines wheel;
};

} // namespace toolkit
