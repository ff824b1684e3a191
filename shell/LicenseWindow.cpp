#include "LicenseWindow.h"

#include "Application.h"
#include "Controls.h"
#include "Geometry.h"
#include "Label.h"
#include "MenuBar1.h"
#include "Style.h"
#include "TextArea.h"
#include "globals.h"

#include <QFile>
#include <QPalette>

#include <algorithm>

using namespace toolkit;

namespace {

QString resourceText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).trimmed();
}

// The published LGPL, then the notice of ICU, whose converters read the files' encodings.
QString licenceTexts()
{
    return resourceText(QStringLiteral(":/licences/LGPL-2.1.txt"))
        + QStringLiteral("\n\nICU is used under this licence:\n\n")
        + resourceText(QStringLiteral(":/licences/ICU.txt"));
}

// Not localised, like the licences around it.
QString qtNote()
{
    return QStringLiteral("Twinly's windows, panes, menus and translations are built with Qt 6,\n"
                          "used under the GNU Lesser General Public License version 3.\n\n"
                          "Qt's source and licences:\n"
                          "  https://www.qt.io/licensing/");
}

} // namespace

LicenseWindow::LicenseWindow()
    : Window(QSize(550, 586))
{
    Layout();
    CreateControls();
    AddMenuHandlers();
}

void LicenseWindow::Layout()
{
    setTitle(globals::kLicenseM());
    setMenuBarModel(&MenuBar1::instance());
    setSizeLimits(QSize(400, 500), QSize(32000, 32000));
    setFrame(false, false);
    setHiddenOnClose(true);
}

void LicenseWindow::CreateControls()
{
    QWidget* const w = surface();
    // Only the first notice grows with the window; the two below keep to the bottom edge.
    TextArea1 = makeNotice("TextArea1", w, {20, 74, 510, 178}, "LTRB", licenceTexts());
    Label1 = makeLabel(
        "Label1", w, {20, 14, 510, 18}, "L-R-", globals::kLicenseTitle1(), {{}, 0, 0x000000, true});
    Label2 = makeLabel("Label2", w, {20, 266, 510, 18}, "L-RB", globals::kLicenseTitle2(),
        {{}, 0, 0x000000, true});
    TextArea2 = makeNotice("TextArea2", w, {20, 325, 510, 84}, "L-RB", qtNote());
    Label3 = makeLabel("Label3", w, {20, 425, 510, 18}, "L-RB", globals::kLicenseTitle3(),
        {{}, 0, 0x000000, true});
    TextArea3 = makeNotice("TextArea3", w, {20, 484, 510, 84}, "L-RB", globals::kTWLLicenseT());

    MailText[0] = makeLink(
        "MailText0", w, {80, 33, 240, 20}, "----", QString::fromUtf8(TWINLY_SUPPORT_MAIL), {}, 450);
    URLText[0] = makeLink(
        "URLText0", w, {80, 53, 311, 20}, "----", QString::fromUtf8(TWINLY_SUPPORT_URL), {}, 450);
    // The Qt Project's development list: where Qt's makers answer.
    MailText[1] = makeLink("MailText1", w, {80, 284, 265, 20}, "---B",
        QStringLiteral("Qt Project <development@qt-project.org>"), {}, 450);
    URLText[1] = makeLink(
        "URLText1", w, {80, 304, 230, 20}, "---B", QStringLiteral("https://www.qt.io/"), {}, 450);
    // We know no ICU mail address to vouch for: that row stays empty and hidden.
    MailText[2] = makeLink("MailText2", w, {80, 443, 250, 20}, "---B", QString(), {}, 450);
    URLText[2] = makeLink("URLText2", w, {80, 463, 301, 20}, "---B",
        QStringLiteral("https://icu.unicode.org/"), {}, 450);

    Label4 = makeLabel("Label4", w, {35, 33, 40, 20}, "----", QStringLiteral("(Mail)"));
    Label5 = makeLabel("Label5", w, {35, 53, 40, 20}, "----", QStringLiteral("(URL)"));
    Label6 = makeLabel("Label6", w, {35, 284, 40, 20}, "---B", QStringLiteral("(Mail)"));
    Label7 = makeLabel("Label7", w, {35, 304, 40, 20}, "---B", QStringLiteral("(URL)"));
    Label8 = makeLabel("Label8", w, {35, 443, 40, 20}, "---B", QStringLiteral("(Mail)"));
    Label9 = makeLabel("Label9", w, {35, 463, 40, 20}, "L--B", QStringLiteral("(URL)"));

    const std::array<Label*, 3> mailCaptions{Label4, Label6, Label8};
    for (int i = 0; i < 3; ++i) {
        if (MailText[i]->text().isEmpty()) {
            MailText[i]->hide();
            mailCaptions[i]->hide();
        }
        connect(MailText[i], &Label::MouseDown, this,
            [this, i](int x, int y) { MailText_MouseDown(i, x, y); });
        connect(URLText[i], &Label::MouseDown, this,
            [this, i](int x, int y) { URLText_MouseDown(i, x, y); });
    }

    // Only the notices take the focus; they follow one another down the window.
    setTabOrder(TextArea1, TextArea2);
    setTabOrder(TextArea2, TextArea3);
    TextArea1->setFocus();
}

void LicenseWindow::AddMenuHandlers()
{
    addMenuHandler(QStringLiteral("FileClose"), [this] { return _FileClose_Action(); });
}

bool LicenseWindow::_FileClose_Action()
{
    Close();
    return true;
}

bool LicenseWindow::MailText_MouseDown(int index, int, int)
{
    // The whole label, name included, as the address.
    Application::ShowURL(QStringLiteral("mailto:") + MailText[index]->text());
    return false;
}

bool LicenseWindow::URLText_MouseDown(int index, int, int)
{
    Application::ShowURL(URLText[index]->text());
    return false;
}
