#pragma once

#include "Window.h"

namespace toolkit {
class Canvas;
class Label;
class Rectangle;
} // namespace toolkit

// Icon, name, version and where to get support. Opened modally; any key or a click outside the
// links hides it again.
class AboutWindow : public toolkit::Window
{
    Q_OBJECT
public:
    AboutWindow();

    toolkit::Canvas* Canvas1 = nullptr;
    toolkit::Label* AppNameTxt = nullptr;
    toolkit::Label* VerText = nullptr;
    toolkit::Label* Label1 = nullptr;
    toolkit::Rectangle* Rectangle1 = nullptr;
    toolkit::Label* Label2 = nullptr;
    toolkit::Label* Label3 = nullptr;
    toolkit::Label* URLText = nullptr;
    toolkit::Label* MailText = nullptr;
    toolkit::Rectangle* Rectangle2 = nullptr;
    toolkit::Label* Label4 = nullptr;
    toolkit::Label* Label6 = nullptr;

protected:
    void Event_Open() override;
    bool Event_MouseDown(int x, int y) override;
    void showEvent(QShowEvent* e) override;

private:
    void Layout();
    void CreateControls();

    bool Canvas1_KeyDown(const QString& key);
    void VerText_Open();
    bool URLText_MouseDown(int x, int y);
    bool MailText_MouseDown(int x, int y);
};
