#include "FolderItem.h"

#include <QByteArrayList>

#include <cstdlib>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace toolkit {

namespace {

QByteArray workingFolder()
{
    std::unique_ptr<char, decltype(&std::free)> cwd(::getcwd(nullptr, 0), &std::free);
    return cwd ? QByteArray(cwd.get()) : QByteArray("/");
}

// Absolute, without empty parts, "." or ".."; ".." at the root stays at the root.
QByteArray cleanPath(const QByteArray& given)
{
    const QByteArray full = given.startsWith('/') ? given : workingFolder() + '/' + given;
    QByteArrayList parts;
    for (const QByteArray& part : full.split('/')) {
        if (part.isEmpty() || part == ".")
            continue;
        if (part == "..") {
            if (!parts.isEmpty())
                parts.removeLast();
            continue;
        }
        parts << part;
    }
    return '/' + parts.join('/');
}

bool statOf(const QByteArray& path, struct stat& info)
{
    return !path.isEmpty() && ::stat(path.constData(), &info) == 0;
}

QString escapedUnit(char32_t c)
{
    switch (c) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return c < 0x100 ? QStringLiteral("\\x%1").arg(uint(c), 2, 16, QLatin1Char('0'))
                         : QStringLiteral("\\u{%1}").arg(uint(c), 4, 16, QLatin1Char('0'));
    }
}

// Characters that break a title's line or turn its direction.
bool needsEscape(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029
        || (c >= 0x200E && c <= 0x200F) || (c >= 0x202A && c <= 0x202E)
        || (c >= 0x2066 && c <= 0x2069);
}

} // namespace

FolderItem::FolderItem(const QByteArray& nativePath)
    : path(nativePath.isEmpty() ? QByteArray() : cleanPath(nativePath))
{
}

FolderItem::FolderItem(const QString& path)
    : FolderItem(path.toUtf8())
{
}

bool FolderItem::Exists() const
{
    struct stat info;
    return statOf(path, info);
}

bool FolderItem::Alias() const
{
    struct stat info;
    return !isNull() && ::lstat(path.constData(), &info) == 0 && S_ISLNK(info.st_mode);
}

FolderItem FolderItem::resolved() const
{
    if (isNull())
        return {};
    std::unique_ptr<char, decltype(&std::free)> target(
        ::realpath(path.constData(), nullptr), &std::free);
    return target ? FolderItem(QByteArray(target.get())) : FolderItem();
}

QString FolderItem::Name() const
{
    return QString::fromUtf8(path.mid(path.lastIndexOf('/') + 1));
}

QString FolderItem::DisplayName() const
{
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    return escaped(name.isEmpty() ? path : name);
}

bool FolderItem::IsFolder() const
{
    struct stat info;
    return statOf(path, info) && S_ISDIR(info.st_mode);
}

FolderItem FolderItem::Parent() const
{
    if (isNull() || path == "/")
        return {};
    const qsizetype slash = path.lastIndexOf('/');
    return FolderItem(slash <= 0 ? QByteArray("/") : path.left(slash));
}

QUrl FolderItem::URL() const
{
    if (isNull())
        return {};
    // Byte by byte, so that a name that is not UTF-8 keeps its bytes.
    const QUrl url = QUrl::fromEncoded("file://" + path.toPercentEncoding("/"), QUrl::StrictMode);
    const QByteArray named
        = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    return url.isValid() && url.isLocalFile() && named == path ? url : QUrl();
}

QString FolderItem::escaped(QByteArrayView bytes)
{
    QString text;
    text.reserve(bytes.size());
    const auto byte = [&](qsizetype at) { return at < bytes.size() ? uchar(bytes[at]) : 0u; };
    for (qsizetype at = 0; at < bytes.size();) {
        // The well-formed UTF-8 sequence here, if any: its length and its code point.
        const unsigned lead = byte(at);
        const int length = lead < 0x80 ? 1
            : lead < 0xC2              ? 0
            : lead < 0xE0              ? 2
            : lead < 0xF0              ? 3
            : lead < 0xF5              ? 4
                                       : 0;
        const unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
        char32_t c = length == 1 ? lead : lead & (0x7F >> length);
        bool wellFormed = length > 0;
        for (int k = 1; k < length && wellFormed; ++k) {
            const unsigned next = byte(at + k);
            wellFormed = next >= (k == 1 ? low : 0x80) && next <= (k == 1 ? high : 0xBF);
            c = c << 6 | (next & 0x3F);
        }
        if (!wellFormed) {
            text += escapedUnit(lead);
            ++at;
            continue;
        }
        if (needsEscape(c))
            text += escapedUnit(c);
        else
            text += QString::fromUcs4(&c, 1);
        at += length;
    }
    return text;
}

} // namespace toolkit
