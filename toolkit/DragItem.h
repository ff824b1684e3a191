#pragma once

#include "FolderItem.h"

#include <QList>
#include <QUrl>

#include <functional>

class QDragEnterEvent;
class QDragMoveEvent;
class QDropEvent;
class QMimeData;
class QObject;

namespace toolkit {

// The files of one drag, read from the first. Each event makes its own, so a look ahead at the
// second file on entering doesn't carry over to the drop.
class DragItem
{
public:
    explicit DragItem(const QMimeData* data);

    static bool hasFiles(const QMimeData* data);
    // Whether the item read now is a file on this machine.
    bool FolderItemAvailable() const;
    toolkit::FolderItem FolderItem() const;
    // Moves on to the next item; false when there is none.
    bool NextItem();

private:
    QList<QUrl> urls;
    qsizetype current = 0;
};

// What a control does with files dragged onto it. Any file is let in: what is read and what is
// refused is decided when it is dropped.
struct FileDrops
{
    std::function<void(DragItem&)> DragEnter;
    std::function<void()> DragExit;
    std::function<void(DragItem&)> DropObject;

    // The control's drag events come here. False for drags that carry no files: the control's
    // own handling takes them.
    bool enter(QDragEnterEvent* event);
    bool move(QDragMoveEvent* event);
    bool leave();
    // The handler runs once the drop has been answered, while `context` lives.
    bool drop(QDropEvent* event, QObject* context);

private:
    bool inside = false;
};

} // namespace toolkit
