#pragma once

#include "MenuBar.h"

// The one menu bar: Quit on the bar itself, the Edit menu for the panes, the Help menu for the
// three information windows. Texts are fetched once, in the user's language, when it is built.
class MenuBar1 : public toolkit::MenuBar
{
    Q_OBJECT
public:
    static MenuBar1& instance();

private:
    MenuBar1();
    void Untitled0();
    void Untitled1();
    void Untitled2();
};
