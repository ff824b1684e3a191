#include "Lines.h"

#include <cstdint>
#include <cstring>

namespace SeqDiff {

namespace {

// Length of the line ending that starts at `i`, or 0 when there is none.
std::size_t endingAt(std::u16string_view text, std::size_t i)
{
    switch (text[i]) {
    case u'\r':
        return i + 1 < text.size() && text[i + 1] == u'\n' ? 2 : 1;
    case u'\n':
    case u'\u2029':
        return 1;
    default:
        return 0;
    }
}

std::size_t endingAt(std::string_view text, std::size_t i)
{
    switch (text[i]) {
    case '\r':
        return i + 1 < text.size() && text[i + 1] == '\n' ? 2 : 1;
    case '\n':
        return 1;
    case '\xE2':
        return text.substr(i, 3) == "\xE2\x80\xA9" ? 3 : 0;
    default:
        return 0;
    }
}

// Skips, eight bytes at a time, what cannot start a line ending (a byte above CR other than
// E2): most of a large file.
std::size_t skipPlain(std::string_view text, std::size_t i)
{
    constexpr std::uint64_t ones = 0x0101010101010101ULL;
    constexpr std::uint64_t highs = 0x8080808080808080ULL;
    while (i + 8 <= text.size()) {
        std::uint64_t w;
        std::memcpy(&w, text.data() + i, 8);
        const std::uint64_t below0E = (w - ones * 0x0E) & ~w & highs;
        const std::uint64_t e2 = w ^ (ones * 0xE2);
        const std::uint64_t isE2 = (e2 - ones) & ~e2 & highs;
        if (below0E | isE2)
            break;
        i += 8;
    }
    return i;
}

std::size_t skipPlain(std::u16string_view, std::size_t i)
{
    return i;
}

template <class View> std::vector<View> split(View text)
{
    std::vector<View> lines;
    std::size_t start = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        i = skipPlain(text, i);
        if (i >= text.size())
            break;
        const std::size_t ending = endingAt(text, i);
        if (ending == 0) {
            ++i;
            continue;
        }
        lines.push_back(text.substr(start, i - start));
        i += ending;
        start = i;
    }
    lines.push_back(text.substr(start));
    return lines;
}

} // namespace

std::vector<std::u16string_view> splitLines(std::u16string_view text)
{
    return split(text);
}

std::vector<std::string_view> splitLines(std::string_view text)
{
    return split(text);
}

} // namespace SeqDiff
