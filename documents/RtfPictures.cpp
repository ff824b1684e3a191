#include "RtfPictures.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace documents {

QImage decodePicture(const QByteArray& bytes, qint64 maxPixels)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    // The header alone gives the size: a small file can still claim a huge picture.
    const QSize size = reader.size();
    if (!size.isValid() || size.isEmpty() || qint64(size.width()) * size.height() > maxPixels)
        return {};
    QImage image;
    if (!reader.read(&image))
        return {};
    return image;
}

std::optional<FileBytes> readAttachment(const QString& folder, const QString& name, qint64 maxBytes)
{
    if (folder.isEmpty() || name.isEmpty() || name.startsWith(u'/') || name.contains(QChar(0)))
        return std::nullopt;
    for (const QStringView part : QStringView(name).split(u'/'))
        if (part == u"..")
            return std::nullopt;
    // Links inside the package are fine as long as they end inside it.
    const QString root = QFileInfo(folder).canonicalFilePath();
    const QString target = QFileInfo(folder + u'/' + name).canonicalFilePath();
    if (root.isEmpty() || target.isEmpty() || !target.startsWith(root + u'/'))
        return std::nullopt;

    std::string error;
    return readWholeFile(QFile::encodeName(target).toStdString(), error, std::uint64_t(maxBytes));
}

} // namespace documents
