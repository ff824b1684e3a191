#include "DiffWin.h"

#include "AboutWindow.h"
#include "Application.h"
#include "BevelButton.h"
#include "Canvas.h"
#include "Controls.h"
#include "Geometry.h"
#include "HelpWindow.h"
#include "Label.h"
#include "LicenseWindow.h"
#include "MenuBar1.h"
#include "Rectangle.h"
#include "SeqDiff.h"
#include "Style.h"
#include "TextArea.h"
#include "WidthLayout.h"
#include "globals.h"

#include <string_view>

using toolkit::BevelButton;
using toolkit::Label;
using toolkit::Locks;
using toolkit::Rectangle;
using toolkit::rgb;
using toolkit::TextArea;

namespace {

struct ButtonStyle
{
    toolkit::FontStyle font;
    unsigned textColor = 0x000000;
    int menuStyle = 0;
    bool allowFocus = false;
};

BevelButton* button(const char* name, QWidget* parent, QRect r, const char* locks,
    const QString& caption, ButtonStyle style)
{
    auto* b = toolkit::make<BevelButton>(name, parent, r, locks);
    b->setCaption(caption);
    b->setFont(toolkit::systemFont(style.font));
    toolkit::setTextColor(b, rgb(style.textColor));
    b->setMenuStyle(style.menuStyle);
    b->setFocusPolicy(style.allowFocus ? Qt::TabFocus : Qt::NoFocus);
    return b;
}

TextArea* pane(const char* name, QWidget* parent, QRect r, const char* locks, const QString& text)
{
    auto* t = toolkit::make<TextArea>(name, parent, r, locks);
    t->setText(text);
    return t;
}

std::vector<std::u16string_view> views(const QStringList& lines)
{
    std::vector<std::u16string_view> v;
    v.reserve(lines.size());
    for (const QString& line : lines)
        v.emplace_back(
            reinterpret_cast<const char16_t*>(line.utf16()), static_cast<size_t>(line.size()));
    return v;
}

constexpr int kCanvasWidth = 54;

} // namespace

DiffWin::DiffWin()
    : toolkit::Window(QSize(672, 500))
{
    Layout();
    CreateControls();
    AddMenuHandlers();
}

void DiffWin::Layout()
{
    setTitle(globals::kMainTitleT());
    setMenuBarModel(&MenuBar1::instance());
    setSizeLimits(QSize(320, 150), QSize(32000, 32000));
}

void DiffWin::CreateControls()
{
    // In the order of creation, which is also the order from back to front.
    WinBack = toolkit::makeRectangle(
        "WinBack", surface(), {2, 2, 668, 496}, "LTRB", 0xE8E8E8, 0x000000);
    txtBack[1] = toolkit::makeRectangle(
        "txtBack1", WinBack, {363, 10, 291, 450}, "LT-B", 0x000000, 0x000000);
    txtBack[0] = toolkit::makeRectangle(
        "txtBack0", WinBack, {18, 10, 291, 450}, "LT-B", 0x000000, 0x000000);
    // The black frames show only while something is dragged over the window.
    txtBack[0]->setVisible(false);
    txtBack[1]->setVisible(false);
    txtBox[0] = pane("txtBox0", WinBack, {20, 59, 287, 398}, "LT-B", globals::kOriginalSampleT());
    txtBox[1]
        = pane("txtBox1", WinBack, {365, 59, 287, 398}, "LTRB", globals::kSubstituteSampleT());
    BtnsBack = toolkit::makeRectangle(
        "BtnsBack", WinBack, {272, 469, 128, 22}, "---B", 0xFFFFFF, 0x999999);
    const ButtonStyle nav{{10}};
    const toolkit::LabelLook centred{{}, 2};
    NextBtn = button("NextBtn", BtnsBack, {337, 471, 30, 18}, "---B", globals::kMoveNext(), nav);
    PrevBtn = button("PrevBtn", BtnsBack, {305, 471, 30, 18}, "---B", globals::kMovePrev(), nav);
    TopBtn = button("TopBtn", BtnsBack, {274, 471, 30, 18}, "---B", globals::kMoveTop(), nav);
    BtmBtn = button("BtmBtn", BtnsBack, {368, 471, 30, 18}, "---B", globals::kMoveBtm(), nav);
    toolkit::setTooltip(NextBtn, globals::kMoveNextHTag());
    toolkit::setTooltip(PrevBtn, globals::kMovePrevHTag());
    toolkit::setTooltip(TopBtn, globals::kMoveTopHTag());
    toolkit::setTooltip(BtmBtn, globals::kMoveBtmHTag());
    SameColSample = toolkit::makeRectangle(
        "SameColSample", WinBack, {20, 467, 70, 24}, "---B", 0x99CCFF, 0x000000);
    SameLabel = toolkit::makeLabel(
        "SameLabel", SameColSample, {30, 469, 50, 16}, "---B", globals::kSameT(), centred);
    DiffColSample = toolkit::makeRectangle(
        "DiffColSample", WinBack, {580, 467, 70, 24}, "--RB", 0xFFCC00, 0x000000);
    DiffLabel = toolkit::makeLabel(
        "DiffLabel", DiffColSample, {585, 470, 60, 16}, "--RB", globals::kDifferentT(), centred);

    titleBack[1] = toolkit::makeRectangle(
        "titleBack1", WinBack, {365, 12, 287, 45}, "----", 0xFFFFFF, 0x999999);
    titleBox[1] = button("titleBox1", titleBack[1], {366, 13, 285, 22}, "----",
        globals::kBoxRight(), {{0, true}, 0x000000, 1});
    TELabel[1] = toolkit::makeLabel("TELabel1", titleBack[1], {366, 37, 100, 16}, "LT--",
        QStringLiteral("Text encoding:"), centred);
    TEBMenu[1] = button("TEBMenu1", titleBack[1], {466, 35, 185, 22}, "LTR-",
        QStringLiteral("Untitled"), {{}, 0x000000, 1, true});

    SameFilm = button(
        "SameFilm", WinBack, {305, 467, 62, 26}, "---B", globals::kAllTheSameT(), {{}, 0x0000FF});
    SameFilm->setVisible(false);
    ClearButton = button("ClearButton", WinBack, {309, 13, 54, 22}, "LT--", globals::kClearAll(),
        {{11}, 0x000000, 0, true});

    diffCanvas = toolkit::make<toolkit::Canvas>(
        "diffCanvas", WinBack, {309, 59, kCanvasWidth, 398}, "LT-B");

    titleBack[0] = toolkit::makeRectangle(
        "titleBack0", WinBack, {20, 12, 287, 45}, "----", 0xFFFFFF, 0x999999);
    titleBox[0] = button("titleBox0", titleBack[0], {21, 13, 285, 22}, "----", globals::kBoxLeft(),
        {{0, true}, 0x000000, 1});
    TELabel[0] = toolkit::makeLabel("TELabel0", titleBack[0], {21, 37, 100, 16}, "LT--",
        QStringLiteral("Text encoding:"), centred);
    TEBMenu[0] = button("TEBMenu0", titleBack[0], {121, 35, 185, 22}, "LTR-",
        QStringLiteral("Untitled"), {{}, 0x000000, 1});

    DiffTotal = toolkit::makeLabel("DiffTotal", WinBack, {309, 35, 54, 22}, "LT--",
        QStringLiteral("0"), {{14, true}, 2, 0x803F02});

    // Tab order: the panes, the indicator, then the two controls that take the focus.
    setTabOrder(txtBox[0], txtBox[1]);
    setTabOrder(txtBox[1], diffCanvas);
    setTabOrder(diffCanvas, TEBMenu[1]);
    setTabOrder(TEBMenu[1], ClearButton);

    for (int i = 0; i < 2; ++i)
        txtBox_Open(i);
}

void DiffWin::txtBox_Open(int)
{
    // The first difference becomes current at the first update.
    onlyFirst = true;
}

void DiffWin::AddMenuHandlers()
{
    addMenuHandler(QStringLiteral("HelpLicense"), [this] { return _HelpLicense_Action(); });
    addMenuHandler(QStringLiteral("HelpAbout"), [this] { return _HelpAbout_Action(); });
    addMenuHandler(QStringLiteral("HelpHelp"), [this] { return _HelpHelp_Action(); });
    addMenuHandler(QStringLiteral("FileClose"), [this] { return _FileClose_Action(); });
}

bool DiffWin::_HelpLicense_Action()
{
    toolkit::implicitInstance<LicenseWindow>().Show();
    return true;
}

bool DiffWin::_HelpAbout_Action()
{
    toolkit::implicitInstance<AboutWindow>().ShowModal();
    return true;
}

bool DiffWin::_HelpHelp_Action()
{
    toolkit::implicitInstance<HelpWindow>().Show();
    return true;
}

bool DiffWin::_FileClose_Action()
{
    Close();
    return true;
}

void DiffWin::Event_Open()
{
    setHeight(Height());
    textClone[0] = txtBox[0]->Text();
    textClone[1] = txtBox[1]->Text();
    compare();
}

void DiffWin::Event_Close()
{
    toolkit::Application::Quit(0);
}

void DiffWin::Event_Resized()
{
    adjustSize();
}

void DiffWin::compare()
{
    const QStringList a = txtBox[0]->Lines();
    const QStringList b = txtBox[1]->Lines();
    diffs = SeqDiff::FindDifferences(views(a), views(b));
    initTops();
    scrolTop = {0, 0};
}

void DiffWin::initTops()
{
    topsA.clear();
    topsB.clear();
    for (const SeqDiff::Difference& d : diffs) {
        topsA.push_back(d.DeletedStart());
        topsB.push_back(d.AddedStart());
    }
}

void DiffWin::adjustSize()
{
    const WidthLayout l = WidthLayout::forWidth(Width(), diffCanvas->width());
    // Set in spite of the locks, which the resize has already applied.
    toolkit::setWidth(txtBox[0], l.paneWidth);
    toolkit::setWidth(txtBack[0], l.half);
    toolkit::setWidth(titleBack[0], l.paneWidth);
    toolkit::setWidth(titleBox[0], l.titleBoxWidth);
    toolkit::setLeft(diffCanvas, l.canvasLeft);
    toolkit::setLeft(ClearButton, l.canvasLeft);
    toolkit::setLeft(DiffTotal, l.canvasLeft);
    toolkit::setLeftAndWidth(txtBack[1], l.right, l.half);
    toolkit::setLeftAndWidth(txtBox[1], l.right + 2, l.paneWidth);
    toolkit::setLeftAndWidth(titleBack[1], l.right + 2, l.paneWidth);
    toolkit::setWidth(titleBox[1], l.titleBoxWidth);
    toolkit::setLeft(BtnsBack, l.btnsBackLeft);
    toolkit::setLeft(SameFilm, l.sameFilmLeft);
    compare();
}
