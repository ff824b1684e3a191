#include "FolderItem.h"

#include <QDir>
#include <QFileInfo>

namespace toolkit {

FolderItem::FolderItem(const QString& path)
    : path(path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(path).absoluteFilePath()))
{
}

bool FolderItem::Exists() const
{
    return !isNull() && QFileInfo::exists(path);
}

bool FolderItem::Alias() const
{
    return !isNull() && QFileInfo(path).isSymLink();
}

FolderItem FolderItem::resolved() const
{
    const QString target = isNull() ? QString() : QFileInfo(path).canonicalFilePath();
    return target.isEmpty() ? FolderItem() : FolderItem(target);
}

QString FolderItem::Name() const
{
    return QFileInfo(path).fileName();
}

QString FolderItem::DisplayName() const
{
    const QString name = Name();
    return name.isEmpty() ? path : name;
}

bool FolderItem::IsFolder() const
{
    return !isNull() && QFileInfo(path).isDir();
}

FolderItem FolderItem::Parent() const
{
    if (isNull() || QDir(path).isRoot())
        return {};
    return FolderItem(QFileInfo(path).path());
}

} // namespace toolkit
