#pragma once

#include "Window.h"

namespace toolkit {
class TextArea;
}

// The manual, read-only. Closing it only hides it, so that it comes back where it was scrolled.
class HelpWindow : public toolkit::Window
{
    Q_OBJECT
public:
    HelpWindow();

    toolkit::TextArea* TextArea1 = nullptr;

    bool _FileClose_Action();

private:
    void Layout();
    void CreateControls();
    void AddMenuHandlers();
};
