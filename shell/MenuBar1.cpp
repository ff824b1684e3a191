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
    UntitledView();
    Untitled2();
    build();
}

void MenuBar1::Untitled0()
{
    MenuItem* file = Append(std::make_unique<MenuItem>("FileMenu", globals::kFileM()));
    file->Append(std::make_unique<MenuItem>("FileOpenLeft", globals::kFileOpenLeft(), "Cmd+O"));
    file->Append(
        std::make_unique<MenuItem>("FileOpenRight", globals::kFileOpenRight(), "Cmd+Shift+O"));
    file->Append(std::make_unique<MenuItem>("FileReload", globals::kFileReload(), "Cmd+R, F5"));
    file->Append(std::make_unique<MenuItem>("FileSeparator", "-"));
    // The doubled modifier is how the item always stored it; it reads as Ctrl+Q.
    file->Append(std::make_unique<MenuItem>(
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

// Alt with the arrows, Home and End: the panes keep the plain and Ctrl forms for the caret.
void MenuBar1::UntitledView()
{
    MenuItem* view = Append(std::make_unique<MenuItem>("ViewMenu", globals::kViewM()));
    view->Append(std::make_unique<MenuItem>("ViewTop", globals::kViewTop(), "Alt+Home"));
    view->Append(std::make_unique<MenuItem>("ViewPrev", globals::kViewPrev(), "Alt+Up"));
    view->Append(std::make_unique<MenuItem>("ViewNext", globals::kViewNext(), "Alt+Down"));
    view->Append(std::make_unique<MenuItem>("ViewBottom", globals::kViewBottom(), "Alt+End"));
}

void MenuBar1::Untitled2()
{
    MenuItem* help = Append(std::make_unique<MenuItem>("HelpMenu", globals::kHelpM()));
    help->Append(std::make_unique<MenuItem>(
        "HelpAbout", globals::kAboutM(), QString(), MenuItem::Kind::About));
    help->Append(std::make_unique<MenuItem>("HelpHelp", globals::kManualM()));
    help->Append(std::make_unique<MenuItem>("HelpLicense", globals::kLicenseM()));
}
