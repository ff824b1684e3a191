#include "DragItem.h"

#include <QDropEvent>
#include <QMimeData>
#include <QTimer>

#include <algorithm>

namespace toolkit {

DragItem::DragItem(const QMimeData* data)
{
    if (data && data->hasUrls())
        urls = data->urls();
}

bool DragItem::hasFiles(const QMimeData* data)
{
    if (!data || !data->hasUrls())
        return false;
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl& u) { return u.isLocalFile(); });
}

bool DragItem::FolderItemAvailable() const
{
    return current < urls.size() && urls.at(current).isLocalFile();
}

FolderItem DragItem::FolderItem() const
{
    if (!FolderItemAvailable())
        return {};
    // The path's bytes as the URL carries them, percent-encoded: toLocalFile() would turn a
    // name that is not UTF-8 into another one.
    const QUrl& url = urls.at(current);
    return toolkit::FolderItem(
        QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

bool DragItem::NextItem()
{
    if (current + 1 >= urls.size())
        return false;
    ++current;
    return true;
}

bool FileDrops::enter(QDragEnterEvent* event)
{
    if (!DragItem::hasFiles(event->mimeData()))
        return false;
    event->acceptProposedAction();
    inside = true;
    DragItem item(event->mimeData());
    if (DragEnter)
        DragEnter(item);
    return true;
}

bool FileDrops::move(QDragMoveEvent* event)
{
    if (!inside)
        return false;
    event->acceptProposedAction();
    return true;
}

bool FileDrops::leave()
{
    if (!inside)
        return false;
    inside = false;
    if (DragExit)
        DragExit();
    return true;
}

bool FileDrops::drop(QDropEvent* event, QObject* context)
{
    if (!inside)
        return false;
    inside = false;
    event->acceptProposedAction();
    // Answered at once and read afterwards, so the program the files come from isn't kept
    // waiting through a long read.
    QTimer::singleShot(
        0, context, [handler = DropObject, item = DragItem(event->mimeData())]() mutable {
            if (handler)
                handler(item);
        });
    return true;
}

} // namespace toolkit
