#include "BevelButton.h"

#include <QMenu>

namespace toolkit {

BevelButton::BevelButton(QWidget* parent)
    : QToolButton(parent)
{
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    connect(this, &QToolButton::clicked, this, [this] {
        if (!menu_)
            emit Action();
    });
}

void BevelButton::setMenuStyle(int style)
{
    if ((style == 1) == isPopup())
        return;
    if (style == 1) {
        menu_ = new QMenu(this);
        setMenu(menu_);
        setPopupMode(QToolButton::InstantPopup);
        rebuildMenu();
    } else {
        setMenu(nullptr);
        delete menu_;
        menu_ = nullptr;
    }
}

void BevelButton::AddRow(const QString& row)
{
    rows.append(row);
    rebuildMenu();
}

void BevelButton::DeleteAllRows()
{
    rows.clear();
    menuValue = -1;
    rebuildMenu();
}

void BevelButton::RemoveRow(int row)
{
    if (row < 0 || row >= rows.size())
        return;
    rows.removeAt(row);
    if (menuValue == row)
        menuValue = -1;
    else if (menuValue > row)
        --menuValue;
    rebuildMenu();
}

QString BevelButton::List(int row) const
{
    return row >= 0 && row < rows.size() ? rows.at(row) : QString();
}

void BevelButton::setMenuValue(int row)
{
    menuValue = row >= 0 && row < rows.size() ? row : -1;
    syncChecks();
}

void BevelButton::syncChecks()
{
    if (!menu_)
        return;
    const QList<QAction*> actions = menu_->actions();
    for (int i = 0; i < actions.size(); ++i)
        actions.at(i)->setChecked(i == menuValue);
}

void BevelButton::rebuildMenu()
{
    if (!menu_)
        return;
    menu_->clear();
    for (int i = 0; i < rows.size(); ++i) {
        QAction* a = menu_->addAction(rows.at(i));
        a->setCheckable(true);
        a->setChecked(i == menuValue);
        connect(a, &QAction::triggered, this, [this, i] {
            menuValue = i;
            syncChecks();
            emit Action();
        });
    }
}

} // namespace toolkit
