#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace toolkit {

// A kind of document the program accepts, as declared to the desktop.
struct FileType
{
    QString Name; // the media type
    QString Extensions; // ".a;.b", each with its point
    QString MacType, MacCreator, MimeType;
    bool Imported = false;
    QString ConformsTo, UTI;

    QStringList extensionList() const { return Extensions.split(u';', Qt::SkipEmptyParts); }
};

// What `a + b` gives: the list handed to a control's file drop acceptance.
using FileTypeList = std::vector<FileType>;
inline FileTypeList operator+(const FileType& a, const FileType& b)
{
    return {a, b};
}
inline FileTypeList operator+(FileTypeList list, const FileType& b)
{
    list.push_back(b);
    return list;
}

} // namespace toolkit
