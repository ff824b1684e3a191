#include "DiffWin.h"

#include "AboutWindow.h"
#include "Application.h"
#include "BevelButton.h"
#include "Canvas.h"
#include "Controls.h"
#include "DragItem.h"
#include "FileTypes1.h"
#include "Geometry.h"
#include "Graphics.h"
#include "HelpWindow.h"
#include "Label.h"
#include "LicenseWindow.h"
#include "MenuBar1.h"
#include "PaneLines.h"
#include "Rectangle.h"
#include "SeqDiff.h"
#include "Style.h"
#include "TextArea.h"
#include "Timer.h"
#include "WidthLayout.h"
#include "globals.h"

#include <QPalette>
#include <QTimer>

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

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

constexpr int kCanvasWidth = 54;
constexpr unsigned kSameColour = 0x99CCFF;
constexpr unsigned kDiffColour = 0xFFCC00;
constexpr unsigned kCurrentColour = 0xFFAA00;
// A comparison that ends sooner leaves the counter as it was: nothing flickers while typing.
constexpr int kWaitNoticeMs = 150;
const QString kWaitingTotal = QStringLiteral("…");

} // namespace

DiffWin::DiffWin()
    : toolkit::Window(QSize(672, 500))
{
    TE.fill(documents::TextEncoding::None);
    Layout();
    CreateControls();
    CreateTimers();
    ConnectHandlers();
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
    // The frames show only while files are dragged over the window, around the pane that would
    // take them, in the desktop's selection colour so that they catch the eye.
    for (toolkit::Rectangle* frame : txtBack) {
        const QColor mark = frame->palette().color(QPalette::Highlight);
        frame->FillColor = frame->TopLeftColor = frame->BottomRightColor = mark;
        frame->setVisible(false);
    }
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
        "SameColSample", WinBack, {20, 467, 70, 24}, "---B", kSameColour, 0x000000);
    SameLabel = toolkit::makeLabel(
        "SameLabel", SameColSample, {30, 469, 50, 16}, "---B", globals::kSameT(), centred);
    DiffColSample = toolkit::makeRectangle(
        "DiffColSample", WinBack, {580, 467, 70, 24}, "--RB", kDiffColour, 0x000000);
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
    for (int i = 0; i < 2; ++i) {
        titleBox[i]->setElided(true);
        titleBox[i]->setRowsMarked(false);
        TEBMenu[i]->setElided(true);
    }

    DiffTotal = toolkit::makeLabel("DiffTotal", WinBack, {309, 35, 54, 22}, "LT--",
        QStringLiteral("0"), {{14, true}, 2, 0x803F02});

    // Tab order: the panes, the indicator, then the two controls that take the focus.
    setTabOrder(txtBox[0], txtBox[1]);
    setTabOrder(txtBox[1], diffCanvas);
    setTabOrder(diffCanvas, TEBMenu[1]);
    setTabOrder(TEBMenu[1], ClearButton);

    WinBack_Open();
    for (int i = 0; i < 2; ++i) {
        txtBox_Open(i);
        TEBMenu_Open(i);
    }
    diffCanvas_Open();
}

void DiffWin::CreateTimers()
{
    const auto timer = [this](int period, int mode) {
        auto* t = new toolkit::Timer(this);
        t->setPeriod(period);
        t->setMode(mode);
        return t;
    };
    Timer1 = timer(100, 2);
    Timer2 = timer(500, 0);
    Timer3 = timer(5000, 0);
    waitNotice = new QTimer(this);
    waitNotice->setSingleShot(true);
    waitNotice->setInterval(kWaitNoticeMs);
}

void DiffWin::ConnectHandlers()
{
    for (int i = 0; i < 2; ++i) {
        connect(txtBox[i], &TextArea::TextChange, this, [this, i] { txtBox_TextChange(i); });
        txtBox[i]->setStateHooks([this, i] { return shownState[std::size_t(i)]; },
            [this, i](const QVariant& state) { showPaneState(i, state); });
        txtBox[i]->onMouseWheel = [this, i](int x, int y, int deltaX, int deltaY) {
            return txtBox_MouseWheel(i, x, y, deltaX, deltaY);
        };
    }
    connect(diffCanvas, &toolkit::Canvas::MouseDown, this,
        [this](int x, int y) { diffCanvas_MouseDown(x, y); });
    diffCanvas->onMouseWheel = [this](int x, int y, int deltaX, int deltaY) {
        return diffCanvas_MouseWheel(x, y, deltaX, deltaY);
    };
    connect(Timer1, &toolkit::Timer::Action, this, &DiffWin::Timer1_Action);
    connect(Timer2, &toolkit::Timer::Action, this, &DiffWin::Timer2_Action);
    connect(Timer3, &toolkit::Timer::Action, this, &DiffWin::Timer3_Action);
    comparison = new Comparison(this);
    connect(comparison, &Comparison::finished, this, &DiffWin::takeResult);
    connect(comparison, &Comparison::failed, this, [this] { waitNotice->stop(); });
    connect(waitNotice, &QTimer::timeout, this, &DiffWin::showWaiting);
    inlineDiffs = new InlineDiffs(this);
    connect(inlineDiffs, &InlineDiffs::finished, this, &DiffWin::takeInline);
    connect(NextBtn, &BevelButton::Action, this, &DiffWin::NextBtn_Action);
    connect(PrevBtn, &BevelButton::Action, this, &DiffWin::PrevBtn_Action);
    connect(TopBtn, &BevelButton::Action, this, &DiffWin::TopBtn_Action);
    connect(BtmBtn, &BevelButton::Action, this, &DiffWin::BtmBtn_Action);
    connect(ClearButton, &BevelButton::Action, this, &DiffWin::ClearButton_Action);
    for (int i = 0; i < 2; ++i) {
        connect(TEBMenu[i], &BevelButton::Action, this, [this, i] { TEBMenu_Action(i); });
        connect(titleBox[i], &BevelButton::Action, this, [this, i] { titleBox_Action(i); });
        toolkit::FileDrops& drops = txtBox[i]->fileDrops;
        drops.DragEnter = [this, i](toolkit::DragItem& obj) { txtBox_DragEnter(i, obj); };
        drops.DragExit = [this, i] { txtBox_DragExit(i); };
        drops.DropObject = [this, i](toolkit::DragItem& obj) { txtBox_DropObject(i, obj); };
    }
    WinBack->fileDrops.DragEnter = [this](toolkit::DragItem& obj) { WinBack_DragEnter(obj); };
    WinBack->fileDrops.DragExit = [this] { WinBack_DragExit(); };
    WinBack->fileDrops.DropObject = [this](toolkit::DragItem& obj) { WinBack_DropObject(obj); };
}

void DiffWin::txtBox_Open(int index)
{
    txtBox[index]->AcceptFileDrop(FileTypes1::text() + FileTypes1::Rtf() + FileTypes1::Rtfd());
    // The first difference becomes current at the first update.
    onlyFirst = true;
}

void DiffWin::diffCanvas_Open()
{
    clickedPoint = {0, 0};
}

// No comparison while the text is changing: the next comes after a pause.
void DiffWin::txtBox_TextChange(int)
{
    // Whatever it finds is out of date already.
    comparison->cancel();
    dropInline();
    noticeWaiting();
    Timer1->setMode(0);
    Timer2->setMode(1);
    dirty = true;
}

bool DiffWin::txtBox_MouseWheel(int, int, int, int, int)
{
    dirty = true;
    return false;
}

void DiffWin::Timer2_Action()
{
    Timer1->setMode(2);
}

void DiffWin::Timer3_Action()
{
    globals::fCount = 0;
}

// The one loop of the window: everything that changed since the last tick reaches the screen.
void DiffWin::Timer1_Action()
{
    bool redraw = false;
    const std::array<int, 2> shown{
        txtBox[0]->VerticalScrollPosition(), txtBox[1]->VerticalScrollPosition()};
    if (shown != scrolTop || dirty) {
        const bool moved = shown != scrolTop;
        scrolTop = shown;
        if (dirty) {
            dirty = false;
            compare();
        }
        // A comparison under way draws when it comes back; until then the picture is the same.
        redraw = moved || !comparison->running();
    }
    // The first difference of the texts on show, not of those compared before: with a
    // comparison under way, its result makes the choice when it comes in.
    if (onlyFirst && !comparison->running()) {
        onlyFirst = false;
        makeFirstCurrent();
        redraw = true;
    }
    if (redraw || curDiffNum != curDiffNum0) {
        updateFilm();
        curDiffNum0 = curDiffNum;
    }
}

void DiffWin::updateFilm()
{
    SameFilm->setVisible(!updateDiffCanvas() && mayClaimSame());
}

bool DiffWin::updateDiffCanvas()
{
    diffCanvas->setBackdrop(diffCanvas->newPicture());
    toolkit::Graphics g(diffCanvas->Backdrop());
    g.setForeColor(kSameColour);
    g.FillRect(0, 0, g.Width(), g.Height());
    const PaneLines left(*txtBox[0]);
    const PaneLines right(*txtBox[1]);
    bool drawn = false;
    int diffIndex = 0;
    const SeqDiff::Difference* current = nullptr;
    indicator::NumberSpacing numbers;
    // Drawn after every band, so that a later band doesn't cover an earlier number.
    std::vector<std::pair<QString, indicator::NumberPlace>> shownNumbers;
    for (const SeqDiff::Difference& d :
        bandsHidden ? std::span<const SeqDiff::Difference>() : std::span(diffs)) {
        const indicator::Band band = indicator::bandOf(d, left, right);
        // A click may make this one current.
        if (!band.inverted() && canvasClicked)
            clickBand(band, diffIndex);
        if (curLine != -1 && curLine == d.DeletedStart())
            current = &d;
        if (!band.inverted()) {
            const unsigned colour = current == &d ? kCurrentColour : kDiffColour;
            g.setForeColor(colour);
            g.FillPolygon(indicator::fillPolygon(band, int(g.Width())));
            g.setDrawingColor(0x000000);
            g.setFontName(QStringLiteral("System"));
            g.setFontSize(14);
            // Numbers, like bands, stay beside rows that show text; a band out of view, flat on
            // both sides, has none.
            const indicator::NumberPlace place
                = indicator::numberPlace(diffIndex, band, left.Height());
            if (place.shown && !(band.side[0].empty() && band.side[1].empty())) {
                const QString number = QString::number(diffIndex + 1);
                if (numbers.admit(indicator::numberBox(
                        place, g.TextWidth(number), g.TextAscent(), g.TextDescent())))
                    shownNumbers.push_back({number, place});
            }
            drawn = true;
        }
        ++diffIndex;
    }
    g.setDrawingColor(0x000000);
    for (const auto& [number, place] : shownNumbers)
        g.DrawText(number, place.x, place.y);
    canvasClicked = false;
    // Records of texts since edited would mark the wrong lines: the marks follow the edits
    // until the next result.
    if (bandsHidden || resultIsCurrent()) {
        if (current) {
            selectDiffLines(int(current->DeletedStart()), int(current->DeletedEnd()),
                int(current->AddedStart()), int(current->AddedEnd()), current->DeletedEnd() < 0,
                current->AddedEnd() < 0);
        } else {
            txtBox[0]->setHighlight(-1, 0);
            txtBox[1]->setHighlight(-1, 0);
        }
        requestInline(bandsHidden ? std::vector<LinePair>() : pairsInView());
    }
    DiffTotal->setText(totalText());
    return drawn;
}

// A side without lines gets a thin mark where they are missing. The focus stays where the
// user has put it.
void DiffWin::selectDiffLines(int aStart, int aEnd, int bStart, int bEnd, bool aEmpty, bool bEmpty)
{
    const std::array<int, 2> start{aStart, bStart};
    const std::array<int, 2> end{aEnd, bEnd};
    const std::array<bool, 2> empty{aEmpty, bEmpty};
    for (int i = 0; i < 2; ++i)
        txtBox[i]->setHighlight(start[i], empty[i] ? 0 : end[i] - start[i] + 1);
}

// Line k of a changed stretch on the left goes with line k of the stretch on the right.
std::vector<DiffWin::LinePair> DiffWin::pairsInView() const
{
    std::array<std::int64_t, 2> first{};
    std::array<std::int64_t, 2> last{};
    for (int i = 0; i < 2; ++i) {
        first[i] = txtBox[i]->VerticalScrollPosition();
        last[i] = first[i] + txtBox[i]->TextHeight() / std::max(txtBox[i]->LineHeight(), 1) + 1;
    }
    std::vector<LinePair> pairs;
    // The records are in text order: those above the view are passed over.
    auto d = std::partition_point(diffs.begin(), diffs.end(), [&](const SeqDiff::Difference& r) {
        return r.DeletedStart() + r.DeletedCount() <= first[0]
            && r.AddedStart() + r.AddedCount() <= first[1];
    });
    for (; d != diffs.end() && (d->DeletedStart() <= last[0] || d->AddedStart() <= last[1]); ++d) {
        const std::array<std::int64_t, 2> start{d->DeletedStart(), d->AddedStart()};
        const std::int64_t n = std::min(d->DeletedCount(), d->AddedCount());
        for (int i = 0; i < 2; ++i) {
            const std::int64_t to = std::min(last[i] - start[i], n - 1);
            for (std::int64_t k = std::max<std::int64_t>(first[i] - start[i], 0); k <= to; ++k)
                pairs.push_back({int(start[0] + k), int(start[1] + k)});
        }
    }
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    return pairs;
}

void DiffWin::requestInline(std::vector<LinePair> wanted)
{
    // A long walk through a long text would keep every pair it passed.
    constexpr std::size_t kMostKept = 20000;
    if (inlineRevisions != revisions() || inlineKnown.size() > kMostKept) {
        dropInline();
        inlineRevisions = revisions();
    }
    inlineWanted = std::move(wanted);
    std::vector<InlineDiffs::Pair> missing;
    std::vector<LinePair> asked;
    for (const LinePair& p : inlineWanted) {
        if (inlineKnown.count(p))
            continue;
        const std::array<QString, 2> text{txtBox[0]->LineText(p[0], inlinespans::kLongest + 1),
            txtBox[1]->LineText(p[1], inlinespans::kLongest + 1)};
        if (text[0].size() > inlinespans::kLongest || text[1].size() > inlinespans::kLongest) {
            // Too long to compare in time: marked whole, with no copy of the line.
            inlineKnown[p] = {std::vector<inlinespans::Columns>{{0, txtBox[0]->LineLength(p[0])}},
                std::vector<inlinespans::Columns>{{0, txtBox[1]->LineLength(p[1])}}};
            continue;
        }
        missing.push_back({p, text});
        asked.push_back(p);
    }
    const bool underWay = inlineDiffs->running() == revisions()
        && std::includes(inlineAsked.begin(), inlineAsked.end(), asked.begin(), asked.end());
    if (!missing.empty() && !underWay) {
        inlineAsked = std::move(asked);
        inlineDiffs->start(revisions(), std::move(missing));
    }
    showInline();
}

void DiffWin::takeInline(
    InlineDiffs::Revisions compared, std::shared_ptr<std::vector<InlineDiffs::Found>> found)
{
    if (compared != revisions() || inlineRevisions != revisions())
        return;
    for (InlineDiffs::Found& f : *found)
        inlineKnown[f.line] = std::move(f.changed);
    inlineAsked.clear();
    showInline();
}

void DiffWin::showInline()
{
    std::array<std::vector<toolkit::LineSpan>, 2> spans;
    for (const LinePair& p : inlineWanted) {
        const auto known = inlineKnown.find(p);
        if (known == inlineKnown.end())
            continue;
        for (int i = 0; i < 2; ++i) {
            for (const inlinespans::Columns& c : known->second[i])
                spans[i].push_back({p[i], c.from, c.to});
        }
    }
    for (int i = 0; i < 2; ++i) {
        std::sort(spans[i].begin(), spans[i].end(),
            [](const toolkit::LineSpan& x, const toolkit::LineSpan& y) {
                return std::pair(x.line, x.from) < std::pair(y.line, y.from);
            });
        txtBox[i]->setSpans(std::move(spans[i]));
    }
}

// The texts have changed: what was found no longer holds.
void DiffWin::dropInline()
{
    inlineDiffs->cancel();
    inlineKnown.clear();
    inlineAsked.clear();
    inlineRevisions.reset();
    for (TextArea* pane : txtBox)
        pane->setSpans({});
}

bool DiffWin::diffCanvas_MouseDown(int x, int y)
{
    canvasClicked = true;
    clickedPoint.X = x;
    clickedPoint.Y = y;
    updateDiffCanvas();
    return false;
}

// A band hit by the pending click becomes current and is brought into view in both panes.
void DiffWin::clickBand(const indicator::Band& band, int diffIndex)
{
    std::array<int, 2> firstShown{};
    std::array<int, 2> lastShown{};
    for (int i = 0; i < 2; ++i) {
        firstShown[i] = txtBox[i]->VerticalScrollPosition();
        lastShown[i] = firstShown[i] + txtBox[i]->height();
    }
    if (!indicator::isClickCandidate(band, firstShown, lastShown))
        return;
    const std::array<indicator::Point, 4> polygon
        = indicator::hitPolygon(band, diffCanvas->width());
    if (!indicator::pointInPolygon(clickedPoint, polygon))
        return;
    const int offset = indicator::centringOffset(diffCanvas->height());
    const std::array<int, 2> line{int(topsA[diffIndex]), int(topsB[diffIndex])};
    for (int i = 0; i < 2; ++i) {
        const int now = txtBox[i]->VerticalScrollPosition();
        const int to = indicator::scrollToShow(line[i], now, offset);
        if (to != now)
            txtBox[i]->setVerticalScrollPosition(to);
    }
    curDiffNum = diffIndex;
    curLine = line[0];
    dirty = true;
}

bool DiffWin::diffCanvas_MouseWheel(int, int, int, int deltaY)
{
    if (deltaY == 0)
        return true;
    for (TextArea* pane : txtBox)
        pane->setVerticalScrollPosition(pane->VerticalScrollPosition() + deltaY);
    dirty = true;
    return false;
}

void DiffWin::NextBtn_Action()
{
    goToDifference(curDiffNum + 1);
}

void DiffWin::PrevBtn_Action()
{
    goToDifference(std::max(curDiffNum - 1, 0));
}

// Both panes show difference n a little below their top. Beyond the list's end the last one
// serves; with no differences a press does nothing.
void DiffWin::goToDifference(int n)
{
    if (topsA.empty())
        return;
    n = std::min(n, int(topsA.size()) - 1);
    const int offset = indicator::centringOffset(txtBox[0]->height());
    txtBox[0]->setVerticalScrollPosition(int(topsA[n]) - offset);
    txtBox[1]->setVerticalScrollPosition(int(topsB[n]) - offset);
    curDiffNum = n;
    curLine = int(topsA[n]);
    dirty = true;
}

// The start of the texts, with the first difference current.
void DiffWin::TopBtn_Action()
{
    txtBox[0]->setVerticalScrollPosition(0);
    txtBox[1]->setVerticalScrollPosition(0);
    makeFirstCurrent();
    dirty = true;
}

// With no differences, the index still goes to 0 and the current line stays.
void DiffWin::makeFirstCurrent()
{
    curDiffNum = 0;
    if (!topsA.empty())
        curLine = int(topsA[0]);
}

// Each pane to its own last line, with the last difference current.
void DiffWin::BtmBtn_Action()
{
    txtBox[0]->setVerticalScrollPosition(txtBox[0]->LineCount() - 1);
    txtBox[1]->setVerticalScrollPosition(txtBox[1]->LineCount() - 1);
    curDiffNum = int(topsA.size()) - 1;
    if (curDiffNum >= 0)
        curLine = int(topsA[curDiffNum]);
    dirty = true;
}

void DiffWin::AddMenuHandlers()
{
    addMenuHandler(QStringLiteral("HelpLicense"), [this] { return _HelpLicense_Action(); });
    addMenuHandler(QStringLiteral("HelpAbout"), [this] { return _HelpAbout_Action(); });
    addMenuHandler(QStringLiteral("HelpHelp"), [this] { return _HelpHelp_Action(); });
    addMenuHandler(QStringLiteral("FileClose"), [this] { return _FileClose_Action(); });
    addMenuHandler(QStringLiteral("FileOpenLeft"), [this] { return _FileOpenLeft_Action(); });
    addMenuHandler(QStringLiteral("FileOpenRight"), [this] { return _FileOpenRight_Action(); });
    addMenuHandler(QStringLiteral("FileReload"), [this] { return _FileReload_Action(); });
    // The View menu does what the buttons do.
    const auto button = [this](void (DiffWin::*action)()) {
        return [this, action] {
            (this->*action)();
            return true;
        };
    };
    addMenuHandler(QStringLiteral("ViewTop"), button(&DiffWin::TopBtn_Action));
    addMenuHandler(QStringLiteral("ViewPrev"), button(&DiffWin::PrevBtn_Action));
    addMenuHandler(QStringLiteral("ViewNext"), button(&DiffWin::NextBtn_Action));
    addMenuHandler(QStringLiteral("ViewBottom"), button(&DiffWin::BtmBtn_Action));
    askForFile = [this](int index) { return askFileName(index); };
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
    textClone[0] = KeptBytes(txtBox[0]->Text().toStdString());
    textClone[1] = KeptBytes(txtBox[1]->Text().toStdString());
    shownState = {paneStateNow(0), paneStateNow(1)};
    // The last slot stays empty.
    std::copy_n(documents::TE.begin(), 8, TE.begin());
    compare();
    updateFilm();
}

void DiffWin::Event_Close()
{
    toolkit::Application::Quit(0);
}

void DiffWin::Event_Resized()
{
    adjustSize();
}

void DiffWin::Event_Deactivate()
{
    // Documents opened after the user has been elsewhere start a new batch.
    globals::fCount = 0;
}

Comparison::Revisions DiffWin::revisions() const
{
    return {txtBox[0]->contentRevision(), txtBox[1]->contentRevision()};
}

void DiffWin::compare()
{
    const Comparison::Revisions now = revisions();
    if (now == comparedRevisions) {
        // A read that failed, or gave the same text: the bands on record still hold.
        if (panesLoading == 0)
            bandsHidden = false;
        scrolTop = {0, 0};
    } else if (now != comparison->running()) {
        comparison->start(txtBox[0]->snapshot(), txtBox[1]->snapshot(), now);
        noticeWaiting();
    }
}

// Records for texts that have changed since are dropped. The rest is what a tick does after
// comparing: the first difference made current when that is due, the new bands drawn.
void DiffWin::takeResult(
    Comparison::Revisions compared, std::shared_ptr<Comparison::Records> records)
{
    if (compared != revisions())
        return;
    waitNotice->stop();
    waitingLong = false;
    bandsHidden = false;
    diffs = std::move(*records);
    initTops();
    comparedRevisions = compared;
    scrolTop = {0, 0};
    if (onlyFirst) {
        onlyFirst = false;
        makeFirstCurrent();
    }
    updateFilm();
    curDiffNum0 = curDiffNum;
    emit this->compared();
}

QString DiffWin::totalText() const
{
    if (waitingLong && !resultIsCurrent())
        return kWaitingTotal;
    if (!comparedRevisions || bandsHidden)
        return QString();
    return QString::number(diffs.size());
}

bool DiffWin::mayClaimSame() const
{
    return comparedRevisions && !bandsHidden && (resultIsCurrent() || !waitingLong);
}

void DiffWin::hideBands()
{
    bandsHidden = true;
    updateFilm();
}

void DiffWin::noticeWaiting()
{
    if (!waitNotice->isActive() && !waitingLong)
        waitNotice->start();
}

void DiffWin::showWaiting()
{
    if (resultIsCurrent())
        return;
    waitingLong = true;
    DiffTotal->setText(totalText());
    SameFilm->setVisible(SameFilm->isVisible() && mayClaimSame());
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
    layoutEncodingRow(0);
    layoutEncodingRow(1);
    compare();
    updateFilm();
}

void DiffWin::layoutEncodingRow(int index)
{
    const WidthLayout l = WidthLayout::forWidth(Width(), diffCanvas->width());
    const int row = l.encodingLabelWidth + l.encodingMenuWidth;
    int label = TEBMenu[index]->isHidden() ? std::min(WidthLayout::kEncodingLabelWidth, row)
                                           : l.encodingLabelWidth;
    // A label cut at both ends says nothing: it goes, and the pop-up takes its room.
    if (TELabel[index]->sizeHint().width() > label)
        label = 0;
    const int left = toolkit::windowRect(titleBack[index]).left() + 1;
    toolkit::setLeftAndWidth(TELabel[index], left, label);
    TELabel[index]->setVisible(label > 0);
    QString what = label > 0 ? QString() : TELabel[index]->text();
    if (what.endsWith(u':'))
        what.chop(1);
    toolkit::setTooltip(TEBMenu[index], what);
    const int menuLeft = label > 0 ? left + l.encodingLabelWidth : left;
    toolkit::setLeftAndWidth(TEBMenu[index], menuLeft, left + row - menuLeft);
}
