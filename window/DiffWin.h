#pragma once

#include "Comparison.h"
#include "Difference.h"
#include "HitTest.h"
#include "KeptBytes.h"
#include "TextEncoding.h"
#include "Window.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QTimer;

namespace toolkit {
class BevelButton;
class Canvas;
class DragItem;
class FolderItem;
class Label;
class NoticeBar;
class Rectangle;
class TextArea;
class Timer;
} // namespace toolkit

// The comparison window: two panes, the indicator between them, and all comparison state.
class DiffWin : public toolkit::Window
{
    Q_OBJECT
public:
    DiffWin();

    // Starts comparing the panes as they stand now; the result is kept, and drawn, when it comes
    // back and the panes still hold the texts it was made from. A pair of texts that has been
    // compared, or is being compared, is not compared again: the result would be the same.
    void compare();
    // Whether `diffs` belongs to the texts on show.
    bool resultIsCurrent() const { return comparedRevisions == revisions(); }
    void initTops();
    // Lays the panes and the indicator out for the window's width, then compares and redraws.
    void adjustSize();
    // Paints the indicator anew, answers a pending click and selects the current difference's
    // lines. True when at least one band was drawn.
    bool updateDiffCanvas();
    void selectDiffLines(int aStart, int aEnd, int bStart, int bEnd, bool aEmpty, bool bEmpty);

    // Reads a file into a pane and shows its name in the pane's title; a new comparison
    // follows. Files that can't be read leave the pane as it was.
    void setTextBox(
        toolkit::FolderItem file, int index, toolkit::TextArea* pane, toolkit::BevelButton* title);
    // Lays the pane's chosen encoding on the bytes last read and shows the result.
    void setTxEnc(int index);
    void initTEMenu(int index);
    void MakeTitlePopup(toolkit::BevelButton* button, const toolkit::FolderItem& file);
    void ClearBoxes();
    // The files of a drop: the first to pane `index`, the second to the other pane.
    void respondDrop(toolkit::DragItem& obj, int index);
    // Tells of a file that was not read, or not whole, in the notice bar (and on stderr while
    // echoNotices is set).
    void notice(const QString& line);

    std::vector<SeqDiff::Difference> diffs;
    std::vector<std::int64_t> topsA, topsB;
    std::array<int, 2> scrolTop{0, 0};
    bool dirty = false;
    std::array<int, 2> encodingMode{0, 0};
    int curLine = -1;
    bool onlyFirst = false;
    int curDiffNum = -1;
    int curDiffNum0 = -1;
    indicator::Point clickedPoint;
    bool canvasClicked = false;
    // The bytes last read into each pane, which its encoding turns into the pane's text.
    std::array<KeptBytes, 2> textClone;
    // The encodings; a pane's popup row is an index into this table.
    std::array<documents::TextEncoding, 9> TE{};

    toolkit::Rectangle* WinBack = nullptr;
    std::array<toolkit::Rectangle*, 2> txtBack{};
    std::array<toolkit::TextArea*, 2> txtBox{};
    toolkit::Rectangle* BtnsBack = nullptr;
    toolkit::BevelButton* NextBtn = nullptr;
    toolkit::BevelButton* PrevBtn = nullptr;
    toolkit::BevelButton* TopBtn = nullptr;
    toolkit::BevelButton* BtmBtn = nullptr;
    toolkit::Rectangle* SameColSample = nullptr;
    toolkit::Label* SameLabel = nullptr;
    toolkit::Rectangle* DiffColSample = nullptr;
    toolkit::Label* DiffLabel = nullptr;
    std::array<toolkit::Rectangle*, 2> titleBack{};
    std::array<toolkit::BevelButton*, 2> titleBox{};
    std::array<toolkit::Label*, 2> TELabel{};
    std::array<toolkit::BevelButton*, 2> TEBMenu{};
    toolkit::BevelButton* SameFilm = nullptr;
    toolkit::BevelButton* ClearButton = nullptr;
    toolkit::Canvas* diffCanvas = nullptr;
    toolkit::Label* DiffTotal = nullptr;
    toolkit::Timer* Timer1 = nullptr;
    toolkit::Timer* Timer2 = nullptr;
    toolkit::Timer* Timer3 = nullptr;
    toolkit::NoticeBar* noticeBar = nullptr;
    // Set while documents opened with the program are read: a file refused or unreadable is
    // told of then, though a dropped one is not.
    bool noticeRefusals = false;
    bool echoNotices = false;

signals:
    // A comparison's result has been taken and drawn.
    void compared();

protected:
    void Event_Open() override;
    void Event_Close() override;
    void Event_Resized() override;
    void Event_Deactivate() override;

private:
    void Layout();
    void CreateControls();
    void AddMenuHandlers();
    void CreateTimers();
    void ConnectHandlers();
    void txtBox_Open(int index);
    void txtBox_TextChange(int index);
    bool txtBox_MouseWheel(int index, int x, int y, int deltaX, int deltaY);
    void diffCanvas_Open();
    bool diffCanvas_MouseDown(int x, int y);
    bool diffCanvas_MouseWheel(int x, int y, int deltaX, int deltaY);
    void Timer1_Action();
    void Timer2_Action();
    void Timer3_Action();
    void NextBtn_Action();
    void PrevBtn_Action();
    void TopBtn_Action();
    void BtmBtn_Action();
    void TEBMenu_Open(int index);
    void TEBMenu_Action(int index);
    void titleBox_Action(int index);
    void ClearButton_Action();
    void WinBack_Open();
    bool WinBack_DragEnter(toolkit::DragItem& obj);
    void WinBack_DragExit();
    void WinBack_DropObject(toolkit::DragItem& obj);
    bool txtBox_DragEnter(int index, toolkit::DragItem& obj);
    void txtBox_DragExit(int index);
    void txtBox_DropObject(int index, toolkit::DragItem& obj);

    void readStyled(
        const toolkit::FolderItem& file, int index, toolkit::TextArea* pane, const QString& ext);
    void readPlain(const toolkit::FolderItem& file, int index, toolkit::TextArea* pane,
        toolkit::BevelButton* title);
    void refused(const toolkit::FolderItem& file, const QString& reason);
    // Whether the read under way has told of something, so its notice stays.
    bool noticedThisRead = false;

    // Runs the pass and shows "All same!" when it drew no band.
    void updateFilm();
    void clickBand(const indicator::Band& band, int diffIndex);
    void goToDifference(int n);
    void makeFirstCurrent();

    bool _HelpLicense_Action();
    bool _HelpAbout_Action();
    bool _HelpHelp_Action();
    bool _FileClose_Action();

    Comparison::Revisions revisions() const;
    void takeResult(Comparison::Revisions revisions, std::shared_ptr<Comparison::Records> records);
    // What the counter and "All same!" may claim while a comparison is under way.
    QString totalText() const;
    bool mayClaimSame() const;
    // From now on, or soon, the counter and "All same!" wait for the next result.
    void noticeWaiting();
    void showWaiting();

    // The panes' revisions at the last comparison taken.
    std::optional<Comparison::Revisions> comparedRevisions;
    Comparison* comparison = nullptr;
    // Shows, once a comparison has taken long enough to notice, that the counter is not up to date.
    QTimer* waitNotice = nullptr;
    bool waitingLong = false;
    // A pane is taking a new text: the bands of the old ones would point at the wrong lines.
    void hideBands();
    bool bandsHidden = false;
    int panesLoading = 0;
};
