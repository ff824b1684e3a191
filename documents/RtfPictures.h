#pragma once

#include "PlainFile.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace documents {

// The picture in `bytes`, its format told by its content; a null image when it can't be read,
// would have more than `maxPixels` pixels or take more than `maxBytes` decoded, which is
// checked from its header before any pixel is decoded. `tooLarge`, if given, tells the last two
// apart from the first.
QImage decodePicture(
    const QByteArray& bytes, qint64 maxPixels, qint64 maxBytes, bool* tooLarge = nullptr);

// The canonical path of `name` inside `folder` (both as bytes), links resolved; nothing when
// it is absolute, climbs with "..", or leads outside the folder (`leaves`, if given, is then
// set), or names nothing.
std::optional<QByteArray> insidePackage(
    const QByteArray& folder, const QByteArray& name, bool* leaves = nullptr);

// The bytes of the file at `path`; nothing when it is not a regular file or has more than
// `maxBytes`.
std::optional<FileBytes> readAttachment(const QByteArray& path, qint64 maxBytes);

} // namespace documents
