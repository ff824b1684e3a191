#include "KeptBytes.h"

#include "TextEncoding.h"
#include "Utf8.h"

#include <algorithm>

std::string KeptBytes::bytes() const
{
    if (!text)
        return raw;
    std::string out;
    out.reserve(std::size_t(text->size()));
    text->forEachPiece([&out](std::u16string_view piece) { appendUtf8(out, piece); });
    return out;
}

std::size_t KeptBytes::size() const
{
    if (!text)
        return raw.size();
    std::size_t n = 0;
    text->forEachPiece([&n](std::u16string_view piece) {
        for (std::size_t i = 0; i < piece.size(); ++i) {
            const char16_t c = piece[i];
            if (c < 0x80)
                n += 1;
            else if (c < 0x800)
                n += 2;
            else if (QChar::isHighSurrogate(c) && i + 1 < piece.size()) {
                n += 4;
                ++i;
            } else
                n += 3;
        }
    });
    return n;
}

void appendUtf8(std::string& out, std::u16string_view text)
{
    const std::size_t n = text.size();
    for (std::size_t i = 0; i < n; ++i) {
        char32_t c = text[i];
        if (c < 0x80) {
            out.push_back(char(c));
            continue;
        }
        if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(text[i + 1]))
            c = QChar::surrogateToUcs4(char16_t(c), text[++i]);
        if (c < 0x800) {
            out.push_back(char(0xC0 | (c >> 6)));
        } else if (c < 0x10000) {
            out.push_back(char(0xE0 | (c >> 12)));
            out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
        } else {
            out.push_back(char(0xF0 | (c >> 18)));
            out.push_back(char(0x80 | ((c >> 12) & 0x3F)));
            out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
        }
        out.push_back(char(0x80 | (c & 0x3F)));
    }
}

PlainIntake::PlainIntake(bool decodeUtf8, std::uint64_t expected)
    : decoding(decodeUtf8)
    , expected(expected)
{
    // Room for the whole file at once rather than growing by doubling; pages never written to
    // cost nothing.
    const auto room = qsizetype(std::min<std::uint64_t>(expected, std::uint64_t(1) << 40));
    if (decoding)
        utf16.reserve(room);
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
    const qsizetype at = utf16.size();
    if (utf16.capacity() < at + qsizetype(good))
        utf16.reserve(std::max(2 * utf16.capacity(), at + qsizetype(good)));
    utf16.resize(at + qsizetype(good));
    const std::size_t made = documents::decode(documents::TextEncoding::UTF8, bytes.substr(0, good),
        reinterpret_cast<char16_t*>(utf16.data()) + at);
    utf16.resize(at + qsizetype(made));
    pending = std::string(bytes.substr(good));
}

void PlainIntake::finish()
{
    // A sequence cut by the end, or by a stop, is ill-formed.
    if (decoding && !pending.empty())
        keepBytes();
    if (decoding)
        utf16.squeeze();
}

// The text so far came from well-formed UTF-8, so its UTF-8 form is the bytes it came from.
void PlainIntake::keepBytes()
{
    decoding = false;
    raw.reserve(std::size_t(std::max(count, expected)));
    appendUtf8(
        raw, {reinterpret_cast<const char16_t*>(utf16.constData()), std::size_t(utf16.size())});
    utf16 = QString();
    raw += pending;
    pending.clear();
}
