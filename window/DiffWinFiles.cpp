// The window's files after they are read: opening from the File menu, reloading, watching them
// on disk, and the offer of an encoding that reads a pane's bytes whole.

#include "BevelButton.h"
#include "DiffWin.h"
#include "FolderItem.h"
#include "NoticeBar.h"
#include "TextArea.h"
#include "globals.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemWatcher>

#include <sys/stat.h>

using toolkit::FolderItem;

namespace {

QString pathOf(const QByteArray& bytes)
{
    return QFile::decodeName(bytes);
}

} // namespace

DiffWin::FileStamp DiffWin::stampOf(const QByteArray& path)
{
    struct stat info;
    if (path.isEmpty() || ::stat(path.constData(), &info) != 0)
        return {};
    // A package changes with its text.
    if (S_ISDIR(info.st_mode) && ::stat((path + "/TXT.rtf").constData(), &info) != 0)
        return {};
    return {true, quint64(info.st_ino), qint64(info.st_mtim.tv_sec), qint64(info.st_mtim.tv_nsec),
        qint64(info.st_size)};
}

void DiffWin::openFile(int index)
{
    const QByteArray path = askForFile ? askForFile(index) : QByteArray();
    if (path.isEmpty())
        return;
    setTextBox(FolderItem(path), index, txtBox[index], titleBox[index]);
    onlyFirst = true;
}

QByteArray DiffWin::askFileName(int index)
{
    const QString shown = pathOf(shownFile[index]);
    const QString folder = shown.isEmpty() ? QDir::homePath() : QFileInfo(shown).absolutePath();
    QString caption = index == 0 ? globals::kFileOpenLeft() : globals::kFileOpenRight();
    caption.remove(QChar(u'…'));
    return QFile::encodeName(QFileDialog::getOpenFileName(this, caption, folder));
}

bool DiffWin::editedSinceRead(int index) const
{
    return txtBox[index]->contentRevision() != readRevision[index];
}

void DiffWin::Reload(bool discardEdits)
{
    std::array<bool, 2> kept{false, false};
    for (int index = 0; index < 2; ++index) {
        if (shownFile[index].isEmpty())
            continue;
        // A styled pane has no encoding row and no undo over a new document.
        const bool styled = TEBMenu[index]->isHidden();
        if (styled && editedSinceRead(index) && !discardEdits) {
            kept[size_t(index)] = true;
            continue;
        }
        // The view stays where the user was reading.
        const int line = txtBox[index]->VerticalScrollPosition();
        replaceUndoably = true;
        setTextBox(FolderItem(shownFile[index]), index, txtBox[index], titleBox[index]);
        replaceUndoably = false;
        txtBox[index]->setVerticalScrollPosition(line);
    }
    for (int index = 0; index < 2; ++index) {
        if (!kept[size_t(index)])
            continue;
        notice(globals::kNoticeChangedStyled().arg(FolderItem(shownFile[index]).DisplayName()));
        noticeBar->addAction(QStringLiteral("reloadDiscarding"), globals::kNoticeReloadAnyway(),
            [this] { Reload(true); });
    }
}

void DiffWin::watchShownFiles(int readNow)
{
    // The other pane's file keeps its stamp: a change not yet told of must still be.
    for (int index = 0; index < 2; ++index) {
        if (index == readNow || shownFile[index].isEmpty())
            stamps[size_t(index)] = stampOf(shownFile[index]);
    }
    if (!watcher) {
        watcher = new QFileSystemWatcher(this);
        connect(watcher, &QFileSystemWatcher::fileChanged, this, &DiffWin::shownFileChanged);
        connect(watcher, &QFileSystemWatcher::directoryChanged, this, &DiffWin::shownFileChanged);
    }
    if (!watcher->files().isEmpty())
        watcher->removePaths(watcher->files());
    if (!watcher->directories().isEmpty())
        watcher->removePaths(watcher->directories());
    QStringList paths;
    for (int index = 0; index < 2; ++index) {
        if (shownFile[index].isEmpty())
            continue;
        // The folder too: an editor that saves by renaming a new file over the old one ends
        // the watch of the old one, and the folder tells when the new one is there.
        const QString path = pathOf(shownFile[index]);
        paths << path << QFileInfo(path).absolutePath();
        if (QFileInfo(path).isDir())
            paths << path + QStringLiteral("/TXT.rtf");
    }
    paths.removeDuplicates();
    for (const QString& path : paths) {
        if (QFileInfo::exists(path))
            watcher->addPath(path);
    }
}

void DiffWin::shownFileChanged(const QString&)
{
    for (int index = 0; index < 2; ++index) {
        if (shownFile[index].isEmpty())
            continue;
        const FileStamp now = stampOf(shownFile[index]);
        const QString path = pathOf(shownFile[index]);
        // Watched again when it comes back after a rename.
        QStringList again{path};
        if (QFileInfo(path).isDir())
            again << path + QStringLiteral("/TXT.rtf");
        for (const QString& p : again) {
            if (QFileInfo::exists(p) && !watcher->files().contains(p)
                && !watcher->directories().contains(p))
                watcher->addPath(p);
        }
        if (now == stamps[size_t(index)])
            continue;
        stamps[size_t(index)] = now;
        const QString name = FolderItem(shownFile[index]).DisplayName();
        const bool edited = editedSinceRead(index);
        if (edited && TEBMenu[index]->isHidden()) {
            notice(globals::kNoticeChangedStyled().arg(name));
            noticeBar->addAction(QStringLiteral("reloadDiscarding"), globals::kNoticeReloadAnyway(),
                [this] { Reload(true); });
            continue;
        }
        notice((edited ? globals::kNoticeChangedEdited() : globals::kNoticeChanged()).arg(name));
        noticeBar->addAction(
            QStringLiteral("reload"), globals::kFileReload(), [this] { Reload(); });
    }
}

void DiffWin::offerCleanerRow(int index, int row)
{
    const QString name = shownName[index].isEmpty() ? titleBox[index]->Caption() : shownName[index];
    const QString now = TEBMenu[index]->List(encodingMode[index]);
    const QString better = TEBMenu[index]->List(row);
    notice(globals::kNoticeHint().arg(name, now, better));
    noticeBar->addAction(QStringLiteral("encoding%1").arg(index),
        globals::kNoticeUseEncoding().arg(better),
        [this, index, row] { takeEncodingRow(index, row); });
}

// As picking the row in the pane's pop-up.
void DiffWin::takeEncodingRow(int index, int row)
{
    if (TEBMenu[index]->isHidden())
        return;
    TEBMenu[index]->setMenuValue(row);
    TEBMenu_Action(index);
}

bool DiffWin::_FileOpenLeft_Action()
{
    openFile(0);
    return true;
}

bool DiffWin::_FileOpenRight_Action()
{
    openFile(1);
    return true;
}

bool DiffWin::_FileReload_Action()
{
    Reload();
    return true;
}
