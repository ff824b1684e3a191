#pragma once

#include <QString>

namespace toolkit {

// A reference to a file or folder by its path; it may name nothing that exists.
class FolderItem
{
public:
    FolderItem() = default;
    explicit FolderItem(const QString& path);

    bool isNull() const { return path.isEmpty(); }
    bool Exists() const;
    // A symbolic link.
    bool Alias() const;
    // What a link leads to, through every link on the way; null for a loop or a dangling link.
    FolderItem resolved() const;
    QString ShellPath() const { return path; }
    QString NativePath() const { return path; }
    QString Name() const;
    // The name a file manager shows: the last part of the path, "/" for the root.
    QString DisplayName() const;
    bool IsFolder() const;
    // Null at the top of the path.
    FolderItem Parent() const;

private:
    QString path;
};

} // namespace toolkit
