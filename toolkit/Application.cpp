#include "Application.h"

#include "Keyboard.h"
#include "Window.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QPointer>
#include <QUrl>

namespace toolkit {

Application::Application(int& argc, char** argv)
    : QApplication(argc, argv)
{
    // A long read looks at the Esc key, which may have been pressed before it began.
    Keyboard::startWatching();
}

void Application::Quit(int code)
{
    quitting_ = true;
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (qobject_cast<Window*>(w) && !w->close()) {
            quitting_ = false;
            return;
        }
    }
    QCoreApplication::exit(code);
}

void Application::deleteWindows()
{
    QList<QPointer<QWidget>> windows;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (qobject_cast<Window*>(w))
            windows << w;
    qDeleteAll(windows);
}

void Application::MsgBox(const QString& text)
{
    QMessageBox box;
    box.setText(text);
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
}

void Application::ShowURL(const QString& address)
{
    ShowURL(QUrl(address, QUrl::TolerantMode));
}

void Application::ShowURL(const QUrl& url)
{
    QDesktopServices::openUrl(url);
}

} // namespace toolkit
