#include "HelpWindow.h"

#include "Geometry.h"
#include "MenuBar1.h"
#include "Style.h"
#include "TextArea.h"
#include "globals.h"

#include <QPalette>

using namespace toolkit;

HelpWindow::HelpWindow()
    : Window(QSize(400, 400))
{
    Layout();
    CreateControls();
    AddMenuHandlers();
}

void HelpWindow::Layout()
{
    setTitle(globals::kManualM());
    setMenuBarModel(&MenuBar1::instance());
    setSizeLimits(QSize(64, 64), QSize(32000, 32000));
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint
        | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
}

void HelpWindow::CreateControls()
{
    TextArea1 = new TextArea();
    TextArea1->setObjectName(QStringLiteral("TextArea1"));
    TextArea1->setPlainText(globals::kManualT());
    place(TextArea1, surface(), QRect(0, 0, 400, 385), Locks::from("LTRB"));
    TextArea1->setReadOnly(true);
    // The manual is prose: it wraps at the window's width instead of scrolling sideways.
    TextArea1->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    QPalette p = TextArea1->palette();
    p.setColor(QPalette::Base, rgb(0xFFFFFF));
    TextArea1->setPalette(p);
    setTextColor(TextArea1, rgb(0x000000));
    TextArea1->setFocus();
}

void HelpWindow::AddMenuHandlers()
{
    addMenuHandler(QStringLiteral("FileClose"), [this] { return _FileClose_Action(); });
}

bool HelpWindow::_FileClose_Action()
{
    Close();
    return true;
}

bool HelpWindow::Event_CancelClose(bool appQuitting)
{
    if (appQuitting)
        return false;
    // Kept, not closed: the next Show brings back this window, scrolled where it was.
    Hide();
    return true;
}
