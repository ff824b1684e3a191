#include "Timer.h"

namespace toolkit {

Timer::Timer(QObject* parent)
    : QObject(parent)
{
    timer.setTimerType(Qt::PreciseTimer);
    connect(&timer, &QTimer::timeout, this, [this] {
        if (mode == 1)
            mode = 0;
        emit Action();
    });
}

void Timer::setMode(int newMode)
{
    mode = newMode == 1 || newMode == 2 ? newMode : 0;
    if (mode == 0) {
        timer.stop();
        return;
    }
    timer.setSingleShot(mode == 1);
    timer.start();
}

} // namespace toolkit
