#include "MenuBar1.h"

#include "globals.h"

#include <QPointer>

using toolkit::MenuItem;

MenuBar1& MenuBar1::instance()
{
    static QPointer<MenuBar1> bar;
    if (!bar)
        bar = new MenuBar1();
    return *bar;
}

MenuBar1::MenuBar1()
{
    Untitled0();
    Untitled1();
    Untitled2();
    build();
}

void MenuBar1::Untitled0()
{
    // The doubled modifier is how the item always stored it; it reads as Ctrl+Q.
    Append(std::make_unique<MenuItem>(
        "FileQuit", globals::kFileQuit(), "Cmd+Cmd+Q", MenuItem::Kind::Quit));
}

void MenuBar1::Untitled1()
{
    MenuItem* edit = Append(std::make_unique<MenuItem>("EditMenu", globals::kEditM()));
    edit->Append(std::make_unique<MenuItem>("EditUndo", globals::kEditUndo(), "Cmd+Z"));
    edit->Append(std::make_unique<MenuItem>("EditRedo", globals::kEditRedo(), "Cmd+Shift+Z"));
    edit->Append(std::make_unique<MenuItem>("UntitledMenu1", "-"));
    edit->Append(std::make_unique<MenuItem>("EditCut", globals::kEditCut(), "Cmd+X"));
    edit->Append(std::make_unique<MenuItem>("EditCopy", globals::kEditCopy(), "Cmd+C"));
    edit->Append(std::make_unique<MenuItem>("EditPaste", globals::kEditPaste(), "Cmd+V"));
    edit->Append(std::make_unique<MenuItem>("EditClear", globals::kEditClear()));
    edit->Append(std::make_unique<MenuItem>("UntitledMenu0", "-"));
    edit->Append(std::make_unique<MenuItem>("EditSelectAll", globals::kEditSelectAll(), "Cmd+A"));
    edit->Append(std::make_unique<MenuItem>("UntitledSeparator", "-"));
}

void MenuBar1::Untitled2()
{
    MenuItem* help = Append(std::make_unique<MenuItem>("HelpMenu", globals::kHelpM()));
    help->Append(std::make_unique<MenuItem>(
        "HelpAbout", globals::kAboutM(), QString(), MenuItem::Kind::About));
    help->Append(std::make_unique<MenuItem>("HelpHelp", globals::kManualM()));
    help->Append(std::make_unique<MenuItem>("HelpLicense", globals::kLicenseM()));
}
