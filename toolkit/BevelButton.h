#pragma once

#include <QStringList>
#include <QToolButton>

class QMenu;

namespace toolkit {

// A push button that can also be a pop-up of rows. MenuValue is the chosen row, -1 for none;
// setting it from code is silent, only a user's choice raises Action.
class BevelButton : public QToolButton
{
    Q_OBJECT
public:
    explicit BevelButton(QWidget* parent = nullptr);

    QString Caption() const { return text(); }
    void setCaption(const QString& caption) { setText(caption); }

    void setMenuStyle(int style); // 1: a pop-up of rows
    bool isPopup() const { return menu_ != nullptr; }
    void AddRow(const QString& row);
    void DeleteAllRows();
    void RemoveRow(int row);
    QString List(int row) const;
    int ListCount() const { return static_cast<int>(rows.size()); }
    int MenuValue() const { return menuValue; }
    void setMenuValue(int row);

signals:
    void Action();

private:
    void rebuildMenu();
    void syncChecks();
    QMenu* menu_ = nullptr;
    QStringList rows;
    int menuValue = -1;
};

} // namespace toolkit
