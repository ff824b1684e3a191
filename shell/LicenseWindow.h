#pragma once

#include "Window.h"

#include <array>

namespace toolkit {
class Label;
class TextArea;
} // namespace toolkit

// The notices of the code Twinly is built from, in three blocks: a heading, a mail link, a web
// link and the notice itself. Closing it only hides it.
class LicenseWindow : public toolkit::Window
{
    Q_OBJECT
public:
    LicenseWindow();

    toolkit::TextArea* TextArea1 = nullptr;
    toolkit::Label* Label1 = nullptr;
    toolkit::Label* Label2 = nullptr;
    toolkit::TextArea* TextArea2 = nullptr;
    toolkit::Label* Label3 = nullptr;
    toolkit::TextArea* TextArea3 = nullptr;
    std::array<toolkit::Label*, 3> MailText{};
    std::array<toolkit::Label*, 3> URLText{};
    // The small "(Mail)" and "(URL)" captions of the three blocks, Label4 to Label9.
    toolkit::Label* Label4 = nullptr;
    toolkit::Label* Label5 = nullptr;
    toolkit::Label* Label6 = nullptr;
    toolkit::Label* Label7 = nullptr;
    toolkit::Label* Label8 = nullptr;
    toolkit::Label* Label9 = nullptr;

    bool _FileClose_Action();

private:
    void Layout();
    void CreateControls();
    void AddMenuHandlers();

    bool MailText_MouseDown(int index, int x, int y);
    bool URLText_MouseDown(int index, int x, int y);
};
