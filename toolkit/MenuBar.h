#pragma once

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;

namespace toolkit {

class Window;

// One entry of a menu bar. An entry with children is a menu; the text "-" is a separator.
class MenuItem
{
public:
    enum class Kind { Plain, Quit, About };
    MenuItem(QString name, QString text, QString shortcut = {}, Kind kind = Kind::Plain);

    QString Name;
    QString Value;
    // "Cmd+Shift+Z": Cmd is the desktop's command key, Ctrl here; a comma separates several.
    QString Shortcut;
    Kind kind;
    bool AutoEnabled = true;
    bool Visible = true;
    std::vector<std::unique_ptr<MenuItem>> children;

    MenuItem* Append(std::unique_ptr<MenuItem> child);
    bool isSeparator() const { return Value == QLatin1String("-"); }

    QAction* action = nullptr; // made by MenuBar::build
    QMenu* menu = nullptr; // for an entry with children
};

// "Cmd+Cmd+Q" and friends as key sequences; a sequence that is a binding of one of the desktop's
// standard keys brings that key's other bindings too, behind it.
QList<QKeySequence> shortcutsFor(const QString& literal);
// Several such literals separated by commas ("Cmd+R, F5"), all of them, in order.
QList<QKeySequence> shortcutsForEach(const QString& literals);

// A menu bar shared by several windows: each window gets a bar of its own that shows the same
// menus and actions. A chosen item goes to the front window's handler of that name; editing items
// without a handler act on the focused text control, as the desktop's text controls expect.
class MenuBar : public QObject
{
    Q_OBJECT
public:
    MenuBar();
    ~MenuBar() override;

    MenuItem* Append(std::unique_ptr<MenuItem> entry);
    MenuItem* item(const QString& name) const;
    const std::vector<std::unique_ptr<MenuItem>>& entries() const { return top; }

    // Makes the Qt objects once all entries are appended.
    void build();
    void install(Window* window);
    void uninstall(Window* window);

    // The text of the application's item of that name, so that other menus say it alike.
    static QString itemText(const QString& name, const QString& otherwise);

    // What choosing the item would do now, with this front window and focus.
    bool isEnabledNow(const MenuItem& item) const;
    void choose(const MenuItem& item);

private:
    void buildItem(MenuItem& item, QMenu* into);
    void updateEnabled(MenuItem& menu);
    std::vector<std::unique_ptr<MenuItem>> top;
    std::vector<std::unique_ptr<QMenu>> menus;
};

} // namespace toolkit
