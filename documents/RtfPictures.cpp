#include "RtfPictures.h"

#include <QBuffer>
#include <QImageReader>

#include <cstdlib>
#include <memory>

namespace documents {

QImage decodePicture(const QByteArray& bytes, qint64 maxPixels, qint64 maxBytes, bool* tooLarge)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    // The header alone gives the size: a small file can still claim a huge picture. A format
    // the header does not tell is taken at the widest, eight bytes a pixel.
    const QSize size = reader.size();
    const qint64 pixels = qint64(size.width()) * size.height();
    const QImage::Format format = reader.imageFormat();
    const int depth
        = format == QImage::Format_Invalid ? 64 : QImage::toPixelFormat(format).bitsPerPixel();
    if (!size.isValid() || size.isEmpty())
        return {};
    if (pixels > maxPixels || pixels * depth / 8 > maxBytes) {
        if (tooLarge)
            *tooLarge = true;
        return {};
    }
    reader.setAllocationLimit(int(std::max<qint64>(1, (maxBytes >> 20) + 1)));
    QImage image;
    if (!reader.read(&image))
        return {};
    if (image.sizeInBytes() > maxBytes) {
        if (tooLarge)
            *tooLarge = true;
        return {};
    }
    return image;
}

std::optional<QByteArray> insidePackage(
    const QByteArray& folder, const QByteArray& name, bool* leaves)
{
    bool climbs = name.startsWith('/');
    for (const QByteArray& part : name.split('/'))
        climbs = climbs || part == "..";
    if (leaves)
        *leaves = climbs;
    if (folder.isEmpty() || name.isEmpty() || climbs || name.contains('\0'))
        return std::nullopt;
    // Links inside the package are fine as long as they end inside it.
    const auto canonical = [](const QByteArray& path) {
        std::unique_ptr<char, decltype(&std::free)> real(
            ::realpath(path.constData(), nullptr), &std::free);
        return real ? QByteArray(real.get()) : QByteArray();
    };
    const QByteArray root = canonical(folder);
    const QByteArray target = canonical(folder + '/' + name);
    if (root.isEmpty() || target.isEmpty())
        return std::nullopt;
    if (!target.startsWith(root == "/" ? root : root + '/')) {
        if (leaves)
            *leaves = true;
        return std::nullopt;
    }
    return target;
}

std::optional<FileBytes> readAttachment(const QByteArray& path, qint64 maxBytes)
{
    std::string error;
    return readWholeFile(path.toStdString(), error, std::uint64_t(maxBytes));
}

} // namespace documents
