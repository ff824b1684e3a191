#pragma once

#include "Comparison.h"
#include "Difference.h"
#include "HitTest.h"
#include "InlineDiffs.h"
#include "KeptBytes.h"
#include "TextEncoding.h"
#include "Window.h"

#include <QList>
#include <QUrl>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QFileSystemWatcher;
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
    // The encoding label and pop-up of a title panel, for the window's width and the label's text.
    void layoutEncodingRow(int index);
    // Paints the indicator anew, answers a pending click and marks the current difference's
    // lines. True when at least one band was drawn.
    bool updateDiffCanvas();
    // Marks the lines in both panes behind their text; the user's selection stays as it is.
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

    // Asks for a file and reads it into pane `index`, as a drop of that file on the pane would.
    void openFile(int index);
    // Asks for the file to open in pane `index`: its path's bytes, empty when the user cancels.
    std::function<QByteArray(int index)> askForFile;
    // Reads both panes' files again under their encodings, as one step of each pane's undo. A
    // styled pane with edits is reloaded only with `discardEdits`: its edits can't be undone.
    void Reload(bool discardEdits = false);
    // Whether the pane's text has changed since its file was read.
    bool editedSinceRead(int index) const;
    // The file each pane shows, by its path's bytes; empty when none.
    std::array<QByteArray, 2> shownFile;
    std::array<QString, 2> shownName;
    // How the text a pane shows was read (its file, its encoding row or styled kind), kept with
    // the text when Undo takes it away, and shown again when Undo brings it back.
    std::array<QVariant, 2> shownState;
    QVariant paneStateNow(int index) const;
    void showPaneState(int index, const QVariant& state);

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
    // The folders of each title's rows, as URLs for the file manager; invalid where none fits.
    std::array<QList<QUrl>, 2> titleFolders;
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
    // Set while the launch's own files are read: their notices go to stderr too.
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
    // Why a plain file could not be opened, in the notice's words.
    static QString whyNotOpened(const toolkit::FolderItem& file, int error);
    // Watches the files shown, so that a change on disk is told of with Reload at hand; the pane
    // `readNow` has just read its own.
    void watchShownFiles(int readNow = -1);
    void shownFileChanged(const QString& path);
    void takeEncodingRow(int index, int row);
    QByteArray askFileName(int index);
    void offerCleanerRow(int index, int row);
    QFileSystemWatcher* watcher = nullptr;
    // What tells one version of a file from the next: a file replaced by renaming has another
    // inode, one written in place another time or size.
    struct FileStamp
    {
        bool exists = false;
        quint64 inode = 0;
        qint64 seconds = 0;
        qint64 nanoseconds = 0;
        qint64 size = 0;
        bool operator==(const FileStamp&) const = default;
    };
    static FileStamp stampOf(const QByteArray& path);
    std::array<FileStamp, 2> stamps{};
    std::array<quint64, 2> readRevision{};
    // Set while a pane's text is replaced as a step the user can undo.
    bool replaceUndoably = false;
    // Whether the read under way has told of something, so its notice stays.
    bool noticedThisRead = false;

    // Runs the pass and shows "All same!" when it drew no band.
    void updateFilm();
    void clickBand(const indicator::Band& band, int diffIndex);
    void goToDifference(int n);
    // The changed parts of the pairs of changed lines in view: those known are shown at once,
    // the others asked of the pool and shown when they come.
    using LinePair = std::array<int, 2>;
    std::vector<LinePair> pairsInView() const;
    void requestInline(std::vector<LinePair> wanted);
    void takeInline(
        InlineDiffs::Revisions compared, std::shared_ptr<std::vector<InlineDiffs::Found>> found);
    void showInline();
    void dropInline();
    void makeFirstCurrent();

    bool _HelpLicense_Action();
    bool _HelpAbout_Action();
    bool _HelpHelp_Action();
    bool _FileClose_Action();
    bool _FileOpenLeft_Action();
    bool _FileOpenRight_Action();
    bool _FileReload_Action();

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
    InlineDiffs* inlineDiffs = nullptr;
    // Changed parts by pair, for the texts of inlineRevisions.
    std::map<LinePair, inlinespans::Changed> inlineKnown;
    std::optional<Comparison::Revisions> inlineRevisions;
    std::vector<LinePair> inlineWanted;
    std::vector<LinePair> inlineAsked;
};
