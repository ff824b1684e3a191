#include "MenuBar.h"

#include "Application.h"
#include "PlainPane.h"
#include "Window.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMenuBar>
#include <QTextEdit>

#include <functional>

namespace toolkit {
namespace {

// The text control that has the focus, seen through one face whichever class it is.
struct FocusedText
{
    PlainPane* plain = nullptr;
    QTextEdit* rich = nullptr;

    static FocusedText now()
    {
        QWidget* w = QApplication::focusWidget();
        return {qobject_cast<PlainPane*>(w), qobject_cast<QTextEdit*>(w)};
    }
    explicit operator bool() const { return plain || rich; }
    bool readOnly() const { return plain ? plain->isReadOnly() : rich->isReadOnly(); }
    bool hasSelection() const
    {
        return plain ? plain->hasSelection() : rich->textCursor().hasSelection();
    }
    bool canUndo() const { return plain ? plain->canUndo() : rich->document()->isUndoAvailable(); }
    bool canRedo() const { return plain ? plain->canRedo() : rich->document()->isRedoAvailable(); }
    bool isEmpty() const
    {
        return plain ? plain->store().size() == 0 : rich->document()->isEmpty();
    }
    bool canPaste() const { return plain ? plain->canPaste() : rich->canPaste(); }
    void removeSelectedText() const
    {
        if (plain)
            plain->removeSelectedText();
        else
            rich->textCursor().removeSelectedText();
    }
    template <typename F> void call(F f) const
    {
        if (plain)
            f(plain);
        else
            f(rich);
    }
};

const std::vector<QString>& editingItems()
{
    static const std::vector<QString> names{
        "EditUndo", "EditRedo", "EditCut", "EditCopy", "EditPaste", "EditClear", "EditSelectAll"};
    return names;
}

bool isEditingItem(const QString& name)
{
    const auto& names = editingItems();
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool editingApplies(const QString& name, const FocusedText& t)
{
    if (!t)
        return false;
    const bool selection = t.hasSelection();
    const bool writable = !t.readOnly();
    if (name == QLatin1String("EditUndo"))
        return writable && t.canUndo();
    if (name == QLatin1String("EditRedo"))
        return writable && t.canRedo();
    if (name == QLatin1String("EditCut") || name == QLatin1String("EditClear"))
        return writable && selection;
    if (name == QLatin1String("EditCopy"))
        return selection;
    if (name == QLatin1String("EditPaste"))
        return writable && t.canPaste();
    return !t.isEmpty(); // EditSelectAll
}

void runEditing(const QString& name, const FocusedText& t)
{
    if (!editingApplies(name, t))
        return;
    t.call([&](auto* edit) {
        if (name == QLatin1String("EditUndo"))
            edit->undo();
        else if (name == QLatin1String("EditRedo"))
            edit->redo();
        else if (name == QLatin1String("EditCut"))
            edit->cut();
        else if (name == QLatin1String("EditCopy"))
            edit->copy();
        else if (name == QLatin1String("EditPaste"))
            edit->paste();
        else if (name == QLatin1String("EditClear"))
            t.removeSelectedText();
        else
            edit->selectAll();
    });
}

Window* frontWindow()
{
    return qobject_cast<Window*>(QApplication::activeWindow());
}

} // namespace

MenuItem::MenuItem(QString name, QString text, QString shortcut, Kind kind)
    : Name(std::move(name))
    , Value(std::move(text))
    , Shortcut(std::move(shortcut))
    , kind(kind)
{
}

MenuItem* MenuItem::Append(std::unique_ptr<MenuItem> child)
{
    children.push_back(std::move(child));
    return children.back().get();
}

QList<QKeySequence> shortcutsFor(const QString& literal)
{
    if (literal.contains(u','))
        return shortcutsForEach(literal);
    if (literal.isEmpty())
        return {};
    QKeyCombination combination;
    Qt::KeyboardModifiers modifiers;
    const QStringList parts = literal.split(u'+');
    for (int i = 0; i + 1 < parts.size(); ++i) {
        const QString m = parts.at(i).trimmed().toLower();
        if (m == QLatin1String("cmd") || m == QLatin1String("ctrl"))
            modifiers |= Qt::ControlModifier;
        else if (m == QLatin1String("shift"))
            modifiers |= Qt::ShiftModifier;
        else if (m == QLatin1String("alt") || m == QLatin1String("option"))
            modifiers |= Qt::AltModifier;
    }
    const QKeySequence key = QKeySequence::fromString(parts.last().trimmed());
    if (key.isEmpty())
        return {};
    const QKeySequence sequence(QKeyCombination(modifiers, key[0].key()));
    static const QKeySequence::StandardKey standard[]
        = {QKeySequence::Undo, QKeySequence::Redo, QKeySequence::Cut, QKeySequence::Copy,
            QKeySequence::Paste, QKeySequence::SelectAll, QKeySequence::Quit, QKeySequence::Close};
    for (QKeySequence::StandardKey s : standard) {
        QList<QKeySequence> bindings = QKeySequence::keyBindings(s);
        if (bindings.removeAll(sequence) > 0) {
            bindings.prepend(sequence);
            return bindings;
        }
    }
    return {sequence};
}

namespace {
MenuBar* lastBuilt = nullptr;
}

QList<QKeySequence> shortcutsForEach(const QString& literals)
{
    QList<QKeySequence> all;
    for (const QString& literal : literals.split(u',', Qt::SkipEmptyParts)) {
        for (const QKeySequence& key : shortcutsFor(literal.trimmed())) {
            if (!all.contains(key))
                all << key;
        }
    }
    return all;
}

MenuBar::MenuBar() = default;

MenuBar::~MenuBar()
{
    if (lastBuilt == this)
        lastBuilt = nullptr;
}

QString MenuBar::itemText(const QString& name, const QString& otherwise)
{
    const MenuItem* found = lastBuilt ? lastBuilt->item(name) : nullptr;
    return found ? found->Value : otherwise;
}

MenuItem* MenuBar::Append(std::unique_ptr<MenuItem> entry)
{
    top.push_back(std::move(entry));
    return top.back().get();
}

MenuItem* MenuBar::item(const QString& name) const
{
    std::function<MenuItem*(const std::vector<std::unique_ptr<MenuItem>>&)> find
        = [&](const std::vector<std::unique_ptr<MenuItem>>& list) -> MenuItem* {
        for (const auto& i : list) {
            if (i->Name == name)
                return i.get();
            if (MenuItem* c = find(i->children))
                return c;
        }
        return nullptr;
    };
    return find(top);
}

void MenuBar::build()
{
    lastBuilt = this;
    for (auto& entry : top)
        buildItem(*entry, nullptr);
}

void MenuBar::buildItem(MenuItem& item, QMenu* into)
{
    if (!item.children.empty()) {
        menus.push_back(std::make_unique<QMenu>(item.Value));
        item.menu = menus.back().get();
        item.action = item.menu->menuAction();
        item.action->setObjectName(item.Name);
        for (auto& child : item.children)
            buildItem(*child, item.menu);
        connect(item.menu, &QMenu::aboutToShow, this, [this, &item] { updateEnabled(item); });
        // Shortcuts must keep working while the menu is closed, whatever it showed last.
        connect(item.menu, &QMenu::aboutToHide, this, [&item] {
            for (auto& child : item.children)
                child->action->setEnabled(true);
        });
    } else {
        // A separator with a text is drawn as a heading showing that text.
        item.action = new QAction(item.isSeparator() ? QString() : item.Value, this);
        item.action->setObjectName(item.Name);
        item.action->setSeparator(item.isSeparator());
        item.action->setShortcuts(shortcutsFor(item.Shortcut));
        if (item.kind == MenuItem::Kind::Quit)
            item.action->setMenuRole(QAction::QuitRole);
        else if (item.kind == MenuItem::Kind::About)
            item.action->setMenuRole(QAction::AboutRole);
        connect(item.action, &QAction::triggered, this, [this, &item] { choose(item); });
    }
    item.action->setVisible(item.Visible);
    if (into)
        into->addAction(item.action);
}

void MenuBar::install(Window* window)
{
    auto* bar = new QMenuBar(window);
    for (auto& entry : top) {
        if (entry->menu)
            bar->addMenu(entry->menu);
        else
            bar->addAction(entry->action);
    }
    window->setMenuBar(bar);
}

void MenuBar::uninstall(Window* window)
{
    if (QMenuBar* bar = window->menuBar())
        bar->clear();
}

bool MenuBar::isEnabledNow(const MenuItem& item) const
{
    if (item.isSeparator() || !item.children.empty() || item.kind == MenuItem::Kind::Quit)
        return true;
    if (Window* w = frontWindow(); w && w->hasMenuHandler(item.Name))
        return true;
    return isEditingItem(item.Name) && editingApplies(item.Name, FocusedText::now());
}

void MenuBar::choose(const MenuItem& item)
{
    if (Window* w = frontWindow(); w && w->hasMenuHandler(item.Name) && w->handleMenu(item.Name))
        return;
    if (item.kind == MenuItem::Kind::Quit)
        Application::Quit(0);
    else if (isEditingItem(item.Name))
        runEditing(item.Name, FocusedText::now());
}

void MenuBar::updateEnabled(MenuItem& menu)
{
    for (auto& child : menu.children)
        if (child->AutoEnabled)
            child->action->setEnabled(isEnabledNow(*child));
}

} // namespace toolkit
