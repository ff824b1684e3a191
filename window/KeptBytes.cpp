#include "KeptBytes.h"

#include <algorithm>
#include <utility>

std::string KeptBytes::bytes() const
{
    if (!text)
        return raw;
    std::string out;
    out.reserve(std::size_t(text->size()));
    text->forEachPiece([&out](auto piece) { appendUtf8(out, piece); });
    return out;
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

void appendUtf8(std::string& out, std::string_view latin1)
{
    const auto high = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    for (auto at = latin1.begin(); at != latin1.end();) {
        // ASCII, most of any text held this way, goes over as it is.
        const auto run = std::find_if(at, latin1.end(), high);
        out.append(at, run);
        if (run == latin1.end())
            break;
        const auto c = static_cast<unsigned char>(*run);
        out.push_back(char(0xC0 | (c >> 6)));
        out.push_back(char(0x80 | (c & 0x3F)));
        at = run + 1;
    }
}
