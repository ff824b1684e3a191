// The window's documents: reading files into the panes, their encodings, titles and drops.

#include "Application.h"
#include "BevelButton.h"
#include "DiffWin.h"
#include "DragItem.h"
#include "EncodingHint.h"
#include "FileTypes1.h"
#include "FolderItem.h"
#include "KeptBytes.h"
#include "Keyboard.h"
#include "Label.h"
#include "NoticeBar.h"
#include "PlainFile.h"
#include "PlainIntake.h"
#include "Rectangle.h"
#include "RtfReader.h"
#include "Style.h"
#include "TextArea.h"
#include "Timer.h"
#include "Utf8.h"
#include "globals.h"

#include <QFile>
#include <QScopeGuard>
#include <QTextCursor>
#include <QTextDocument>
#include <QTimer>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <functional>
#include <limits>
#include <new>
#include <span>
#include <stop_token>
#include <string_view>
#include <thread>

using toolkit::BevelButton;
using toolkit::DragItem;
using toolkit::FolderItem;
using toolkit::TextArea;

namespace {

// Kinds that are never read, by the upper-cased last field of a name.
constexpr std::array<std::u16string_view, 8> kExcludedKinds{
    u"PDF", u"PNG", u"JPEG", u"JPG", u"MOV", u"MP4", u"M4V", u"ZIP"};
// A pane gives feedback for movies and archives, though it takes nothing from them.
constexpr std::array<std::u16string_view, 6> kPaneQuietKinds{
    u"PDF", u"PNG", u"JPEG", u"JPG", u"MP4", u"M4V"};

template <size_t N> bool listed(const std::array<std::u16string_view, N>& kinds, const QString& ext)
{
    const std::u16string_view e(reinterpret_cast<const char16_t*>(ext.utf16()), size_t(ext.size()));
    return std::find(kinds.begin(), kinds.end(), e) != kinds.end();
}

// The last dot-separated field of a name in upper case; a name without a dot is its own field.
QString kindOf(const QString& name)
{
    return name.section(QLatin1Char('.'), -1).toUpper();
}

bool isStyledKind(const QString& ext)
{
    return ext == QLatin1String("RTF") || ext == QLatin1String("RTFD");
}

// Whether a drag of `item` over a target that is quiet for `kinds` gets its feedback.
template <size_t N>
bool draws(const DragItem& item, const std::array<std::u16string_view, N>& kinds)
{
    const FolderItem file = item.FolderItem();
    if (file.isNull() || !file.Exists())
        return false;
    const QString ext = kindOf(file.Name());
    if (listed(kinds, ext))
        return false;
    return isStyledKind(ext) || !file.IsFolder();
}

// A tap of Esc before a read began is not meant for it; a key held down still counts.
void forgetEarlierEsc()
{
    toolkit::Keyboard::AsyncKeyDown(toolkit::Keyboard::kEscape);
}

bool escOrQuit()
{
    return toolkit::Keyboard::AsyncKeyDown(toolkit::Keyboard::kEscape)
        || toolkit::Application::quitting();
}

// Between two pieces of a long read on the window's own thread: events run, and Esc or
// quitting ends the read.
bool keepReading()
{
    QCoreApplication::processEvents();
    return !escOrQuit();
}

// Runs `work` on a thread of its own while the window goes on answering events, and returns
// when it has ended. Esc or quitting asks it to stop; `show` runs between events, to show how
// far it has come. Esc held down before the start still lets the work's first piece in.
void workAside(
    const std::function<void(std::stop_token)>& work, const std::function<void()>& show = [] {})
{
    std::stop_source stop;
    if (escOrQuit())
        stop.request_stop();
    std::atomic<bool> done = false;
    std::exception_ptr failure;
    std::jthread worker([&] {
        try {
            work(stop.get_token());
        } catch (...) {
            failure = std::current_exception();
        }
        done = true;
        // Wakes the loop below.
        QMetaObject::invokeMethod(
            qApp, [] {}, Qt::QueuedConnection);
    });
    // Wakes it now and then to show the progress.
    QTimer pulse;
    pulse.start(50);
    while (!done) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (escOrQuit())
            stop.request_stop();
        show();
    }
    // As if the work had been done here.
    if (failure)
        std::rethrow_exception(failure);
}

const QString kProgressCaption = QStringLiteral("読込み中（Escキーで中断可）");
const QString kTextEncodingLabel = QStringLiteral("Text encoding:");

} // namespace

void DiffWin::setTextBox(FolderItem file, int index, TextArea* pane, BevelButton* title)
{
    const FolderItem given = file;
    if (file.Alias())
        file = file.resolved();
    if (file.isNull() || !file.Exists())
        return refused(given, whyNotOpened(given, ENOENT));
    const QString ext = kindOf(file.Name());
    if (listed(kExcludedKinds, ext))
        return refused(given, globals::kNoticeRefusedKind());
    noticedThisRead = false;
    if (isStyledKind(ext))
        readStyled(file, index, pane, ext);
    else if (file.IsFolder())
        return refused(given, globals::kNoticeFolder());
    else
        readPlain(file, index, pane, title);
    // A good read takes the last one's notice away.
    if (noticeBar && !noticedThisRead)
        noticeBar->dismiss();
    MakeTitlePopup(title, file);
    shownFile[index] = file.NativeBytes();
    shownState[std::size_t(index)] = paneStateNow(index);
    readRevision[index] = txtBox[index]->contentRevision();
    watchShownFiles(index);
    txtBox[index]->setVerticalScrollPosition(0);
    dirty = true;
    Timer1->setMode(0);
    Timer2->setMode(1);
}

void DiffWin::readStyled(const FolderItem& file, int index, TextArea* pane, const QString& ext)
{
    ++panesLoading;
    const auto loaded = qScopeGuard([this] { --panesLoading; });
    hideBands();
    pane->setText(QString());
    QTextDocument* doc = pane->StyledText();
    titleBox[index]->setCaption(kProgressCaption);
    titleBox[index]->repaint();
    forgetEarlierEsc();
    // Esc keeps what was read, as for a plain file.
    const documents::RichTextRead read = documents::readRichTextFile(
        file.NativeBytes(), *doc, [](double) { return keepReading(); });
    // A file read is not an edit to undo.
    doc->clearUndoRedoStacks();
    // A package that reaches outside itself is told of however it came in.
    if (read.leftPackage && !read.read)
        notice(globals::kNoticeNotRead().arg(file.DisplayName(), globals::kNoticeOutsidePackage()));
    else if (read.leftPackage)
        notice(globals::kNoticeLinkRefused().arg(file.DisplayName()));
    else if (!read.read)
        refused(file, globals::kNoticeUnreadable());
    if (read.picturesLeftOut)
        notice(globals::kNoticePictures().arg(file.DisplayName()));
    // Two documents are never one and the same.
    SameFilm->setVisible(false);
    TELabel[index]->setText(QStringLiteral("RichText(") + ext + QLatin1Char(')'));
    TEBMenu[index]->setVisible(false);
    layoutEncodingRow(index);
}

void DiffWin::readPlain(const FolderItem& file, int index, TextArea* pane, BevelButton* title)
{
    documents::PlainFile stream(file.NativeBytes().toStdString());
    if (!stream.isOpen())
        return refused(file, whyNotOpened(file, stream.errorNumber()));
    // A pane counts its characters in an int.
    if (stream.sizeAtOpen() > std::uint64_t(std::numeric_limits<int>::max()))
        return refused(file, globals::kNoticeTooLarge());
    // A pane that last held styled text reads the next file as UTF-8.
    const int mode = TEBMenu[index]->isHidden() ? 0 : encodingMode[index];
    // The intake makes room for the whole file at once.
    std::optional<PlainIntake> made;
    try {
        made.emplace(TE[std::size_t(mode)] == documents::TextEncoding::UTF8, stream.sizeAtOpen());
    } catch (const std::bad_alloc&) {
        return refused(file, globals::kNoticeTooLarge());
    }
    PlainIntake& intake = *made;
    toolkit::PreparedText decoded;
    title->setCaption(kProgressCaption);
    title->repaint();
    ++panesLoading;
    const auto loaded = qScopeGuard([this] { --panesLoading; });
    hideBands();
    forgetEarlierEsc();
    std::atomic<std::uint64_t> taken = 0;
    int shownPercent = -1;
    const auto showProgress = [&] {
        if (stream.sizeAtOpen() == 0)
            return;
        const int percent = int(taken * 100 / stream.sizeAtOpen());
        if (percent != shownPercent)
            title->setCaption(kProgressCaption + QStringLiteral(" %1%").arg(percent));
        shownPercent = percent;
    };
    // Off the window's thread; the chunk bounds the time until Esc is noticed.
    workAside(
        [&](std::stop_token stop) {
            std::array<char, 1024> chunk;
            while (!stream.atEnd()) {
                intake.take({chunk.data(), stream.read(chunk.data(), chunk.size())});
                taken = intake.taken();
                if (stop.stop_requested())
                    break;
            }
            intake.finish();
            if (intake.decoded())
                decoded = toolkit::PreparedText(intake.lines());
        },
        showProgress);
    // Nor is the text of a read that quitting stopped worth showing.
    if (toolkit::Application::quitting())
        return;
    // A file that fails part way is left unread, as one that can't be opened.
    if (!stream.error().empty())
        return refused(file, globals::kNoticeUnreadable());
    if (stream.shrank())
        notice(globals::kNoticeShrank().arg(file.DisplayName()));
    pane->setTextFont(QStringLiteral("System"));
    pane->setTextSize(0);
    shownName[index] = file.DisplayName();
    textClone[index]
        = intake.decoded() ? KeptBytes(decoded.store()) : KeptBytes(std::move(intake.bytes()));
    if (TEBMenu[index]->isHidden())
        initTEMenu(index);
    setTxEnc(index);
}

void DiffWin::refused(const FolderItem& file, const QString& reason)
{
    notice(globals::kNoticeNotRead().arg(file.DisplayName(), reason));
}

QString DiffWin::whyNotOpened(const FolderItem& file, int error)
{
    switch (documents::pathKind(file.NativeBytes().toStdString())) {
    case documents::PathKind::Missing:
        return error == EACCES ? globals::kNoticePermission() : globals::kNoticeMissing();
    case documents::PathKind::File:
        return error == EACCES || error == EPERM ? globals::kNoticePermission()
                                                 : globals::kNoticeUnreadable();
    case documents::PathKind::Folder:
        return globals::kNoticeFolder();
    case documents::PathKind::Fifo:
    case documents::PathKind::Socket:
    case documents::PathKind::Device:
        return globals::kNoticeSpecial();
    case documents::PathKind::Other:
        break;
    }
    return globals::kNoticeNotAFile();
}

void DiffWin::notice(const QString& line)
{
    noticedThisRead = true;
    if (!noticeBar) {
        noticeBar = new toolkit::NoticeBar(surface(), globals::kNoticeClose());
        // Over the foot of the panes: the buttons and the legend below them stay in reach.
        noticeBar->setBottomMargin(surface()->height() - toolkit::windowRect(txtBack[0]).bottom());
    }
    noticeBar->addNotice(line);
    if (echoNotices)
        std::fprintf(stderr, "twinly: %s\n", qPrintable(line));
}

void DiffWin::setTxEnc(int index)
{
    const documents::TextEncoding encoding = TE[size_t(encodingMode[index])];
    toolkit::PreparedText prepared;
    int cleaner = -1;
    // Off the window's thread, which then only hands the lines to the pane: a large text takes
    // seconds to decode and cut into lines.
    bool wellFormedUtf8 = false;
    workAside([&](std::stop_token) {
        const KeptBytes& kept = textClone[index];
        const bool utf8 = encoding == documents::TextEncoding::UTF8;
        if (kept.utf8Text() && utf8) {
            prepared = toolkit::PreparedText(*kept.utf8Text());
            return;
        }
        kept.withBytes([&](std::string_view bytes) {
            // Taken as a file read under UTF-8 is: one byte a character where it can be, and
            // the bytes then given back by the text.
            wellFormedUtf8 = utf8 && validUtf8Prefix(bytes) == bytes.size();
            if (wellFormedUtf8) {
                PlainIntake intake(true, bytes.size());
                constexpr std::size_t kPiece = 1 << 16;
                for (std::size_t at = 0; at < bytes.size(); at += kPiece)
                    intake.take(bytes.substr(at, kPiece));
                intake.finish();
                prepared = toolkit::PreparedText(intake.lines());
                return;
            }
            QString text(
                qsizetype(documents::maxDecodedLength(encoding, bytes.size())), Qt::Uninitialized);
            text.resize(qsizetype(
                documents::decode(encoding, bytes, reinterpret_cast<char16_t*>(text.data()))));
            if (text.contains(QChar::ReplacementCharacter))
                cleaner = documents::cleanerRow(bytes, std::span(TE).first(5), encodingMode[index]);
            prepared = TextArea::prepare(std::move(text));
        });
    });
    if (wellFormedUtf8)
        textClone[index] = KeptBytes(prepared.store());
    if (replaceUndoably)
        txtBox[index]->replaceText(prepared);
    else
        txtBox[index]->setText(prepared);
    // An offer made for the text this one replaces no longer holds.
    if (noticeBar)
        noticeBar->withdraw(QStringLiteral("encoding%1").arg(index));
    if (cleaner >= 0)
        offerCleanerRow(index, cleaner);
    txtBox[index]->setTextFont(QStringLiteral("System"));
    SameFilm->setVisible(txtBox[0]->hasSameText(*txtBox[1]));
}

void DiffWin::initTEMenu(int index)
{
    TELabel[index]->setText(kTextEncodingLabel);
    TEBMenu[index]->setVisible(true);
    TEBMenu[index]->setMenuValue(0);
    TEBMenu[index]->setCaption(TEBMenu[index]->List(0));
    encodingMode[index] = 0;
    layoutEncodingRow(index);
}

void DiffWin::TEBMenu_Open(int index)
{
    // The rows are the same in both languages, in the same order: only the words differ.
    const QString list = globals::isJapanese
        ? QStringLiteral("UTF-8,日本語 ShiftJIS,日本語 MacOS,日本語 EUC,")
            + QStringLiteral("日本語 ShiftJIS-X0212")
        : QStringLiteral("UTF-8,ShiftJIS,Japanese MacOS,Japanese EUC,")
            + QStringLiteral("ShiftJIS-X0212");
    BevelButton* me = TEBMenu[index];
    for (const QString& row : list.split(QLatin1Char(',')))
        me->AddRow(row);
    me->setMenuValue(0);
    me->setCaption(me->List(0));
}

void DiffWin::TEBMenu_Action(int index)
{
    BevelButton* me = TEBMenu[index];
    me->setCaption(me->List(me->MenuValue()));
    encodingMode[index] = me->MenuValue();
    replaceUndoably = true;
    setTxEnc(index);
    replaceUndoably = false;
    shownState[std::size_t(index)] = paneStateNow(index);
}

QVariant DiffWin::paneStateNow(int index) const
{
    return QVariantList{
        TEBMenu[index]->isHidden(), TELabel[index]->text(), encodingMode[index], shownFile[index]};
}

void DiffWin::showPaneState(int index, const QVariant& state)
{
    const QVariantList s = state.toList();
    if (s.size() != 4)
        return;
    TELabel[index]->setText(s[1].toString());
    TEBMenu[index]->setVisible(!s[0].toBool());
    encodingMode[index] = s[2].toInt();
    TEBMenu[index]->setMenuValue(encodingMode[index]);
    TEBMenu[index]->setCaption(TEBMenu[index]->List(encodingMode[index]));
    layoutEncodingRow(index);
    shownFile[index] = s[3].toByteArray();
    if (shownFile[index].isEmpty()) {
        shownName[index].clear();
        titleBox[index]->DeleteAllRows();
        toolkit::setTooltip(titleBox[index], QString());
        titleFolders[index].clear();
        titleBox[index]->setCaption(index == 0 ? globals::kBoxLeft() : globals::kBoxRight());
    } else {
        const FolderItem file(shownFile[index]);
        shownName[index] = file.DisplayName();
        MakeTitlePopup(titleBox[index], file);
    }
    shownState[std::size_t(index)] = state;
    watchShownFiles(index);
}

void DiffWin::MakeTitlePopup(BevelButton* button, const FolderItem& file)
{
    button->DeleteAllRows();
    button->setCaption(file.DisplayName());
    toolkit::setTooltip(button, FolderItem::escaped(file.NativeBytes()));
    QList<QUrl>& folders = titleFolders[button == titleBox[1] ? 1 : 0];
    folders.clear();
    for (FolderItem item = file; !item.isNull(); item = item.Parent()) {
        button->AddRow(item.DisplayName());
        folders.append(item.URL());
    }
    button->RemoveRow(0);
    if (!folders.isEmpty())
        folders.removeFirst();
    for (int row = 0; row < folders.size(); ++row)
        button->setRowEnabled(row, folders.at(row).isValid());
    button->setMenuValue(-1);
}

// A row opens its folder in the desktop's file manager.
void DiffWin::titleBox_Action(int index)
{
    const int row = titleBox[index]->MenuValue();
    titleBox[index]->setMenuValue(-1);
    if (row >= 0 && row < titleFolders[index].size() && titleFolders[index].at(row).isValid())
        toolkit::Application::ShowURL(titleFolders[index].at(row));
}

void DiffWin::ClearButton_Action()
{
    ClearBoxes();
}

void DiffWin::ClearBoxes()
{
    for (int index = 0; index < 2; ++index) {
        // Undo brings the text back, and its title and encoding row.
        txtBox[index]->replaceText(TextArea::prepare(QString()));
        initTEMenu(index);
        shownFile[index].clear();
        showPaneState(index, paneStateNow(index));
    }
}

void DiffWin::WinBack_Open()
{
    WinBack->AcceptFileDrop(FileTypes1::text() + FileTypes1::Rtf() + FileTypes1::Rtfd());
}

bool DiffWin::WinBack_DragEnter(DragItem& obj)
{
    if (!draws(obj, kExcludedKinds))
        return false;
    txtBack[0]->setVisible(true);
    if (obj.NextItem())
        txtBack[1]->setVisible(true);
    toolkit::setTooltip(WinBack, globals::kDropHTag());
    toolkit::showTooltipNow(WinBack);
    return false;
}

void DiffWin::WinBack_DragExit()
{
    txtBack[0]->setVisible(false);
    txtBack[1]->setVisible(false);
    toolkit::setTooltip(WinBack, QString());
    toolkit::hideTooltip();
}

void DiffWin::WinBack_DropObject(DragItem& obj)
{
    // The tip is for choosing where to drop; it goes before the read.
    toolkit::hideTooltip();
    respondDrop(obj, 0);
    txtBack[0]->setVisible(false);
    txtBack[1]->setVisible(false);
    toolkit::setTooltip(WinBack, QString());
}

bool DiffWin::txtBox_DragEnter(int index, DragItem& obj)
{
    if (!draws(obj, kPaneQuietKinds))
        return false;
    txtBack[index]->setVisible(true);
    toolkit::setTooltip(txtBox[index], globals::kDropHTag());
    toolkit::showTooltipNow(txtBox[index]);
    return false;
}

void DiffWin::txtBox_DragExit(int index)
{
    txtBack[index]->setVisible(false);
    toolkit::setTooltip(txtBox[index], QString());
    toolkit::hideTooltip();
}

void DiffWin::txtBox_DropObject(int index, DragItem& obj)
{
    toolkit::hideTooltip();
    txtBack[index]->setVisible(false);
    respondDrop(obj, index);
    toolkit::setTooltip(txtBox[index], QString());
}

void DiffWin::respondDrop(DragItem& obj, int index)
{
    if (obj.FolderItemAvailable()) {
        setTextBox(obj.FolderItem(), index, txtBox[index], titleBox[index]);
        if (obj.NextItem())
            setTextBox(obj.FolderItem(), 1 - index, txtBox[1 - index], titleBox[1 - index]);
    }
    onlyFirst = true;
}
