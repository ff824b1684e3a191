#include "HelpWindow.h"

#include "Controls.h"
#include "Geometry.h"
#include "MenuBar1.h"
#include "Style.h"
#include "TextArea.h"
#include "globals.h"


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
    setFrame(false, false);
    // Kept, not closed: the next Show brings it back scrolled where it was.
    setHiddenOnClose(true);
}

void HelpWindow::CreateControls()
{
    TextArea1 = makeNotice("TextArea1", surface(), {0, 0, 400, 385}, "LTRB", globals::kManualT());
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
