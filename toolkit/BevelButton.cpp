#include "BevelButton.h"

#include <QEvent>
#include <QMenu>
#include <QStyle>
#include <QStyleOptionToolButton>

#include <algorithm>

namespace toolkit {

namespace {

QString literal(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

BevelButton::BevelButton(QWidget* parent)
    : QToolButton(parent)
{
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    connect(this, &QToolButton::clicked, this, [this] {
        if (!menu_)
            emit Action();
    });
}

void BevelButton::setCaption(const QString& text)
{
    caption = text;
    showCaption();
}

void BevelButton::setElided(bool on)
{
    elided = on;
    showCaption();
}

void BevelButton::showCaption()
{
    if (!elided)
        return setText(literal(caption));
    // The room the style leaves for the text: the button less its frame, margins and arrow.
    QStyleOptionToolButton opt;
    initStyleOption(&opt);
    opt.text.clear();
    const QSize bare = style()->sizeFromContents(
        QStyle::CT_ToolButton, &opt, QSize(0, fontMetrics().height()), this);
    int room = width() - bare.width();
    if (isPopup())
        room -= style()->pixelMetric(QStyle::PM_MenuButtonIndicator, &opt, this);
    setText(literal(fontMetrics().elidedText(caption, Qt::ElideMiddle, std::max(room, 0))));
}

void BevelButton::resizeEvent(QResizeEvent* e)
{
    QToolButton::resizeEvent(e);
    if (elided)
        showCaption();
}

void BevelButton::changeEvent(QEvent* e)
{
    QToolButton::changeEvent(e);
    if (elided && (e->type() == QEvent::FontChange || e->type() == QEvent::StyleChange))
        showCaption();
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
    showCaption();
}

void BevelButton::setRowsMarked(bool on)
{
    rowsMarked = on;
    rebuildMenu();
}

void BevelButton::AddRow(const QString& row)
{
    rows.append(row);
    enabled.append(true);
    rebuildMenu();
}

void BevelButton::DeleteAllRows()
{
    rows.clear();
    enabled.clear();
    menuValue = -1;
    rebuildMenu();
}

void BevelButton::RemoveRow(int row)
{
    if (row < 0 || row >= rows.size())
        return;
    rows.removeAt(row);
    enabled.removeAt(row);
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

void BevelButton::setRowEnabled(int row, bool on)
{
    if (row < 0 || row >= rows.size())
        return;
    enabled[row] = on;
    if (menu_)
        menu_->actions().at(row)->setEnabled(on);
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
        actions.at(i)->setChecked(rowsMarked && i == menuValue);
}

void BevelButton::rebuildMenu()
{
    if (!menu_)
        return;
    menu_->clear();
    for (int i = 0; i < rows.size(); ++i) {
        QAction* a = menu_->addAction(literal(rows.at(i)));
        a->setCheckable(rowsMarked);
        a->setChecked(rowsMarked && i == menuValue);
        a->setEnabled(enabled.at(i));
        connect(a, &QAction::triggered, this, [this, i] {
            menuValue = i;
            syncChecks();
            emit Action();
        });
    }
}

} // namespace toolkit
