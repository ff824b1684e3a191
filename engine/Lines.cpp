#include "Lines.h"

#include <algorithm>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace SeqDiff {

std::size_t countLineFeeds(std::string_view text)
{
    std::size_t count = 0, i = 0;
#ifdef __SSE2__
    // Each byte lane counts its hits (a hit compares to -1) for at most 255 blocks, then the
    // lanes are summed: no population count, which without a flag for it is a library call.
    const __m128i lf = _mm_set1_epi8('\n');
    while (i + 16 <= text.size()) {
        const std::size_t blocks = std::min<std::size_t>((text.size() - i) / 16, 255);
        __m128i lanes = _mm_setzero_si128();
        for (std::size_t b = 0; b < blocks; ++b, i += 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + i));
            lanes = _mm_sub_epi8(lanes, _mm_cmpeq_epi8(v, lf));
        }
        const __m128i sums = _mm_sad_epu8(lanes, _mm_setzero_si128());
        count += std::size_t(_mm_cvtsi128_si32(sums)) + std::size_t(_mm_extract_epi16(sums, 4));
    }
#endif
    for (; i < text.size(); ++i)
        count += text[i] == '\n';
    return count;
}

std::size_t countLineFeeds(std::u16string_view text)
{
    return std::size_t(std::count(text.begin(), text.end(), u'\n'));
}

namespace {

// Length of the line ending that starts at `i`, or 0 when there is none.
std::size_t endingAt(std::u16string_view text, std::size_t i)
{
    switch (text[i]) {
    case u'\r':
        return i + 1 < text.size() && text[i + 1] == u'\n' ? 2 : 1;
    case u'\n':
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
    default:
        return 0;
    }
}

// Skips what cannot start a line ending (anything but CR and LF), sixteen bytes at a time where
// the processor allows: most of a large file.
std::size_t skipPlain(std::string_view text, std::size_t i)
{
#ifdef __SSE2__
    const __m128i lf = _mm_set1_epi8('\n'), cr = _mm_set1_epi8('\r');
    while (i + 16 <= text.size()) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + i));
        const __m128i hit = _mm_or_si128(_mm_cmpeq_epi8(v, lf), _mm_cmpeq_epi8(v, cr));
        const int mask = _mm_movemask_epi8(hit);
        if (mask != 0)
            return i + std::size_t(__builtin_ctz(unsigned(mask)));
        i += 16;
    }
#endif
    return i;
}

std::size_t skipPlain(std::u16string_view, std::size_t i)
{
    return i;
}

// Where the next line ending at or after `i` starts, with its length; the end of the text and
// 0 when there is none.
template <class View> std::size_t nextEnding(View text, std::size_t i, std::size_t& length)
{
    while (i < text.size()) {
        i = skipPlain(text, i);
        if (i >= text.size())
            break;
        length = endingAt(text, i);
        if (length != 0)
            return i;
        ++i;
    }
    length = 0;
    return text.size();
}

template <class View> std::vector<View> split(View text)
{
    std::vector<View> lines;
    // One allocation for the usual text, whose lines end in LF; growing the vector step by step
    // costs more than this count.
    lines.reserve(countLineFeeds(text) + 1);
    std::size_t start = 0;
    for (;;) {
        std::size_t length;
        const std::size_t at = nextEnding(text, start, length);
        if (length == 0)
            break;
        lines.push_back(text.substr(start, at - start));
        start = at + length;
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

bool LineCursor::next(std::string_view& line)
{
    if (done)
        return false;
    std::size_t length;
    const std::size_t at = nextEnding(text, pos, length);
    line = text.substr(pos, at - pos);
    pos = at + length;
    done = length == 0;
    return true;
}

bool LineCursor::skip(std::string_view line)
{
    if (done || text.size() - pos < line.size() || text.compare(pos, line.size(), line) != 0)
        return false;
    const std::size_t end = pos + line.size();
    if (end == text.size()) {
        pos = end;
        done = true;
        return true;
    }
    const std::size_t ending = endingAt(text, end);
    if (ending == 0)
        return false;
    pos = end + ending;
    return true;
}

} // namespace SeqDiff
