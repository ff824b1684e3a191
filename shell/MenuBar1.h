#pragma once

#include "MenuBar.h"

// The one menu bar: the File menu (opening, reloading, quitting), the Edit menu for the panes,
// the View menu to step through the differences, the Help menu for the three information windows.
// Texts are fetched once, in the user's language, when it is built.
class MenuBar1 : public toolkit::MenuBar
{
    Q_OBJECT
public:
    static MenuBar1& instance();

private:
    MenuBar1();
    void Untitled0();
    void Untitled1();
    void UntitledView();
    void Untitled2();
};
