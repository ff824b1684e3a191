#pragma once

#include <QList>
#include <QStringList>
#include <QToolButton>

class QMenu;

namespace toolkit {

// A push button that can also be a pop-up of rows. MenuValue is the chosen row, -1 for none;
// setting it from code is silent, only a user's choice raises Action. Captions and rows are
// shown as written: an "&" is a character, never a keyboard mnemonic.
class BevelButton : public QToolButton
{
    Q_OBJECT
public:
    explicit BevelButton(QWidget* parent = nullptr);

    QString Caption() const { return caption; }
    void setCaption(const QString& caption);
    // A caption too long for the button loses its middle to an ellipsis, so that both the start
    // and the end of a file's name stay readable.
    void setElided(bool on);

    void setMenuStyle(int style); // 1: a pop-up of rows
    bool isPopup() const { return menu_ != nullptr; }
    // Rows that lead somewhere rather than choose a value carry no check mark.
    void setRowsMarked(bool on);
    void AddRow(const QString& row);
    void DeleteAllRows();
    void RemoveRow(int row);
    QString List(int row) const;
    int ListCount() const { return static_cast<int>(rows.size()); }
    void setRowEnabled(int row, bool on);
    int MenuValue() const { return menuValue; }
    void setMenuValue(int row);

signals:
    void Action();

protected:
    void resizeEvent(QResizeEvent* e) override;
    void changeEvent(QEvent* e) override;

private:
    void showCaption();
    void rebuildMenu();
    void syncChecks();
    QMenu* menu_ = nullptr;
    QString caption;
    QStringList rows;
    QList<bool> enabled;
    int menuValue = -1;
    bool elided = false;
    bool rowsMarked = true;
};

} // namespace toolkit
