#pragma once

#include "PlainFile.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace documents {

// The picture in `bytes`, its format told by its content; a null image when it can't be read or
// would have more than `maxPixels` pixels, which is checked before any pixel is decoded.
QImage decodePicture(const QByteArray& bytes, qint64 maxPixels);

// The bytes of the attachment `name` in the package `folder`. Nothing when the name is absolute,
// climbs with "..", or leads outside the folder through a link, when it names anything but a
// regular file, or when the file has more than `maxBytes`.
std::optional<FileBytes> readAttachment(
    const QString& folder, const QString& name, qint64 maxBytes);

} // namespace documents
