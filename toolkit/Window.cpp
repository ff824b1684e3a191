#include "Window.h"

#include "Application.h"
#include "Geometry.h"
#include "MenuBar.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QLayout>
#include <QMenuBar>
#include <QMouseEvent>

namespace toolkit {

// Lets locked controls follow a change of the window's size before the window hears of it.
class Window::Surface : public QWidget
{
public:
    Surface(Window* window, QSize size)
        : QWidget(window)
        , window(window)
        , laidOut(size)
    {
        makeSurface(this);
        resize(size);
    }

protected:
    void resizeEvent(QResizeEvent*) override
    {
        if (size() == laidOut)
            return;
        const QSize before = laidOut;
        laidOut = size();
        applyLocks(this, before);
        window->Event_Resized();
    }
    void mousePressEvent(QMouseEvent* e) override
    {
        window->Event_MouseDown(qRound(e->position().x()), qRound(e->position().y()));
    }

private:
    Window* window;
    QSize laidOut;
};

Window::Window(QSize contentSize, QWidget* parent)
    : QMainWindow(parent)
    , surface_(new Surface(this, contentSize))
{
    setCentralWidget(surface_);
    resize(contentSize);
}

Window::~Window()
{
    if (menuBarModel_)
        menuBarModel_->uninstall(this);
}

QWidget* Window::surface() const
{
    return surface_;
}
int Window::Width() const
{
    return surface_->width();
}
int Window::Height() const
{
    return surface_->height();
}

// The height the menu bar takes above the content: as laid out once shown, as it will be before.
static int menuBarHeight(const QMainWindow* window, int width)
{
    const QWidget* bar = window->menuWidget();
    if (!bar || bar->isHidden())
        return 0;
    if (bar->isVisible())
        return bar->height();
    const int h = bar->heightForWidth(width);
    return h > 0 ? h : bar->sizeHint().height();
}

void Window::setSize(int width, int height)
{
    const int extra = menuBarHeight(this, width);
    if (!isVisible())
        surface_->resize(width, height);
    resize(width, height + extra);
}

void Window::setSizeLimits(QSize minimum, QSize maximum)
{
    surface_->setMinimumSize(minimum);
    surface_->setMaximumSize(maximum);
}

void Window::setResizeable(bool on)
{
    if (on)
        return;
    surface_->setFixedSize(surface_->size());
    // The frame too: a window manager offers no maximise button for a window whose smallest and
    // largest sizes are one.
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void Window::setMenuBarModel(MenuBar* bar)
{
    if (menuBarModel_)
        menuBarModel_->uninstall(this);
    const QSize content = surface_->size();
    menuBarModel_ = bar;
    if (bar)
        bar->install(this);
    // The bar takes its room from the window, not from the content.
    setSize(content.width(), content.height());
}

void Window::addMenuHandler(const QString& itemName, std::function<bool()> handler)
{
    menuHandlers.insert(itemName, std::move(handler));
}

bool Window::handleMenu(const QString& itemName)
{
    const auto it = menuHandlers.constFind(itemName);
    return it != menuHandlers.constEnd() && (*it)();
}

void Window::Show()
{
    show();
    raise();
    activateWindow();
}

void Window::ShowModal()
{
    setWindowModality(Qt::ApplicationModal);
    Show();
    if (!isVisible())
        return;
    QEventLoop loop;
    connect(this, &Window::hidden, &loop, &QEventLoop::quit);
    connect(this, &QObject::destroyed, &loop, &QEventLoop::quit);
    loop.exec();
}

void Window::setFrame(bool dialog, bool maximizeButton)
{
    Qt::WindowFlags flags = (dialog ? Qt::Dialog : Qt::Window) | Qt::CustomizeWindowHint
        | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint
        | Qt::WindowCloseButtonHint;
    if (maximizeButton)
        flags |= Qt::WindowMaximizeButtonHint;
    setWindowFlags(flags);
}

bool Window::Event_CancelClose(bool appQuitting)
{
    if (!hiddenOnClose || appQuitting)
        return false;
    Hide();
    return true;
}

bool Window::Event_MouseDown(int, int)
{
    return false;
}

void Window::showEvent(QShowEvent* e)
{
    QMainWindow::showEvent(e);
    if (!opened) {
        opened = true;
        Event_Open();
    }
}

void Window::hideEvent(QHideEvent* e)
{
    QMainWindow::hideEvent(e);
    if (!isVisible())
        emit hidden();
}

void Window::closeEvent(QCloseEvent* e)
{
    if (Event_CancelClose(Application::quitting())) {
        e->ignore();
        return;
    }
    Event_Close();
    e->accept();
}

void Window::changeEvent(QEvent* e)
{
    QMainWindow::changeEvent(e);
    if (e->type() == QEvent::ActivationChange && !isActiveWindow())
        Event_Deactivate();
}

} // namespace toolkit
