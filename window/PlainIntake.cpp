#include "PlainIntake.h"

#include "KeptBytes.h"
#include "TextEncoding.h"
#include "Utf8.h"

#include <algorithm>
#include <utility>

PlainIntake::PlainIntake(bool decodeUtf8, std::uint64_t expected)
    : decoding(decodeUtf8)
    , expected(expected)
{
    // Room for the whole file at once rather than growing by doubling; pages never written to
    // cost nothing.
    const auto room = qsizetype(std::min<std::uint64_t>(expected, std::uint64_t(1) << 40));
    if (decoding)
        latin1.reserve(room);
    else
        raw.reserve(std::size_t(room));
}

void PlainIntake::take(std::string_view piece)
{
    count += piece.size();
    if (!decoding) {
        raw.append(piece);
        return;
    }
    std::string_view bytes = piece;
    if (!pending.empty()) {
        pending.append(piece);
        bytes = pending;
    }
    const std::size_t good = validUtf8Prefix(bytes);
    // A sequence may go on in the next piece; anything ill-formed is found there at the latest.
    if (bytes.size() - good >= 4) {
        pending = std::string(bytes);
        keepBytes();
        return;
    }
    scratch.resize(good);
    scratch.resize(
        documents::decode(documents::TextEncoding::UTF8, bytes.substr(0, good), scratch.data()));
    append(scratch);
    pending = std::string(bytes.substr(good));
}

void PlainIntake::append(std::u16string_view units)
{
    if (!wide && std::all_of(units.begin(), units.end(), [](char16_t c) { return c < 0x100; })) {
        const qsizetype at = latin1.size();
        latin1.resize(at + qsizetype(units.size()));
        std::copy(units.begin(), units.end(), latin1.data() + at);
        return;
    }
    if (!wide) {
        // The first character above U+00FF: the text so far is widened, once.
        wide = true;
        utf16.reserve(std::max(qsizetype(expected), latin1.size() + qsizetype(units.size())));
        utf16.append(QLatin1StringView(latin1));
        latin1 = QByteArray();
    }
    utf16.append(reinterpret_cast<const QChar*>(units.data()), qsizetype(units.size()));
}

void PlainIntake::finish()
{
    // A sequence cut by the end, or by a stop, is ill-formed.
    if (decoding && !pending.empty())
        keepBytes();
}

toolkit::LineStore PlainIntake::lines()
{
    if (wide)
        return toolkit::LineStore(std::exchange(utf16, QString()));
    return toolkit::LineStore::fromLatin1(std::exchange(latin1, QByteArray()));
}

// The text so far came from well-formed UTF-8, so its UTF-8 form is the bytes it came from.
void PlainIntake::keepBytes()
{
    decoding = false;
    raw.reserve(std::size_t(std::max(count, expected)));
    if (wide)
        appendUtf8(
            raw, {reinterpret_cast<const char16_t*>(utf16.constData()), std::size_t(utf16.size())});
    else
        appendUtf8(raw, std::string_view(latin1.constData(), std::size_t(latin1.size())));
    utf16 = QString();
    latin1 = QByteArray();
    raw += pending;
    pending.clear();
}
