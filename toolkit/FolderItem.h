#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace toolkit {

// A reference to a file or folder by its path; it may name nothing that exists. The path is
// kept as the bytes the system gave, so a name that is not valid UTF-8 still opens its file.
class FolderItem
{
public:
    FolderItem() = default;
    // Made absolute against the working folder, "." and ".." taken out as written.
    explicit FolderItem(const QByteArray& nativePath);
    explicit FolderItem(const QString& path);
    explicit FolderItem(const char* path)
        : FolderItem(QByteArray(path))
    {
    }

    bool isNull() const { return path.isEmpty(); }
    bool Exists() const;
    // A symbolic link.
    bool Alias() const;
    // What a link leads to, through every link on the way; null for a loop or a dangling link.
    FolderItem resolved() const;
    // The path for Qt's own calls; lossy for a name that is not UTF-8.
    QString ShellPath() const { return QString::fromUtf8(path); }
    QString NativePath() const { return ShellPath(); }
    // The exact bytes, for opening.
    const QByteArray& NativeBytes() const { return path; }
    QString Name() const;
    // The name a file manager shows: the last part of the path, "/" for the root; escaped.
    QString DisplayName() const;
    bool IsFolder() const;
    // Null at the top of the path.
    FolderItem Parent() const;
    // A file URL that names exactly these bytes, for handing to other programs; invalid when
    // there is none.
    QUrl URL() const;

    // Bytes as a line of text: what is not valid UTF-8 shows as \xNN, control characters as
    // \n, \t or \xNN, and line and paragraph separators and direction marks as \u{…}.
    static QString escaped(QByteArrayView bytes);

private:
    QByteArray path;
};

} // namespace toolkit
