#pragma once

#include "Difference.h"
#include "Window.h"

#include <array>
#include <cstdint>
#include <vector>

namespace toolkit {
class BevelButton;
class Canvas;
class Label;
class Rectangle;
class TextArea;
} // namespace toolkit

// The comparison window: two panes, the indicator between them, and all comparison state.
class DiffWin : public toolkit::Window
{
    Q_OBJECT
public:
    DiffWin();

    // Compares the panes as they stand now and keeps the result.
    void compare();
    void initTops();
    // Lays the panes and the indicator out for the window's width, then compares.
    void adjustSize();

    std::vector<SeqDiff::Difference> diffs;
    std::vector<std::int64_t> topsA, topsB;
    std::array<int, 2> scrolTop{0, 0};
    bool dirty = false;
    std::array<int, 2> encodingMode{0, 0};
    int curLine = -1;
    bool onlyFirst = false;
    int curDiffNum = -1;
    int curDiffNum0 = -1;
    std::array<QString, 2> textClone;

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

protected:
    void Event_Open() override;
    void Event_Close() override;
    void Event_Resized() override;

private:
    void Layout();
    void CreateControls();
    void AddMenuHandlers();
    void txtBox_Open(int index);

    bool _HelpLicense_Action();
    bool _HelpAbout_Action();
    bool _HelpHelp_Action();
    bool _FileClose_Action();
};
