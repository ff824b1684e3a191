#include "Keyboard.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace toolkit::Keyboard {

namespace {

// Sees every key event before its receiver does, and lets each go on.
class EscapeWatch : public QObject
{
public:
    bool down = false;
    bool pressed = false;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const auto type = event->type();
        if ((type == QEvent::KeyPress || type == QEvent::KeyRelease)
            && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            const auto* key = static_cast<QKeyEvent*>(event);
            if (type == QEvent::KeyPress) {
                down = pressed = true;
            } else if (!key->isAutoRepeat()) {
                down = false;
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

EscapeWatch* watch = nullptr;

} // namespace

void startWatching()
{
    auto* app = QCoreApplication::instance();
    if (watch || !app)
        return;
    watch = new EscapeWatch;
    watch->setParent(app);
    app->installEventFilter(watch);
    QObject::connect(watch, &QObject::destroyed, [] { watch = nullptr; });
}

bool AsyncKeyDown(int keyCode)
{
    startWatching();
    if (keyCode != kEscape || !watch)
        return false;
    const bool answer = watch->down || watch->pressed;
    watch->pressed = false;
    return answer;
}

} // namespace toolkit::Keyboard
