#pragma once

#include <QHash>
#include <QMainWindow>
#include <QPointer>

#include <functional>

namespace toolkit {

class MenuBar;

// A top-level window whose Width and Height are those of its content, below the menu bar.
// Subclasses answer the window's events by overriding the Event_ methods.
class Window : public QMainWindow
{
    Q_OBJECT
public:
    explicit Window(QSize contentSize, QWidget* parent = nullptr);
    ~Window() override;

    // The content, origin of window coordinates and parent of the top controls.
    QWidget* surface() const;

    QString Title() const { return windowTitle(); }
    void setTitle(const QString& title) { setWindowTitle(title); }
    int Width() const;
    int Height() const;
    void setSize(int width, int height);
    void setHeight(int height) { setSize(Width(), height); }
    void setSizeLimits(QSize minimum, QSize maximum);
    void setResizeable(bool on);
    // Title, close and minimise buttons; a maximise button only when asked for.
    void setFrame(bool dialog, bool maximizeButton);
    // The user's close only hides the window, which keeps its state for the next Show; quitting
    // closes it.
    void setHiddenOnClose(bool on) { hiddenOnClose = on; }

    MenuBar* menuBarModel() const { return menuBarModel_; }
    void setMenuBarModel(MenuBar* bar);

    // Registered by item name; the menu bar asks the front window for it.
    void addMenuHandler(const QString& itemName, std::function<bool()> handler);
    bool hasMenuHandler(const QString& itemName) const { return menuHandlers.contains(itemName); }
    bool handleMenu(const QString& itemName);

    void Show();
    // Returns when the window has been hidden or closed.
    void ShowModal();
    void Hide() { hide(); }
    bool Close() { return close(); }

signals:
    void hidden();

protected:
    virtual void Event_Open() { }
    virtual void Event_Close() { }
    // True keeps the window open.
    virtual bool Event_CancelClose(bool appQuitting);
    virtual void Event_Resized() { }
    virtual bool Event_MouseDown(int x, int y);
    virtual void Event_Deactivate() { }

    void showEvent(QShowEvent* e) override;
    void hideEvent(QHideEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
    void changeEvent(QEvent* e) override;

private:
    class Surface;
    friend class Surface;
    Surface* surface_;
    MenuBar* menuBarModel_ = nullptr;
    QHash<QString, std::function<bool()>> menuHandlers;
    bool opened = false;
    bool hiddenOnClose = false;
};

// The one window of a class, made on first use; a hidden window is still that window.
template <class W> W& implicitInstance()
{
    static QPointer<W> instance;
    if (!instance)
        instance = new W();
    return *instance;
}

} // namespace toolkit
