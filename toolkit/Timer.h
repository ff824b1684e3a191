#pragma once

#include <QObject>
#include <QTimer>

namespace toolkit {

// Mode 0 is off, 1 fires once, 2 fires repeatedly; setting a mode other than 0 (re)starts the
// period.
class Timer : public QObject
{
    Q_OBJECT
public:
    explicit Timer(QObject* parent = nullptr);
    int Period() const { return timer.interval(); }
    void setPeriod(int milliseconds) { timer.setInterval(milliseconds); }
    int Mode() const { return mode; }
    void setMode(int mode);

signals:
    void Action();

private:
    QTimer timer;
    int mode = 0;
};

} // namespace toolkit
