#include "AboutWindow.h"

#include "App.h"
#include "Canvas.h"
#include "Controls.h"
#include "Geometry.h"
#include "Label.h"
#include "Rectangle.h"
#include "Style.h"
#include "globals.h"

#include <algorithm>

using namespace toolkit;

AboutWindow::AboutWindow()
    : Window(QSize(380, 400))
{
    Layout();
    CreateControls();
}

void AboutWindow::Layout()
{
    setTitle(globals::kAboutM());
    // Closing it ends it; the next use of the Help menu makes a new one.
    setAttribute(Qt::WA_DeleteOnClose);
    setFrame(true, false);
    setSizeLimits(QSize(64, 64), QSize(32000, 32000));
    setResizeable(false);
}

void AboutWindow::CreateControls()
{
    QWidget* const window = surface();
    const LabelLook small{{12}, 3};

    Canvas1 = new Canvas();
    Canvas1->setObjectName(QStringLiteral("Canvas1"));
    Canvas1->setBackdrop(Picture::fromResource(QStringLiteral("Twinly_Icon9_128.png")));
    place(Canvas1, window, QRect(126, 19, 128, 128), Locks());

    AppNameTxt = makeLabel(
        "AppNameTxt", window, {115, 162, 150, 30}, "----", globals::kAppName(), {{24}, 2});
    VerText = makeLabel(
        "VerText", window, {115, 193, 150, 20}, "----", QStringLiteral("Version ###"), {{}, 2});
    // Not localised: the notice reads the same in every language.
    Label1 = makeLabel("Label1", window, {74, 283, 232, 30}, "----",
        QStringLiteral("© 2026 the Twinly developers\n"
                       "Free software: GNU LGPL 2.1 or later"),
        {{10}, 2, 0x000000, true});

    Rectangle1
        = makeRectangle("Rectangle1", window, {10, 316, 360, 60}, "----", 0xFFFFFF, 0x000000);
    Label2 = makeLabel(
        "Label2", Rectangle1, {20, 325, 60, 20}, "----", QStringLiteral("Support:"), small);
    Label3 = makeLabel(
        "Label3", Rectangle1, {20, 353, 60, 20}, "----", QStringLiteral("E-Mail:"), small);
    setTooltip(
        Label3, QStringLiteral("ご質問だけでなく、ご意見ご感想などもどしどしお寄せください"));
    // A configured address longer than its field may use the box's width.
    URLText = makeLink("URLText", Rectangle1, {93, 325, 270, 20}, "----",
        QString::fromUtf8(TWINLY_SUPPORT_URL), {12}, 270);
    MailText = makeLink("MailText", Rectangle1, {93, 353, 138, 20}, "----",
        QString::fromUtf8(TWINLY_SUPPORT_MAIL), {12}, 270);
    setTooltip(URLText, globals::kURLHTag());
    setTooltip(MailText, globals::kMailHTag());
    // Without a support address there is nothing to offer on that row.
    if (MailText->text().isEmpty()) {
        Label3->hide();
        MailText->hide();
    }

    Rectangle2
        = makeRectangle("Rectangle2", window, {55, 215, 270, 58}, "----", 0x999999, 0x999999);
    Label4 = makeLabel("Label4", Rectangle2, {65, 235, 250, 20}, "----", globals::kSummaryT(),
        {{14}, 2, 0xFFFFFF, true});
    Label6 = makeLabel("Label6", window, {10, 384, 360, 16}, "----", globals::kHitAnyKeyT(),
        {{10, true, true}, 2});

    connect(Canvas1, &Canvas::KeyDown, this, &AboutWindow::Canvas1_KeyDown);
    connect(URLText, &Label::MouseDown, this, &AboutWindow::URLText_MouseDown);
    connect(MailText, &Label::MouseDown, this, &AboutWindow::MailText_MouseDown);
    // The icon is no link: a click on it closes like a click beside it.
    connect(Canvas1, &Canvas::MouseDown, this, &AboutWindow::Event_MouseDown);
}

void AboutWindow::Event_Open()
{
    VerText_Open();
}

void AboutWindow::showEvent(QShowEvent* e)
{
    Window::showEvent(e);
    // Keys must reach the icon, the one control that closes on any key.
    Canvas1->setFocus();
}

bool AboutWindow::Event_MouseDown(int, int)
{
    Hide();
    return false;
}

bool AboutWindow::Canvas1_KeyDown(const QString&)
{
    Hide();
    return false;
}

void AboutWindow::VerText_Open()
{
    VerText->setText(QStringLiteral("Version ") + App::instance().version.ShortVersion);
}

bool AboutWindow::URLText_MouseDown(int, int)
{
    Application::ShowURL(URLText->text());
    return false;
}

bool AboutWindow::MailText_MouseDown(int, int)
{
    Application::ShowURL(QStringLiteral("mailto:") + MailText->text());
    return false;
}
