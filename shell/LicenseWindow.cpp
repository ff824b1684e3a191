#include "LicenseWindow.h"

#include "Application.h"
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

TextArea* makeTextArea(
    const char* name, QWidget* parent, QRect inWindow, const char* locks, const QString& text)
{
    auto* area = new TextArea();
    area->setObjectName(QLatin1String(name));
    area->setPlainText(text);
    place(area, parent, inWindow, Locks::from(locks));
    area->setReadOnly(true);
    // Notices are prose: they wrap at the pane's width instead of scrolling sideways.
    area->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    QPalette p = area->palette();
    p.setColor(QPalette::Base, rgb(0xFFFFFF));
    area->setPalette(p);
    setTextColor(area, rgb(0x000000));
    return area;
}

Label* makeLabel(const char* name, QWidget* parent, QRect inWindow, const char* locks,
    const QString& text, bool multiline = false)
{
    auto* label = new Label();
    label->setObjectName(QLatin1String(name));
    place(label, parent, inWindow, Locks::from(locks));
    label->setText(text);
    label->setFont(systemFont());
    label->setMultiline(multiline);
    label->setTextAlignment(0);
    setTextColor(label, rgb(0x000000));
    return label;
}

Label* makeLink(
    const char* name, QWidget* parent, QRect inWindow, const char* locks, const QString& text)
{
    Label* link = makeLabel(name, parent, inWindow, locks, text);
    link->setFont(systemFont({0, false, false, true}));
    setTextColor(link, rgb(0x0000FF));
    // The pointing hand while hovering comes with being a link; the colour never changes.
    link->setLink(true);
    // A configured address may be longer than the designed field: it may reach the right margin.
    const int room = 530 - inWindow.left();
    if (link->sizeHint().width() > inWindow.width())
        setWidth(link, std::min(link->sizeHint().width(), room));
    return link;
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
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint
        | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
}

void LicenseWindow::CreateControls()
{
    QWidget* const w = surface();
    // Only the first notice grows with the window; the two below keep to the bottom edge.
    TextArea1 = makeTextArea("TextArea1", w, {20, 74, 510, 178}, "LTRB", licenceTexts());
    Label1 = makeLabel("Label1", w, {20, 14, 510, 18}, "L-R-", globals::kLicenseTitle1(), true);
    Label2 = makeLabel("Label2", w, {20, 266, 510, 18}, "L-RB", globals::kLicenseTitle2(), true);
    TextArea2 = makeTextArea("TextArea2", w, {20, 325, 510, 84}, "L-RB", qtNote());
    Label3 = makeLabel("Label3", w, {20, 425, 510, 18}, "L-RB", globals::kLicenseTitle3(), true);
    TextArea3 = makeTextArea("TextArea3", w, {20, 484, 510, 84}, "L-RB", globals::kTWLLicenseT());

    MailText[0] = makeLink(
        "MailText0", w, {80, 33, 240, 20}, "----", QString::fromUtf8(TWINLY_SUPPORT_MAIL));
    URLText[0]
        = makeLink("URLText0", w, {80, 53, 311, 20}, "----", QString::fromUtf8(TWINLY_SUPPORT_URL));
    // The Qt Project's development list: where Qt's makers answer.
    MailText[1] = makeLink("MailText1", w, {80, 284, 265, 20}, "---B",
        QStringLiteral("Qt Project <development@qt-project.org>"));
    URLText[1]
        = makeLink("URLText1", w, {80, 304, 230, 20}, "---B", QStringLiteral("https://www.qt.io/"));
    // We know no ICU mail address to vouch for: that row stays empty and hidden.
    MailText[2] = makeLink("MailText2", w, {80, 443, 250, 20}, "---B", QString());
    URLText[2] = makeLink(
        "URLText2", w, {80, 463, 301, 20}, "---B", QStringLiteral("https://icu.unicode.org/"));

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

bool LicenseWindow::Event_CancelClose(bool appQuitting)
{
    if (appQuitting)
        return false;
    // Kept, not closed: the next Show brings back this window as it was left.
    Hide();
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
